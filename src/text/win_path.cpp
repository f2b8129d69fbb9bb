// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/win_path.h"

#include <algorithm>
#include <vector>

#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::size_t kMaxFileNameUnits = 255;
constexpr std::string_view kForbiddenCharacters = "<>:\"/\\|?*";
constexpr std::string_view kDeviceNames[] = {"CON",  "PRN",  "AUX",  "NUL",  "COM1", "COM2", "COM3", "COM4",
                                             "COM5", "COM6", "COM7", "COM8", "COM9", "LPT1", "LPT2", "LPT3",
                                             "LPT4", "LPT5", "LPT6", "LPT7", "LPT8", "LPT9"};

bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool HasDrive(std::string_view text) {
  return text.size() >= 2 && IsLetter(text[0]) && text[1] == ':';
}

/// Appends the components of `text` to `components`, resolving "..".
void Walk(std::string_view text, std::vector<std::string>& components) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\\'), text.size());
    std::string_view component = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (component == "..") {
      if (!components.empty()) components.pop_back();
      continue;
    }
    component = component.substr(0, component.find_last_not_of(" .") + 1);
    if (!component.empty()) components.emplace_back(component);
  }
}

std::string WithBackslashesOnly(std::string text) {
  std::replace(text.begin(), text.end(), '/', '\\');
  return text;
}

bool IsDeviceName(std::string_view name) {
  std::string_view base = name.substr(0, name.find('.'));
  base = base.substr(0, base.find_last_not_of(' ') + 1);
  return std::any_of(std::begin(kDeviceNames), std::end(kDeviceNames),
                     [base](std::string_view device) { return EqualIgnoreCase(base, device); });
}

/// True when `text`, put through `upper`, matches the upper-case `mask` with its "*" and "?".
template <class Text, class Mask, class Upper>
bool MatchesMask(const Text& text, const Mask& mask, Upper upper) {
  std::size_t t = 0;
  std::size_t m = 0;
  std::size_t star = Mask::npos;
  std::size_t resume = 0;
  while (t < text.size()) {
    if (m < mask.size() && mask[m] == '*') {
      star = m++;
      resume = t;
    } else if (m < mask.size() && (mask[m] == '?' || mask[m] == upper(text[t]))) {
      ++m;
      ++t;
    } else if (star != Mask::npos) {
      m = star + 1;
      t = ++resume;
    } else {
      return false;
    }
  }
  return mask.find_first_not_of('*', m) == Mask::npos;
}

}  // namespace

char WinPath::Drive() const {
  if (!HasDrive(text_)) return 0;
  return static_cast<char>(text_[0] & ~0x20);
}

bool WinPath::IsAbsolute() const {
  return HasDrive(text_) && text_.size() >= 3 && text_[2] == '\\';
}

WinPath WinPath::Join(std::string_view name) const {
  return WinPath(WithBackslash(text_) + std::string(name));
}

WinPath WinPath::Parent() const {
  const std::size_t last = text_.rfind('\\');
  if (last == std::string::npos) return {};
  const bool isRoot = last == 0 || (last == 2 && HasDrive(text_));
  return WinPath(text_.substr(0, isRoot ? last + 1 : last));
}

std::string WinPath::Name() const {
  const std::size_t last = text_.rfind('\\');
  if (last != std::string::npos) return text_.substr(last + 1);
  return HasDrive(text_) ? text_.substr(2) : text_;
}

std::vector<std::string_view> WinPath::Names() const {
  std::vector<std::string_view> names;
  std::string_view rest = std::string_view(text_).substr(Drive() != 0 ? 2 : 0);
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of("\\/"), rest.size());
    if (end > 0) names.push_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return names;
}

WinPath Resolve(const WinPath& path, const WinPath& directory) {
  const std::string text = WithBackslashesOnly(path.Text());
  const std::string base = WithBackslashesOnly(directory.Text());
  const bool hasDrive = HasDrive(text);
  const std::string_view rest = std::string_view(text).substr(hasDrive ? 2 : 0);
  const bool isShare = !hasDrive && rest.starts_with("\\\\");

  std::string root = "\\\\";
  std::vector<std::string> components;
  if (!isShare) {
    root = (hasDrive ? text.substr(0, 2) : base.substr(0, HasDrive(base) ? 2 : 0)) + "\\";
    const bool sameDrive = !hasDrive || path.Drive() == directory.Drive();
    if (!rest.starts_with('\\') && sameDrive) Walk(std::string_view(base).substr(HasDrive(base) ? 2 : 0), components);
  }
  Walk(rest, components);

  std::string resolved = root;
  for (std::size_t i = 0; i < components.size(); ++i) resolved += (i == 0 ? "" : "\\") + components[i];
  return WinPath(resolved);
}

std::string WithBackslash(std::string text) {
  if (!text.ends_with('\\')) text += '\\';
  return text;
}

std::string DirectoryFromFile(std::string_view path) {
  const std::string trimmed = Trim(path);
  return trimmed.substr(0, trimmed.rfind('\\') + 1);
}

std::string NameFromFullPath(std::string_view path) {
  const std::size_t last = path.rfind('\\');
  return last == std::string_view::npos ? std::string() : std::string(path.substr(last + 1));
}

std::string GetFileName(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('\\') + 1);
  return std::string(name.substr(0, name.find('.')));
}

std::optional<NameFault> FileNameFault(std::string_view name) {
  if (name.empty()) return NameFault{"it is empty"};
  if (name == "." || name == "..") return NameFault{"it stands for a folder above or at the current one"};
  if (!IsInnerText(name)) return NameFault{"it is not valid text"};
  for (const char c : name) {
    if (static_cast<unsigned char>(c) < 0x20) return NameFault{"it contains a control character"};
    if (kForbiddenCharacters.find(c) != std::string_view::npos)
      return NameFault{std::string("it contains \"") + c + "\""};
  }
  if (name.ends_with(' ') || name.ends_with('.')) return NameFault{"it ends with a blank or a full stop"};
  if (IsDeviceName(name)) return NameFault{std::string(name) + " is a device name"};
  if (ToUtf16(name).size() > kMaxFileNameUnits) return NameFault{"it is longer than 255 characters"};
  return std::nullopt;
}

Wildcard::Wildcard(std::string_view pattern)
    : matchesAll_(pattern == "*.*" || pattern == "*"),
      plain_(IsAscii(pattern) ? UpperCase(pattern) : std::string()),
      units_(UpperCase(ToUtf16(pattern))) {}

bool Wildcard::Matches(std::string_view name) const {
  if (matchesAll_) return true;
  if (!plain_.empty() && IsAscii(name)) return MatchesMask(name, plain_, AsciiUpper);
  return MatchesMask(ToUtf16(name), units_, [](char16_t unit) { return UpperCase(unit); });
}

std::string Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

}  // namespace quillbox
