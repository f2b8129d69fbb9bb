// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/registry_path.h"

#include <algorithm>

#include "text/unicode.h"

namespace quillbox {
namespace {

struct RootNames {
  RegistryRoot root;
  std::string_view name;
  std::string_view shortName;
};

constexpr RootNames kRoots[] = {
    {RegistryRoot::ClassesRoot, "HKEY_CLASSES_ROOT", "HKCR"},
    {RegistryRoot::CurrentUser, "HKEY_CURRENT_USER", "HKCU"},
    {RegistryRoot::LocalMachine, "HKEY_LOCAL_MACHINE", "HKLM"},
    {RegistryRoot::Users, "HKEY_USERS", "HKU"},
    {RegistryRoot::CurrentConfig, "HKEY_CURRENT_CONFIG", "HKCC"},
};

/// `text` with single backslashes between its names and none at the ends.
std::string Tidy(std::string_view text) {
  std::string tidy;
  for (const char c : text) {
    if (c != '\\' || (!tidy.empty() && tidy.back() != '\\')) tidy += c;
  }
  if (tidy.ends_with('\\')) tidy.pop_back();
  return tidy;
}

}  // namespace

RegistryPath RegistryPath::Child(std::string_view name) const {
  if (name.empty()) return *this;
  return {root, subkey.empty() ? std::string(name) : subkey + '\\' + std::string(name)};
}

std::string_view RootName(RegistryRoot root) {
  const auto* found =
      std::find_if(std::begin(kRoots), std::end(kRoots), [root](const RootNames& names) { return names.root == root; });
  return found == std::end(kRoots) ? "HKEY_0" : found->name;
}

std::string FullName(const RegistryPath& path) {
  std::string name(RootName(path.root));
  if (!path.subkey.empty()) name += '\\' + path.subkey;
  return name;
}

std::optional<RegistryPath> ParseRegistryPath(std::string_view fullName) {
  const std::size_t end = std::min(fullName.find('\\'), fullName.size());
  const std::string_view first = fullName.substr(0, end);
  for (const RootNames& names : kRoots) {
    if (!EqualIgnoreCase(first, names.name) && !EqualIgnoreCase(first, names.shortName)) continue;
    return RegistryPath{names.root, Tidy(fullName.substr(end))};
  }
  return std::nullopt;
}

std::string PlainKeyPath(std::string_view path) {
  std::string names;
  for (const char c : path) {
    if (c != '\\' || (!names.empty() && names.back() != '\\')) names += c;
  }
  if (!names.empty() && names.back() == '\\') names.pop_back();
  return names;
}

}  // namespace quillbox
