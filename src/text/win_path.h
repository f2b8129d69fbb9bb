// SPDX-License-Identifier: GPL-3.0-or-later
// Windows-style paths as a type of their own, so that they cannot be mixed up with host paths or registry paths.
// Pure text: nothing here looks at a disk.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillbox {

class WinPath {
 public:
  WinPath() = default;
  /// Any text that a person or a registry may give; forward slashes are taken as backslashes when it is resolved.
  explicit WinPath(std::string text) : text_(std::move(text)) {}

  const std::string& Text() const { return text_; }
  bool Empty() const { return text_.empty(); }

  /// The drive letter in upper case, or 0 when the path names none.
  char Drive() const;
  /// True for a drive letter, a colon and a backslash at the start.
  bool IsAbsolute() const;
  /// This path, a backslash unless one is there already, and `name`.
  WinPath Join(std::string_view name) const;
  /// The text before the last backslash ("C:\" for "C:\x"); empty when there is none.
  WinPath Parent() const;
  /// The text after the last backslash or drive colon.
  std::string Name() const;
  /// The names between the separators, the drive left out. They live as long as the path.
  std::vector<std::string_view> Names() const;

  auto operator<=>(const WinPath&) const = default;

 private:
  std::string text_;
};

/// `path` made absolute: relative to `directory` (absolute) where it has no drive or root of its own; "." and ".."
/// are resolved (".." at a root stays there), repeated backslashes are one, a trailing backslash goes unless it is
/// the root's. Blanks and full stops at the end of a component are dropped, as Windows does.
WinPath Resolve(const WinPath& path, const WinPath& directory);

/// Appends a backslash unless the text already ends with one.
std::string WithBackslash(std::string text);

/// The folder of a file path, final backslash included, of the text trimmed of blanks; empty without any backslash.
std::string DirectoryFromFile(std::string_view path);
/// The piece after the last backslash; empty for a text without any backslash.
std::string NameFromFullPath(std::string_view path);
/// The text after the last backslash (the whole text without one), cut before its first full stop.
std::string GetFileName(std::string_view path);

/// Why a name is impossible, as a clause: "it contains \":\"", "CON is a device name".
struct NameFault {
  std::string reason;
};
/// Why `name` cannot be one file or folder name on Windows; nothing when it can. A name that leaves its folder ("..",
/// "a\b") is refused too.
std::optional<NameFault> FileNameFault(std::string_view name);

/// A wildcard pattern as Windows' file search takes it: "*" and "?", without regard to case; "*.*" matches every name.
class Wildcard {
 public:
  explicit Wildcard(std::string_view pattern);
  bool Matches(std::string_view name) const;

 private:
  bool matchesAll_;
  std::string plain_;  ///< in upper case; empty for a pattern that is not ASCII
  std::u16string units_;
};

/// `text` without blanks at both ends.
std::string Trim(std::string_view text);

}  // namespace quillbox
