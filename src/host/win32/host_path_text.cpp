// SPDX-License-Identifier: GPL-3.0-or-later
#include <windows.h>

#include <algorithm>
#include <array>
#include <optional>

#include "host/host_path.h"
#include "host/host_paths.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr std::string_view kSeparators = "\\/";
constexpr std::string_view kShares = "UNC";
/// The first names of paths that are neither on a drive nor on a share: "\\.\" and "\\?\".
constexpr std::string_view kDevices = ".";
constexpr std::string_view kObjects = "?";
constexpr std::size_t kShareNames = 3;    // UNC\server\share
constexpr std::size_t kUsualLimit = 247;  // of a folder that is made: MAX_PATH less a short file name

bool IsSeparator(char c) {
  return kSeparators.find(c) != std::string_view::npos;
}

bool IsLetter(char c) {
  return AsciiUpper(c) >= 'A' && AsciiUpper(c) <= 'Z';
}

bool IsDrive(std::string_view name) {
  return name.size() == 1 && IsLetter(name[0]);
}

/// True for what a text that goes on with "C:" has in common with one that is on a drive.
bool BeginsWithDrive(std::string_view text) {
  return text.size() >= 2 && IsLetter(text[0]) && text[1] == ':';
}

void AddNames(std::vector<std::string>& names, std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(kSeparators), text.size());
    const std::string_view name = text.substr(0, end);
    if (!name.empty() && name != ".") names.emplace_back(name);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

/// "UNC\server\share", of which the first name may be in any letters.
bool TakeShares(std::string_view& text) {
  const bool isShares = StartsWithIgnoreCase(text, kShares) && (text.size() == 3 || IsSeparator(text[3]));
  if (isShares) text.remove_prefix(kShares.size());
  return isShares;
}

/// Takes off what says where an absolute path begins, and gives the names that stand for it; nothing for a relative
/// path.
std::optional<std::vector<std::string>> TakeBeginning(std::string_view& text) {
  const bool isTwice = text.size() >= 2 && IsSeparator(text[0]) && IsSeparator(text[1]);
  std::optional<std::vector<std::string>> names;
  bool hasForm = false;
  if (isTwice) {
    text.remove_prefix(2);
    hasForm = text.size() >= 2 && (text[0] == '?' || text[0] == '.') && IsSeparator(text[1]);
    names = {std::string(hasForm ? text.substr(0, 1) : kShares)};
    if (hasForm) text.remove_prefix(2);
    if (hasForm && names->front() == kObjects && TakeShares(text)) return {{std::string(kShares)}};
  }
  const bool isOnDrive = BeginsWithDrive(text) && (!isTwice || (hasForm && names->front() == kObjects));
  if (!isOnDrive) return names;
  std::string drive(1, AsciiUpper(text[0]));
  text.remove_prefix(2);
  return {{std::move(drive)}};
}

std::string Joined(const std::vector<std::string>& names, std::size_t from) {
  std::string text;
  for (std::size_t at = from; at < names.size(); ++at) {
    if (at > from) text += '\\';
    text += names[at];
  }
  return text;
}

}  // namespace

HostPath::HostPath(std::string_view text) {
  if (text.size() == 1 && IsSeparator(text[0])) {
    isAbsolute_ = true;
    return;
  }
  if (std::optional<std::vector<std::string>> beginning = TakeBeginning(text)) {
    isAbsolute_ = true;
    names_ = std::move(*beginning);
  } else if (!text.empty() && IsSeparator(text[0])) {
    // "\x" is on the current drive.
    isAbsolute_ = true;
    const HostPath current = CurrentFolder();
    const std::size_t kept = current.HasName() && IsDrive(current.names_.front()) ? 1 : kShareNames;
    names_ = current.names_;
    names_.resize(std::min(names_.size(), kept));
  }
  AddNames(names_, text);
}

HostPath HostPath::FromStandard(const std::filesystem::path& path) {
  return HostPath(Narrow(path.native()));
}

std::string HostPath::Text() const {
  if (!isAbsolute_) return Joined(names_, 0);
  if (names_.empty()) return "\\";
  const std::string& first = names_.front();
  if (IsDrive(first)) return std::string(1, AsciiUpper(first[0])) + ":\\" + Joined(names_, 1);
  if (EqualIgnoreCase(first, kShares)) return "\\\\" + Joined(names_, 1);
  if (first == kDevices) return "\\\\" + Joined(names_, 0);
  // A volume by its number, whose root folder has the final separator.
  if (first == kObjects) return "\\\\" + Joined(names_, 0) + (names_.size() == 2 ? "\\" : "");
  return "\\" + Joined(names_, 0);
}

bool IsSameHostName(std::string_view a, std::string_view b) {
  return EqualIgnoreCase(a, b);
}

std::filesystem::path NativePath(const HostPath& path) {
  if (path.Empty()) return L".";
  const std::wstring text = Wide(path.Text());
  return text.size() < kUsualLimit || IsVirtualFolder(path) ? text : SystemPath(path);
}

std::wstring SystemPath(const HostPath& path) {
  const HostPath whole = Absolute(path);
  const std::string text = whole.Text();
  if (IsDevice(whole) || text.starts_with("\\\\?\\")) return Wide(text);
  if (text.starts_with("\\\\")) return L"\\\\?\\UNC\\" + Wide(text.substr(2));
  return L"\\\\?\\" + Wide(text);
}

bool IsNowhere(const std::wstring& systemPath) {
  return systemPath.starts_with(L"\\\\?\\\\");
}

HostPath PathOfSystem(std::wstring_view text) {
  // Links are written with the form of the system's innermost calls.
  constexpr std::wstring_view kInnermost = L"\\??\\";
  if (!text.starts_with(kInnermost)) return HostPath(Narrow(text));
  return HostPath("\\\\?\\" + Narrow(text.substr(kInnermost.size())));
}

bool IsVirtualFolder(const HostPath& path) {
  const std::vector<std::string>& names = path.Names();
  return path.IsAbsolute() && (names.empty() || (names.size() <= 2 && EqualIgnoreCase(names.front(), kShares)));
}

bool IsDevice(const HostPath& path) {
  return path.IsAbsolute() && path.HasName() && path.Names().front() == kDevices;
}

HostPath CurrentFolder() {
  std::wstring folder(GetCurrentDirectoryW(0, nullptr), L'\0');
  folder.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
  return HostPath(Narrow(folder));
}

}  // namespace quillbox
