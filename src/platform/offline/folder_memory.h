// SPDX-License-Identifier: GPL-3.0-or-later
// The backup folder that the person chose for a disk and profile, remembered in the state folder: a small file of its
// own for each disk and profile, so that programs on different disks do not overwrite each other's.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "host/host_path.h"
#include "platform/chosen_folders.h"
#include "platform/offline/offline_drives.h"
#include "platform/registry.h"

namespace quillbox {

/// Whose choices are remembered: a person's, for one disk.
struct ProfileOnDisk {
  HostPath disk;
  std::string name;
};

class FolderMemory : public ChosenFolders {
 public:
  /// `disk` is the folder that is C:\ . The other two must outlive this object.
  FolderMemory(const HostPath& stateFolder, ProfileOnDisk profile, OfflineDrives& drives, Registry& registry);

  std::optional<FolderFault> FaultOf(const WinPath& folder) const override;
  bool IsChosen(const WinPath& folder) override;
  void Choose(const WinPath& folder) override;

 private:
  /// Where a folder is once all links are followed; nothing when it is not on the host.
  std::optional<HostPath> PlaceOf(const WinPath& folder) const;
  bool IsOfTheSystem(const HostPath& place) const;
  bool IsRemembered(const HostPath& place) const;
  std::string Lines(const HostPath& place) const;
  /// The {USER_ID}s that the open profile has now.
  std::set<std::string> Identities() const;

  HostPath folder_;  ///< where file_ is
  HostPath file_;
  std::string disk_;
  std::string profile_;
  OfflineDrives& drives_;
  Registry& registry_;
  std::optional<HostPath> chosen_;  ///< as far as this run knows
};

}  // namespace quillbox
