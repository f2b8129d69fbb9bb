// SPDX-License-Identifier: GPL-3.0-or-later
// What the commands work on: a disk that was opened, or files of this computer without any disk.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/console.h"
#include "cli/terminal_dialogs.h"
#include "platform/offline/offline_platform.h"
#include "session/session.h"

namespace quillbox {

/// The options of all commands that open a disk.
struct DiskOptions {
  HostPath folder;                      ///< absolute; empty where a command was given no disk
  std::string profile;                  ///< empty: the only one
  std::map<char, HostPath> drives;      ///< by upper-case letter
  bool salvage = false;                 ///< damaged registries and files are taken as far as they can be read
  std::vector<std::string> identities;  ///< usernames or {USER_ID}s; none: all
};

/// A disk while a command works on it.
class OpenedDisk {
 public:
  enum class Use {
    Look,    ///< nothing is written on the disk, and another program may have it
    Change,  ///< the disk's lock is held
  };
  /// Says what is wrong with the disk. Throws Error and HiveRefused as the platform does.
  OpenedDisk(Console& console, const DiskOptions& options, Use use);

 private:
  TerminalDialogs dialogs_;

 public:
  OfflinePlatform platform;
  Session session{platform};

  /// The identities that were asked for, all where none was. Throws Error when one is not there, and when several have
  /// that name.
  std::vector<IdentityInfo> Chosen(const std::vector<std::string>& names) const;
  /// The path under which the disk's programs see the computer's `path`.
  WinPath PathOf(const HostPath& path) { return platform.GetDrives().WindowsPathOf(path); }
};

/// Files of this computer, for commands that work without a disk.
struct HostFiles {
  OfflineDrives drives{DriveMap(HostPath::Root())};
  HostedFiles files{drives};
  RegistryFacts facts;

  /// `path` below drive Z:, which is all of this computer.
  static WinPath PathOf(const HostPath& path);
};

/// The names of the files that match, in the file system's order.
std::vector<std::string> FilesLike(FileSystem& files, const WinPath& pattern);

/// A path as the user gave it, made absolute.
HostPath GivenPath(const std::string& text);

}  // namespace quillbox
