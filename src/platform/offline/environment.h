// SPDX-License-Identifier: GPL-3.0-or-later
// The environment variables that a program would have if the disk's Windows ran and the profile's person had logged
// on. Paths in the registry are written with them.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/registry.h"
#include "text/win_path.h"

namespace quillbox {

class Environment {
 public:
  /// The longest value, and the longest expansion, in bytes; Windows' own limit in characters.
  static constexpr std::size_t kMaxLength = 32767;

  /// Sets a variable; names have no case. A value that is too long is not set.
  void Set(std::string_view name, std::string value);
  std::optional<std::string> Get(std::string_view name) const;
  /// `text` with its %VARIABLES% replaced, once: replacements are not expanded again. One that is not set stays as
  /// it is written, and so does the whole text when its expansion would be too long.
  std::string Expand(std::string_view text) const;

 private:
  std::map<std::string, std::string> values_;  ///< by upper-case name
};

/// Where the person's Windows and profile are.
struct EnvironmentPlaces {
  WinPath windows;            ///< C:\WINDOWS
  WinPath profile;            ///< C:\Documents and Settings\Anna
  std::string profileName;    ///< Anna
  bool isOldWindows = false;  ///< Windows 95, 98 or Me, which have few variables and none of the person's
};

/// Builds the environment from the registry's machine and user keys; what those lack is filled in as that Windows
/// would have it.
Environment ReadEnvironment(Registry& registry, const EnvironmentPlaces& places);

/// A text value as a program reads it: up to its first NUL, not expanded. Nothing when the key or the value is missing
/// or is not text.
std::optional<std::string> ReadText(Registry& registry, const RegistryPath& path, std::string_view name);

}  // namespace quillbox
