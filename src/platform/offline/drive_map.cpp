#include "platform/offline/drive_map.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <system_error>
#include <vector>

#include "text/unicode.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kForbidden = "\\:*?\"<>|";
constexpr char32_t kForbiddenBase = 0xF000;
constexpr char32_t kBadByteBase = 0xDC00;

unsigned char ByteAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

bool IsForbidden(char c) {
  return static_cast<unsigned char>(c) < 0x20 || kForbidden.find(c) != std::string_view::npos;
}

bool IsForbiddenLast(char c) {
  return c == ' ' || c == '.';
}

/// True for most names: ASCII that Windows takes as it is.
bool IsUsualName(std::string_view name) {
  static const std::array<bool, 256> kUsual = [] {
    std::array<bool, 256> usual{};
    for (int c = 0; c < 0x80; ++c) usual[static_cast<std::size_t>(c)] = !IsForbidden(static_cast<char>(c));
    return usual;
  }();
  return !name.empty() && !IsForbiddenLast(name.back()) &&
         std::all_of(name.begin(), name.end(), [](char c) { return kUsual[static_cast<unsigned char>(c)]; });
}

/// Length of the strict UTF-8 sequence (no surrogates) at `at`, or 0 when there is none.
std::size_t SequenceLength(std::string_view text, std::size_t at) {
  const unsigned char lead = ByteAt(text, at);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || at + length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((ByteAt(text, at + i) & 0xC0) != 0x80) return 0;
  }
  const unsigned char second = ByteAt(text, at + 1);
  const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
  const bool surrogate = lead == 0xED && second >= 0xA0;
  const bool tooLarge = lead == 0xF4 && second >= 0x90;
  return overlong || surrogate || tooLarge ? 0 : length;
}

/// The code point of the three bytes at `at`, or 0 when they are no three-byte sequence.
char32_t ThreeByteCodePoint(std::string_view text, std::size_t at) {
  if (at + 3 > text.size() || (ByteAt(text, at) & 0xF0) != 0xE0) return 0;
  return (ByteAt(text, at) & 0x0Fu) << 12 | (ByteAt(text, at + 1) & 0x3Fu) << 6 | (ByteAt(text, at + 2) & 0x3Fu);
}

bool LeavesItsFolder(std::string_view hostName) {
  return hostName.empty() || hostName == "." || hostName == ".." || hostName.find('/') != std::string_view::npos ||
         hostName.find('\0') != std::string_view::npos;
}

/// EqualIgnoreCase, made quick for the plain names that most are.
bool SameName(std::string_view a, std::string_view b, bool bothPlain) {
  if (!bothPlain) return EqualIgnoreCase(a, b);
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return AsciiUpper(x) == AsciiUpper(y); });
}

bool Exists(const fs::path& path) {
  struct stat info = {};
  return lstat(path.c_str(), &info) == 0;
}

std::vector<std::string_view> Components(std::string_view text) {
  std::vector<std::string_view> components;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\\/"), text.size());
    if (end > 0) components.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return components;
}

fs::path WithoutFinalSlash(const fs::path& path) {
  return path.has_relative_path() && !path.has_filename() ? path.parent_path() : path;
}

/// The part of `path` below `folder`, or nothing when it is not inside it.
std::optional<fs::path> Below(const fs::path& path, const fs::path& folder) {
  const auto [rest, end] = std::mismatch(path.begin(), path.end(), folder.begin(), folder.end());
  if (end != folder.end()) return std::nullopt;
  fs::path below;
  for (auto part = rest; part != path.end(); ++part) below /= *part;
  return below;
}

}  // namespace

std::string WindowsName(std::string_view hostName) {
  if (IsUsualName(hostName)) return std::string(hostName);
  std::string name;
  name.reserve(hostName.size());
  for (std::size_t at = 0; at < hostName.size();) {
    const char c = hostName[at];
    const std::size_t length = SequenceLength(hostName, at);
    const bool last = at + 1 == hostName.size();
    if (length == 0) {
      AppendUtf8(name, kBadByteBase + ByteAt(hostName, at));
    } else if (length == 1 && (IsForbidden(c) || (last && IsForbiddenLast(c)))) {
      AppendUtf8(name, kForbiddenBase + ByteAt(hostName, at));
    } else {
      name.append(hostName, at, length);
    }
    at += std::max<std::size_t>(length, 1);
  }
  return name;
}

std::string HostName(std::string_view windowsName) {
  std::string name;
  name.reserve(windowsName.size());
  for (std::size_t at = 0; at < windowsName.size();) {
    const char32_t code = ThreeByteCodePoint(windowsName, at);
    const bool last = at + 3 == windowsName.size();
    const auto low = static_cast<char>(code & 0xFF);
    const bool forbidden =
        code > kForbiddenBase && code < kForbiddenBase + 0x80 && (IsForbidden(low) || (last && IsForbiddenLast(low)));
    const bool badByte = code >= kBadByteBase + 0x80 && code <= kBadByteBase + 0xFF;
    if (forbidden || badByte) {
      name.push_back(low);
      at += 3;
    } else {
      name.push_back(windowsName[at++]);
    }
  }
  return LeavesItsFolder(name) ? std::string(windowsName) : name;
}

std::optional<std::string> FindEntry(const fs::path& folder, std::string_view windowsName) {
  const std::string asHost = HostName(windowsName);
  if (Exists(folder / asHost)) return asHost;
  if (asHost != windowsName && Exists(folder / windowsName)) return std::string(windowsName);

  const std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(folder.c_str()), closedir);
  if (!dir) return std::nullopt;
  const bool plain = IsAscii(windowsName);
  while (const dirent* entry = readdir(dir.get())) {
    const std::string_view stored = entry->d_name;
    if (stored != "." && stored != ".." && SameName(WindowsName(stored), windowsName, plain && IsAscii(stored))) {
      return std::string(stored);
    }
  }
  return std::nullopt;
}

DriveMap::DriveMap(const fs::path& cFolder, const std::map<char, fs::path>& more) {
  const auto add = [this](char letter, const fs::path& folder) {
    std::error_code code;
    const fs::path absolute = WithoutFinalSlash(fs::absolute(folder, code).lexically_normal());
    fs::path canonical = fs::weakly_canonical(absolute, code);
    drives_[letter] = {absolute, code ? absolute : WithoutFinalSlash(canonical)};
  };
  add(kHostDrive, "/");
  for (const auto& [letter, folder] : more) add(letter, folder);
  add(kSystemDrive, cFolder);
}

const fs::path* DriveMap::FolderOf(char letter) const {
  const auto drive = drives_.find(letter);
  return drive == drives_.end() ? nullptr : &drive->second.folder;
}

bool DriveMap::IsHostDrive(char letter) const {
  const fs::path* folder = FolderOf(letter);
  return folder != nullptr && *folder == "/";
}

std::optional<fs::path> DriveMap::HostPath(const WinPath& path) const {
  const fs::path* folder = FolderOf(path.Drive());
  if (folder == nullptr || !path.IsAbsolute()) return std::nullopt;

  fs::path host = *folder;
  bool exists = true;
  for (const std::string_view component : Components(std::string_view(path.Text()).substr(2))) {
    std::string name = HostName(component);
    if (LeavesItsFolder(name)) return std::nullopt;
    if (exists) {
      std::optional<std::string> stored = FindEntry(host, component);
      exists = stored.has_value();
      if (stored) name = std::move(*stored);
    }
    host /= name;
  }
  return host;
}

std::optional<WinPath> DriveMap::WindowsPathOf(const fs::path& hostPath) const {
  std::error_code code;
  const fs::path given = WithoutFinalSlash(fs::absolute(hostPath, code).lexically_normal());
  fs::path canonical = fs::weakly_canonical(given, code);
  if (code) canonical = given;

  char bestLetter = 0;
  fs::path best;
  std::ptrdiff_t bestLength = -1;
  for (const auto& [letter, drive] : drives_) {
    std::optional<fs::path> below = Below(given, drive.folder);
    if (!below) below = Below(canonical, drive.canonical);
    const std::ptrdiff_t length = std::distance(drive.folder.begin(), drive.folder.end());
    if (!below || length <= bestLength) continue;
    bestLetter = letter;
    best = *below;
    bestLength = length;
  }
  if (bestLetter == 0) return std::nullopt;

  WinPath result(std::string{bestLetter, ':', '\\'});
  for (const fs::path& part : best) {
    if (!part.empty()) result = result.Join(WindowsName(part.native()));
  }
  return result;
}

}  // namespace quillbox
