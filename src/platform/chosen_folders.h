// SPDX-License-Identifier: GPL-3.0-or-later
// What the user chose on this computer for the system that is open. That system's registry may name any folder of this
// computer as the place for backups; only the user can confirm it, and the answer is not kept in that registry.
#pragma once

#include <optional>

#include "text/win_path.h"

namespace quillbox {

/// Why a folder cannot be used for backups.
enum class FolderFault {
  NoSuchPlace,   ///< the path does not exist on this computer
  SystemFolder,  ///< it is in /proc, /sys or /dev
  OfTheSystem,   ///< it belongs to the system that is open, which has drives of its own
};

class ChosenFolders {
 public:
  virtual ~ChosenFolders() = default;
  /// Why `folder` cannot be used: a full path on a drive that shows this computer. Links are followed.
  virtual std::optional<FolderFault> FaultOf(const WinPath& folder) const = 0;
  /// True when the person chose `folder` for backups of the system and profile that are open, and no other since. Once
  /// true, it stays so in this run whatever happens to the profile.
  virtual bool IsChosen(const WinPath& folder) = 0;
  /// Remembers that the person chose `folder`, a full path. Throws Error when that cannot be written; it holds until
  /// the program ends all the same.
  virtual void Choose(const WinPath& folder) = 0;
};

}  // namespace quillbox
