#include "core/registry_store.h"

#include <exception>
#include <new>

#include "core/status_text.h"
#include "text/error.h"

namespace quillbox {
namespace {

// Run-time error numbers that the message of a failed read shows.
constexpr int kOutOfMemory = 7;
constexpr int kInternalError = 51;

constexpr std::uint32_t kForceRestore = 8;

/// What a file's name ends in while it is being made.
constexpr const char* kUnfinished = ".unfinished";

struct OsRow {
  OsCode code;
  std::string_view text;
  std::string_view exportCommand;  // empty: no export is started
};
constexpr OsRow kOsRows[] = {
    {OsCode::Unknown, "", ""},
    {OsCode::SE, "SE", "regedit /s /e \""},
    {OsCode::NT, "NT", "regedit /s /e:A \""},
    {OsCode::W2K, "2K", "regedit /s /e:A \""},
    {OsCode::XP, "XP", "regedit /s /e:A \""},
};

const OsRow& RowOf(OsCode code) {
  for (const OsRow& row : kOsRows) {
    if (row.code == code) return row;
  }
  return kOsRows[0];
}

const RegistryPath kWindowsVersion{RegistryRoot::LocalMachine, "Software\\Microsoft\\Windows\\CurrentVersion"};
const RegistryPath kNtVersion{RegistryRoot::LocalMachine, "Software\\Microsoft\\Windows NT\\CurrentVersion"};

std::string TextUpToNul(const Bytes& bytes) {
  std::string text(bytes.begin(), bytes.end());
  return text.substr(0, text.find('\0'));
}

Bytes TextWithNul(const std::string& text) {
  Bytes bytes(text.begin(), text.end());
  bytes.push_back(0);
  return bytes;
}

Bytes LittleEndian(std::int32_t number) {
  const auto bits = static_cast<std::uint32_t>(number);
  Bytes bytes;
  for (unsigned shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
  return bytes;
}

}  // namespace

std::string_view OsCodeText(OsCode code) {
  return RowOf(code).text;
}

bool IsNtFamily(OsCode code) {
  return code == OsCode::NT || code == OsCode::W2K || code == OsCode::XP;
}

RegValue RegistryStore::RegistryGetKeyValue(const RegistryPath& path, std::string_view name,
                                            ExpandableText expandable) {
  const auto fail = [&](int number, const std::string& description) {
    platform_.GetDialogs().Show(
        {.text = "Error: " + std::to_string(number) + ". " + description, .title = "RegistryGetKeyValue"});
    return RegValue();
  };
  try {
    const OpenResult opened = registry_.Open(path, Access::Read);
    if (opened.status != Status::Success) return {};
    return ReadValue(opened.key, name, expandable);
  } catch (const std::bad_alloc&) {
    return fail(kOutOfMemory, "Out of memory");
  } catch (const std::exception& error) {
    return fail(kInternalError, error.what());
  }
}

RegValue RegistryStore::ReadValue(const Key& key, std::string_view name, ExpandableText expandable) {
  const QueryResult asked = registry_.Query(key, name, std::nullopt);
  return asked.status == Status::Success ? ReadTyped(key, name, asked, expandable) : RegValue();
}

RegValue RegistryStore::ReadTyped(const Key& key, std::string_view name, const QueryResult& asked,
                                  ExpandableText expandable) {
  const bool isText =
      asked.type == ValueType::Sz || (asked.type == ValueType::ExpandSz && expandable == ExpandableText::Read);
  if (isText && asked.size == 0) return std::string();
  if (!isText && asked.type != ValueType::Binary && asked.type != ValueType::Dword) return {};

  // A number is read into 4 bytes whatever the stored size, so a longer one fails and a shorter one has zeros above.
  Bytes buffer(asked.type == ValueType::Dword ? 4 : asked.size);
  if (buffer.empty()) return {};
  if (registry_.Query(key, name, std::span(buffer)).status != Status::Success) return {};
  if (isText) return TextUpToNul(buffer);
  if (asked.type == ValueType::Binary) return buffer;
  std::uint32_t bits = 0;
  for (unsigned i = 0; i < 4; ++i) bits |= static_cast<std::uint32_t>(buffer[i]) << (8 * i);
  return static_cast<std::int32_t>(bits);
}

Status RegistryStore::ProbeValue(const RegistryPath& path, std::string_view name) {
  const OpenResult opened = registry_.Open(path, Access::Full);
  if (opened.status != Status::Success) return opened.status;
  return registry_.Query(opened.key, name, std::span<std::uint8_t>()).status;
}

std::string RegistryStore::ReadStringValue(const RegistryPath& path, std::string_view name) {
  constexpr std::size_t kFirstAttempt = 256;
  const OpenResult opened = registry_.Open(path, Access::Full);
  if (opened.status != Status::Success) return {};
  Bytes buffer(kFirstAttempt);
  QueryResult read = registry_.Query(opened.key, name, std::span(buffer));
  if (read.status == Status::MoreData) {
    buffer.resize(read.size);
    read = registry_.Query(opened.key, name, std::span(buffer));
  }
  if (read.status != Status::Success) return {};
  if (read.type != ValueType::Sz && read.type != ValueType::ExpandSz) {
    throw Error("reading a text value", {FullName(path) + ", \"" + std::string(name) + "\"", {}, {}},
                "it is of type " + std::to_string(static_cast<unsigned>(read.type)) + ", not text");
  }
  std::string text(buffer.begin(), buffer.begin() + read.size);
  if (text.ends_with('\0')) text.pop_back();
  return text;
}

void RegistryStore::SetKeyValue(std::string_view subkey, std::string_view name, const RegValue& value, ValueType type) {
  WriteIfOpen({RegistryRoot::CurrentUser, std::string(subkey)}, name, value, type);
}

void RegistryStore::SetKeyValue2(std::string_view subkey, std::string_view name, const RegValue& value,
                                 ValueType type) {
  WriteIfOpen({RegistryRoot::LocalMachine, std::string(subkey)}, name, value, type);
}

void RegistryStore::WriteIfOpen(const RegistryPath& path, std::string_view name, const RegValue& value,
                                ValueType type) {
  const OpenResult opened = registry_.Open(path, Access::SetValue);
  const Status status = opened.status == Status::Success ? SetValueEx(opened.key, name, type, value) : opened.status;
  if (status != Status::Success) LogRefusal("the value \"" + std::string(name) + "\" was not written", path, status);
}

Status RegistryStore::SetValueEx(const Key& key, std::string_view name, ValueType type, const RegValue& value) {
  switch (type) {
    case ValueType::Sz:
    case ValueType::ExpandSz:
      if (value.Data()) return Status::InvalidParameter;
      return registry_.SetValue(key, name, type, TextWithNul(value.AsText()));
    case ValueType::Dword: {
      const auto number = value.IsEmpty() ? std::optional<std::int32_t>(0) : value.AsNumber();
      if (!number) return Status::InvalidParameter;
      return registry_.SetValue(key, name, type, LittleEndian(*number));
    }
    default:
      return Status::Success;
  }
}

Key RegistryStore::CreateKey(const RegistryPath& path) {
  OpenResult created = registry_.Create(path);
  if (created.status != Status::Success) LogRefusal("the key was not made", path, created.status);
  return std::move(created.key);
}

std::vector<std::string> RegistryStore::EnumSubKeys(const Key& key) {
  std::vector<std::string> names;
  const KeyInfo info = registry_.Info(key);
  for (std::uint32_t index = 0; index < info.subkeys; ++index) {
    NameResult result = registry_.EnumKey(key, index);
    const bool ended = result.status == Status::NoMoreItems;
    if (result.status != Status::Success && !ended) break;
    names.push_back(std::move(result.name));
    if (ended) break;
  }
  return names;
}

void RegistryStore::DeleteKey(const RegistryPath& path) {
  if (path.root == RegistryRoot::None) return;
  const Status status = registry_.DeleteTree(path);
  if (status != Status::Success) LogRefusal("the key was not deleted", path, status);
}

void RegistryStore::SaveKey(const RegistryPath& path, const WinPath& file, OnFailure onFailure) {
  if (!EnablePrivilege("SeBackupPrivilege")) return;
  const OpenResult opened = registry_.Open(path, Access::Full);
  const Status status = opened.status == Status::Success ? ReplaceByKey(opened.key, file) : opened.status;
  if (status == Status::Success) return;
  if (opened.status == Status::FileNotFound) platform_.GetFiles().DeleteFile(file);
  const std::string refusal = LogRefusal("the key was not saved to " + file.Text(), path, status);
  if (onFailure == OnFailure::Tell) reports_.Add(refusal);
}

// The registry saves to new files only. An older file stays until the new one is complete, so that a full disk does
// not cost an earlier backup.
Status RegistryStore::ReplaceByKey(const Key& key, const WinPath& file) {
  FileSystem& files = platform_.GetFiles();
  if (!files.Stat(file)) return registry_.SaveKey(key, file);
  const WinPath unfinished(file.Text() + kUnfinished);
  files.DeleteFile(unfinished);
  Status status = registry_.SaveKey(key, unfinished);
  if (status == Status::Success) {
    try {
      files.WriteFile(file, files.ReadFile(unfinished));
    } catch (const Error& error) {
      platform_.GetLog().Write(Describe(error));
      status = Status::RegistryIo;
    }
  }
  files.DeleteFile(unfinished);
  return status;
}

void RegistryStore::RestoreKey(const RegistryPath& path, const WinPath& file) {
  if (!EnablePrivilege("SeRestorePrivilege")) return;
  const OpenResult opened = registry_.Open(path, Access::Full);
  if (opened.status != Status::Success) {
    return reports_.Add(LogRefusal("the key could not take what is in " + file.Text(), path, opened.status));
  }
  const Status status = registry_.RestoreKey(opened.key, file, kForceRestore);
  if (status != Status::Success) reports_.Add(LogRefusal("the key was not restored from " + file.Text(), path, status));
}

bool RegistryStore::HasProductName(const RegistryPath& path) {
  const OpenResult opened = registry_.Open(path, Access::Full);
  return opened.status == Status::Success &&
         registry_.Query(opened.key, "ProductName", std::nullopt).status == Status::Success;
}

void RegistryStore::DetectOsCode() {
  if (HasProductName(kWindowsVersion)) osCode_ = OsCode::SE;
  if (!HasProductName(kNtVersion)) return;
  osCode_ = OsCode::NT;
  const RegValue product = RegistryGetKeyValue(kNtVersion, "ProductName");
  if (product == RegValue("Microsoft Windows 2000")) osCode_ = OsCode::W2K;
  if (product == RegValue("Microsoft Windows XP")) osCode_ = OsCode::XP;
}

void RegistryStore::RegExport(const std::string& key, const std::string& file, KeyForm form, OnFailure onFailure) {
  const OsRow& row = RowOf(osCode_);
  if (row.exportCommand.empty()) return;
  std::string command = std::string(row.exportCommand) + file + "\"";
  switch (form) {
    case KeyForm::Quoted:
      command += "  \"" + key + "\"";
      break;
    case KeyForm::Plain:
      command += "  " + key;
      break;
    case KeyForm::PlainAfterOneBlank:
      command += " " + key;
      break;
  }
  RunEditor(command, onFailure);
}

bool RegistryStore::RegMerge(const std::string& file, OnFailure onFailure) {
  return RunEditor("regedit /s /c \"" + file, onFailure);
}

bool RegistryStore::RunEditor(const std::string& commandLine, OnFailure onFailure) {
  const ProcessEnd end = platform_.GetProcesses().RunAndWait(commandLine, ShowStyle::MinimisedWithFocus);
  if (end.started && end.exitCode == 0) return true;
  if (onFailure == OnFailure::LogOnly) return false;
  if (!end.started) {
    reports_.Add("The registry editor could not be started.");
  } else if (!end.errors.empty()) {
    reports_.Add(end.errors);
  } else {
    reports_.Add("The registry editor ended with code " + std::to_string(end.exitCode) + ": " + commandLine);
  }
  return false;
}

void RegistryStore::ShowRegistryReadError(Status code, const std::string& suffix) {
  platform_.GetDialogs().Show(
      {.text = "Registry read error " + std::to_string(static_cast<std::uint32_t>(code)) + suffix});
}

/// The refusal in words, which the log has afterwards.
std::string RegistryStore::LogRefusal(const std::string& what, const RegistryPath& path, Status status) {
  std::string words = FullName(path) + ": " + what + " because " + StatusReason(status);
  platform_.GetLog().Write(words);
  return words;
}

}  // namespace quillbox
