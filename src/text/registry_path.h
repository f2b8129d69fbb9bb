// SPDX-License-Identifier: GPL-3.0-or-later
// Where a registry key is: one of the roots and the path below it. A type of its own, so that a key path is never
// taken for a file path.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillbox {

/// The predefined keys, with the platform's numbers.
enum class RegistryRoot : std::uint32_t {
  None = 0,
  ClassesRoot = 0x80000000,
  CurrentUser = 0x80000001,
  LocalMachine = 0x80000002,
  Users = 0x80000003,
  CurrentConfig = 0x80000005,
};

struct RegistryPath {
  RegistryRoot root = RegistryRoot::CurrentUser;
  std::string subkey;  ///< single backslashes between the names, none at the start; empty for the root itself

  /// This key's subkey `name` (which may be a path of several names).
  RegistryPath Child(std::string_view name) const;

  auto operator<=>(const RegistryPath&) const = default;
};

/// A key path with single backslashes between its names and none at either end.
std::string PlainKeyPath(std::string_view path);

/// `HKEY_CURRENT_USER` and so on; "HKEY_0" for None.
std::string_view RootName(RegistryRoot root);
/// The full name as the registry editor writes it: `HKEY_CURRENT_USER\Identities`.
std::string FullName(const RegistryPath& path);
/// The path of a full key name. Roots match without regard to case, "HKCU" and the like are understood, a trailing
/// backslash is dropped. Nothing when the name does not begin with a known root.
std::optional<RegistryPath> ParseRegistryPath(std::string_view fullName);

}  // namespace quillbox
