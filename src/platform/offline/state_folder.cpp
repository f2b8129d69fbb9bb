#include "platform/offline/state_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr const char* kFolderName = "quillbox";

fs::path FromEnvironment(const char* variable) {
  const char* value = std::getenv(variable);
  const fs::path path = value == nullptr ? "" : value;
  return path.is_absolute() ? path : fs::path();  // a relative one is to be ignored
}

fs::path HomeFolder() {
  fs::path home = FromEnvironment("HOME");
  if (!home.empty()) return home;
  const passwd* user = getpwuid(geteuid());
  return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "/";
}

}  // namespace

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

/// FNV-1a.
std::string HashName(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  std::array<char, 17> digits = {};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
  return digits.data();
}

}  // namespace quillbox
