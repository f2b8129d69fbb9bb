// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/folder_memory.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/host_paths.h"
#include "host/state_folder.h"
#include "platform/offline/hive_storage.h"
#include "text/error.h"

namespace quillbox {

namespace {

constexpr const char* kDoing = "remembering the backup folder";
constexpr const char* kFirstLine = "Quillbox backup folder 1";
constexpr std::string_view kIdentity = "identity ";
constexpr std::size_t kMaxIdentities = 100;  // remembered; more are of no use

HostPath Canonical(const HostPath& path) {
  const RealPath real = RealPathAsFarAsThere(path);
  return real.fault ? path : real.path;
}

}  // namespace

FolderMemory::FolderMemory(const HostPath& stateFolder, ProfileOnDisk profile, OfflineDrives& drives,
                           Registry& registry)
    : folder_(stateFolder / "backup-folders"),
      disk_(Canonical(profile.disk).Text()),
      profile_(std::move(profile.name)),
      drives_(drives),
      registry_(registry) {
  file_ = folder_ / HashName(disk_ + '\0' + profile_);
}

std::optional<HostPath> FolderMemory::PlaceOf(const WinPath& folder) const {
  const PlaceResult host = drives_.PlaceOf(folder);
  if (!host) return std::nullopt;
  RealPath real = RealPathAsFarAsThere(host->Path());
  return real.fault ? std::nullopt : std::optional(std::move(real.path));
}

std::optional<FolderFault> FolderMemory::FaultOf(const WinPath& folder) const {
  const std::optional<HostPath> place = PlaceOf(folder);
  if (!place) return FolderFault::NoSuchPlace;
  if (IsSystemsOwn(*place)) return FolderFault::SystemFolder;
  return IsOfTheSystem(*place) ? std::optional(FolderFault::OfTheSystem) : std::nullopt;
}

/// Compares folders and not their names, since a disk may be mounted at several places.
bool FolderMemory::IsOfTheSystem(const HostPath& place) const {
  for (HostPath above = place;; above = above.Parent()) {
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
      if (drives_.IsOwnDrive(letter) && IsSameEntry(above, *drives_.FolderOf(letter))) return true;
    }
    if (!above.HasName()) return false;
  }
}

bool FolderMemory::IsChosen(const WinPath& folder) {
  const std::optional<HostPath> place = PlaceOf(folder);
  if (!place) return false;
  if (!chosen_ && IsRemembered(*place)) chosen_ = place;
  return chosen_ == place;
}

// Another disk may be mounted at the same place later, with the same user name. A {USER_ID} is random, so no other disk
// has one of those that the person saw; as long as one of them is left, it is the same person's profile.
bool FolderMemory::IsRemembered(const HostPath& place) const {
  std::string lines;
  std::set<std::string> remembered;
  for (const std::string& line : ReadStateFile(file_)) {
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
  const std::optional<HostPath> place = PlaceOf(folder);
  if (!place) throw Error(kDoing, {folder.Text(), {}, {}}, "there is no such place");
  chosen_ = place;
  std::string text = Lines(*place);
  std::size_t count = 0;
  for (const std::string& userId : Identities()) {
    if (++count <= kMaxIdentities) text += std::string(kIdentity) + StateLine(userId) + '\n';
  }
  if (!MakePrivateFolder(folder_)) throw Error(kDoing, {folder_.Text(), {}, {}}, "the folder cannot be made");
  const HostPlace file = HostPlace::Anywhere(file_);
  ReplaceHostFile(file, ByteView(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), kDoing, file);
}

std::string FolderMemory::Lines(const HostPath& place) const {
  return std::string(kFirstLine) + "\ndisk " + StateLine(disk_) + "\nprofile " + StateLine(profile_) + "\nfolder " +
         StateLine(place.Text()) + '\n';
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
