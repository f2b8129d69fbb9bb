#include "platform/offline/folder_memory.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/offline/hive_storage.h"
#include "platform/offline/state_folder.h"
#include "text/error.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDoing = "remembering the backup folder";
constexpr const char* kFirstLine = "Quillbox backup folder 1";
constexpr std::string_view kIdentity = "identity ";
constexpr std::size_t kMaxIdentities = 100;  // remembered; more are of no use
constexpr std::array kSystemFolders = {"/proc", "/sys", "/dev"};

bool IsIn(const fs::path& path, const fs::path& folder) {
  return std::mismatch(path.begin(), path.end(), folder.begin(), folder.end()).second == folder.end();
}

std::string Canonical(const fs::path& path) {
  std::error_code code;
  const fs::path canonical = fs::weakly_canonical(path, code);
  return (code ? path : canonical).string();
}

}  // namespace

FolderMemory::FolderMemory(const fs::path& stateFolder, ProfileOnDisk profile, OfflineDrives& drives,
                           Registry& registry)
    : folder_(stateFolder / "backup-folders"),
      disk_(Canonical(profile.disk)),
      profile_(std::move(profile.name)),
      drives_(drives),
      registry_(registry) {
  file_ = folder_ / HashName(disk_ + '\0' + profile_);
}

std::optional<fs::path> FolderMemory::PlaceOf(const WinPath& folder) const {
  const PlaceResult host = drives_.PlaceOf(folder);
  if (!host) return std::nullopt;
  std::error_code code;
  fs::path place = fs::weakly_canonical(host->Path(), code);
  return code ? std::nullopt : std::optional(std::move(place));
}

std::optional<FolderFault> FolderMemory::FaultOf(const WinPath& folder) const {
  const std::optional<fs::path> place = PlaceOf(folder);
  if (!place) return FolderFault::NoSuchPlace;
  for (const char* system : kSystemFolders) {
    if (IsIn(*place, system)) return FolderFault::SystemFolder;
  }
  return IsOfTheSystem(*place) ? std::optional(FolderFault::OfTheSystem) : std::nullopt;
}

/// Compares folders and not their names, since a disk may be mounted at several places.
bool FolderMemory::IsOfTheSystem(const fs::path& place) const {
  for (fs::path above = place;; above = above.parent_path()) {
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
      std::error_code code;
      if (drives_.IsOwnDrive(letter) && fs::equivalent(above, *drives_.Map().FolderOf(letter), code)) return true;
    }
    if (above == above.parent_path()) return false;
  }
}

bool FolderMemory::IsChosen(const WinPath& folder) {
  const std::optional<fs::path> place = PlaceOf(folder);
  if (!place) return false;
  if (!chosen_ && IsRemembered(*place)) chosen_ = place;
  return chosen_ == place;
}

// Another disk may be mounted at the same place later, with the same user name. A {USER_ID} is random, so no other disk
// has one of those that the person saw; as long as one of them is left, it is the same person's profile.
bool FolderMemory::IsRemembered(const fs::path& place) const {
  std::ifstream file(file_, std::ios::binary);
  std::string lines;
  std::set<std::string> remembered;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(kIdentity)) {
      remembered.insert(line.substr(kIdentity.size()));
    } else {
      lines += line + '\n';
    }
  }
  if (lines != Lines(place)) return false;
  const std::set<std::string> now = Identities();
  if (remembered.empty()) return now.empty();
  return std::any_of(now.begin(), now.end(),
                     [&](const std::string& userId) { return remembered.count(StateLine(userId)) > 0; });
}

void FolderMemory::Choose(const WinPath& folder) {
  const std::optional<fs::path> place = PlaceOf(folder);
  if (!place) throw Error(kDoing, {folder.Text(), {}, {}}, "there is no such place");
  chosen_ = place;
  std::string text = Lines(*place);
  std::size_t count = 0;
  for (const std::string& userId : Identities()) {
    if (++count <= kMaxIdentities) text += std::string(kIdentity) + StateLine(userId) + '\n';
  }
  if (!MakePrivateFolder(folder_)) throw Error(kDoing, {folder_.string(), {}, {}}, "the folder cannot be made");
  const HostPlace file = HostPlace::Anywhere(file_);
  ReplaceHostFile(file, ByteView(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), kDoing, file);
}

std::string FolderMemory::Lines(const fs::path& place) const {
  return std::string(kFirstLine) + "\ndisk " + StateLine(disk_) + "\nprofile " + StateLine(profile_) + "\nfolder " +
         StateLine(place.string()) + '\n';
}

std::set<std::string> FolderMemory::Identities() const {
  std::set<std::string> userIds;
  const OpenResult identities = registry_.Open({RegistryRoot::CurrentUser, "Identities"}, Access::Read);
  if (identities.status != Status::Success) return userIds;
  for (std::uint32_t index = 0;; ++index) {
    NameResult name = registry_.EnumKey(identities.key, index);
    if (name.status != Status::Success) return userIds;
    userIds.insert(std::move(name.name));
  }
}

}  // namespace quillbox
