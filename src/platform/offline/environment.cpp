// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/environment.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr std::uint32_t kMaxVariables = 4096;

const RegistryPath kMachineVariables = {RegistryRoot::LocalMachine,
                                        "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment"};
const RegistryPath kUserVariables = {RegistryRoot::CurrentUser, "Environment"};
const RegistryPath kCurrentVersion = {RegistryRoot::LocalMachine, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion"};
const RegistryPath kProfileList = {RegistryRoot::LocalMachine,
                                   "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList"};
const RegistryPath kExplorer = {RegistryRoot::CurrentUser, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer"};

/// Since Windows Vista, profiles are in C:\Users and have another layout.
bool IsNewLayout(const EnvironmentPlaces& places) {
  return EqualIgnoreCase(places.profile.Parent().Name(), "Users");
}

std::string UpToNul(ByteView data) {
  const std::string text(data.begin(), data.end());
  return text.substr(0, text.find('\0'));
}

bool IsText(ValueType type) {
  return type == ValueType::Sz || type == ValueType::ExpandSz;
}

/// Sets the variables that a key holds: first the plain ones, then those that are written with others, as Windows does.
void AddVariables(Registry& registry, const RegistryPath& path, Environment& environment) {
  const OpenResult opened = registry.Open(path, Access::Read);
  std::vector<std::pair<std::string, std::string>> toExpand;
  for (std::uint32_t index = 0; index < kMaxVariables; ++index) {
    ValueResult value = registry.EnumValue(opened.key, index);
    if (value.status != Status::Success) break;
    if (value.type == ValueType::Sz) environment.Set(value.name, UpToNul(value.data));
    if (value.type == ValueType::ExpandSz) toExpand.emplace_back(std::move(value.name), UpToNul(value.data));
  }
  for (const auto& [name, text] : toExpand) environment.Set(name, environment.Expand(text));
}

/// A shell folder of the person, from where Windows keeps it and then from where it notes it for old programs.
std::optional<std::string> ShellFolder(Registry& registry, const Environment& environment, std::string_view name) {
  for (const char* key : {"User Shell Folders", "Shell Folders"}) {
    const std::optional<std::string> text = ReadText(registry, kExplorer.Child(key), name);
    if (text && !text->empty()) return environment.Expand(*text);
  }
  return std::nullopt;
}

void AddMachine(Registry& registry, const EnvironmentPlaces& places, Environment& environment) {
  const std::string windows = places.windows.Text();
  const std::string system32 = places.windows.Join("system32").Text();
  const std::string drive = windows.substr(0, 2);
  const std::array<std::pair<const char*, std::string>, 6> plain = {{{"SystemDrive", drive},
                                                                     {"SystemRoot", windows},
                                                                     {"windir", windows},
                                                                     {"ComSpec", system32 + "\\cmd.exe"},
                                                                     {"TEMP", windows + "\\TEMP"},
                                                                     {"TMP", windows + "\\TEMP"}}};
  for (const auto& [name, value] : plain) environment.Set(name, value);

  const struct {
    const char* variable;
    const char* value;
    const char* otherwise;  // on the system's drive
  } stored[] = {{"ProgramFiles", "ProgramFilesDir", "\\Program Files"},
                {"CommonProgramFiles", "CommonFilesDir", "\\Program Files\\Common Files"}};
  for (const auto& row : stored) {
    const std::optional<std::string> text = ReadText(registry, kCurrentVersion, row.value);
    environment.Set(row.variable, environment.Expand(text.value_or(drive + row.otherwise)));
  }
}

/// What the start of Windows 95, 98 and Me sets itself.
Environment OldEnvironment(const EnvironmentPlaces& places) {
  const std::string windows = places.windows.Text();
  const std::pair<const char*, std::string> variables[] = {{"windir", windows},
                                                           {"winbootdir", windows},
                                                           {"COMSPEC", windows + "\\COMMAND.COM"},
                                                           {"PATH", windows + ";" + windows + "\\COMMAND"},
                                                           {"TEMP", windows + "\\TEMP"},
                                                           {"TMP", windows + "\\TEMP"}};
  Environment environment;
  for (const auto& [name, value] : variables) environment.Set(name, value);
  return environment;
}

void AddAllUsers(Registry& registry, const EnvironmentPlaces& places, Environment& environment) {
  const std::string drive = places.windows.Text().substr(0, 2);
  const std::string folder = ReadText(registry, kProfileList, "AllUsersProfile").value_or("All Users");
  std::string path = places.profile.Parent().Join(folder).Text();
  if (IsNewLayout(places)) {
    const std::optional<std::string> data = ReadText(registry, kProfileList, "ProgramData");
    path = data ? environment.Expand(*data) : drive + "\\ProgramData";
    environment.Set("ProgramData", path);
  }
  environment.Set("ALLUSERSPROFILE", path);
}

void AddPerson(Registry& registry, const EnvironmentPlaces& places, Environment& environment) {
  const std::string& profile = places.profile.Text();
  const std::string userName = ReadText(registry, kExplorer, "Logon User Name").value_or("");
  environment.Set("UserProfile", profile);
  environment.Set("HOMEDRIVE", profile.substr(0, 2));
  environment.Set("HOMEPATH", profile.substr(2));
  environment.Set("USERNAME", userName.empty() ? places.profileName : userName);

  const bool isNew = IsNewLayout(places);
  const std::string roaming = profile + (isNew ? "\\AppData\\Roaming" : "\\Application Data");
  environment.Set("AppData", ShellFolder(registry, environment, "AppData").value_or(roaming));
  if (!isNew) return;
  const std::string local = profile + "\\AppData\\Local";
  environment.Set("LOCALAPPDATA", ShellFolder(registry, environment, "Local AppData").value_or(local));
}

}  // namespace

void Environment::Set(std::string_view name, std::string value) {
  if (!name.empty() && value.size() <= kMaxLength) values_[UpperCase(name)] = std::move(value);
}

std::optional<std::string> Environment::Get(std::string_view name) const {
  const auto value = values_.find(UpperCase(name));
  return value == values_.end() ? std::nullopt : std::optional<std::string>(value->second);
}

std::string Environment::Expand(std::string_view text) const {
  std::string result;
  std::size_t at = 0;
  while (at < text.size() && result.size() <= kMaxLength) {
    const std::size_t open = std::min(text.find('%', at), text.size());
    result += text.substr(at, open - at);
    const std::size_t close = open < text.size() ? text.find('%', open + 1) : std::string_view::npos;
    if (close == std::string_view::npos) {
      result += text.substr(open);
      break;
    }
    const std::optional<std::string> value = Get(text.substr(open + 1, close - open - 1));
    result += value ? std::string_view(*value) : text.substr(open, close - open);
    // The second % of an unknown name may begin a known one.
    at = value ? close + 1 : close;
  }
  return result.size() <= kMaxLength ? result : std::string(text);
}

Environment ReadEnvironment(Registry& registry, const EnvironmentPlaces& places) {
  if (places.isOldWindows) return OldEnvironment(places);
  Environment environment;
  AddMachine(registry, places, environment);
  AddAllUsers(registry, places, environment);
  AddPerson(registry, places, environment);
  AddVariables(registry, kMachineVariables, environment);
  AddVariables(registry, kUserVariables, environment);
  return environment;
}

std::optional<std::string> ReadText(Registry& registry, const RegistryPath& path, std::string_view name) {
  const OpenResult opened = registry.Open(path, Access::Read);
  const QueryResult size = registry.Query(opened.key, name, std::nullopt);
  if (size.status != Status::Success || !IsText(size.type)) return std::nullopt;
  Bytes data(size.size);
  if (size.size > 0 && registry.Query(opened.key, name, std::span(data)).status != Status::Success) return std::nullopt;
  return UpToNul(data);
}

}  // namespace quillbox
