// SPDX-License-Identifier: GPL-3.0-or-later
// Windows' drives: which there are, what they are, and the current directory of each.
#pragma once

#include <optional>
#include <string>

#include "platform/status.h"
#include "text/win_path.h"

namespace quillbox {

/// The platform's drive type numbers.
enum class DriveType { Unknown = 0, NoRoot = 1, Removable = 2, Fixed = 3, Remote = 4, CdRom = 5, RamDisk = 6 };

class Drives {
 public:
  virtual ~Drives() = default;

  virtual DriveType TypeOfDrive(const WinPath& root) = 0;
  /// True for a drive of the system that is worked on, with or without a medium; false for a letter that has none and
  /// for a drive that shows the files of the computer that the program runs on.
  virtual bool IsOwnDrive(char letter) = 0;
  /// True where shares of other computers ("\\\\server\\mail") can be used by their names.
  virtual bool ReachesShares() { return false; }
  /// Where the drive of an absolute path is not there, lets the user name it, once in a command. The caller looks at
  /// the drive again afterwards.
  virtual void OfferToAttach(const WinPath& /*path*/) {}
  /// The volume's label, which may be empty; nothing when the drive is not there.
  virtual std::optional<std::string> VolumeLabel(const WinPath& root) = 0;

  /// Each drive has a current directory of its own. Changing the drive leaves them as they are.
  virtual Status SetCurrentDrive(char letter) = 0;
  /// Sets the current directory of the path's drive; the current drive stays.
  virtual Status SetCurrentDirectory(const WinPath& path) = 0;
  /// The current directory of the current drive.
  virtual WinPath CurrentDirectory() = 0;
};

}  // namespace quillbox
