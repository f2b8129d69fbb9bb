#include "platform/offline/state_folder.h"

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

#include "text/error.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr const char* kFolderName = "quillbox";

fs::path FromEnvironment(const char* variable) {
  const char* value = std::getenv(variable);
  const fs::path path = value == nullptr ? "" : value;
  return path.is_absolute() ? path : fs::path();  // a relative one is to be ignored
}

}  // namespace

fs::path HomeFolder() {
  fs::path home = FromEnvironment("HOME");
  if (!home.empty()) return home;
  const passwd* user = getpwuid(geteuid());
  return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "/";
}

fs::path StateFolder() {
  const fs::path state = FromEnvironment("XDG_STATE_HOME");
  return (state.empty() ? HomeFolder() / ".local" / "state" : state) / kFolderName;
}

bool MakePrivateFolder(const fs::path& folder) {
  std::error_code code;
  if (fs::is_directory(folder, code)) return true;
  if (folder.has_parent_path() && folder.parent_path() != folder && !MakePrivateFolder(folder.parent_path())) {
    return false;
  }
  if (!fs::create_directory(folder, code)) return fs::is_directory(folder, code);
  fs::permissions(folder, fs::perms::owner_all, code);
  return true;
}

std::optional<std::string> StateFolderFault(const fs::path& folder) {
  const auto mayWrite = [](const fs::path& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
  };
  if (MakePrivateFolder(folder) && mayWrite(folder)) return std::nullopt;
  // Why it could not be made is known by its nearest parent that is there.
  fs::path there = folder;
  while (access(there.c_str(), F_OK) != 0 && there != there.parent_path()) there = there.parent_path();
  std::error_code ignored;
  const bool isFolder = fs::is_directory(there, ignored);
  const int code = isFolder && !mayWrite(there) ? errno : ENOTDIR;
  return there.string() + " cannot be written: " + SystemReason(code);
}

std::string StateLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F && c != '%') {
      line += c;
      continue;
    }
    std::array<char, 4> code = {};
    std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned>(byte));
    line += code.data();
  }
  return line;
}

std::string FromStateLine(std::string_view line) {
  constexpr int kHexadecimal = 16;
  std::string text;
  for (std::size_t at = 0; at < line.size(); ++at) {
    unsigned byte = 0;
    const std::string_view digits = line.substr(at + 1).substr(0, 2);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), byte, kHexadecimal);
    if (line[at] == '%' && digits.size() == 2 && read.ptr == digits.data() + 2) {
      text += static_cast<char>(byte);
      at += 2;
    } else {
      text += line[at];
    }
  }
  return text;
}

/// FNV-1a.
std::string HashName(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  std::array<char, 17> digits = {};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
  return digits.data();
}

}  // namespace quillbox
