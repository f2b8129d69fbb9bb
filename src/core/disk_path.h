// SPDX-License-Identifier: GPL-3.0-or-later
// Paths that the disk's registry names: message stores, address books. Nobody at this computer chose them, so they are
// followed on the disk's own drives only: a path on a drive of this computer would copy files of this computer onto the
// disk, or replace them. Every command checks such a path here before it uses it; labels and pickers show what is
// stored.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "platform/drives.h"
#include "text/registry_path.h"

namespace quillbox {

enum class PathFault {
  NotAttached,  ///< a drive that is not there
  NoSuchDrive,  ///< a drive of this computer
  NotFull,      ///< it would depend on the current directory
  OnNetwork,    ///< a share of another computer
};

/// Where a path was read; the default value has an empty name.
struct RegistryValueName {
  RegistryPath key;
  std::string value;
};

/// A path that is not used, and why.
struct PathRefusal {
  WinPath path;
  PathFault fault;
  std::optional<RegistryValueName> source;  ///< nothing for a path that the user gave

  /// All of it as a clause without a full stop ("the path ... is not used: that Windows has no such drive").
  std::string Clause() const;
  /// The same as a sentence.
  std::string Sentence() const;
};

/// A path that has been checked. A refused one gives no WinPath.
class DiskPath {
 public:
  /// `path` is as it is stored (variables expanded) or was chosen.
  DiskPath(Drives& drives, WinPath path, std::optional<RegistryValueName> source = std::nullopt);

  bool IsUsable() const { return std::holds_alternative<WinPath>(result_); }
  /// Absolute, without "." and "..", forward slashes or a backslash at its end; so its Name() is one name. Throws
  /// std::bad_variant_access for a refused path.
  const WinPath& Path() const { return std::get<WinPath>(result_); }
  /// Throws std::bad_variant_access for a usable path.
  const PathRefusal& Refusal() const { return std::get<PathRefusal>(result_); }
  /// The path as it was given.
  const WinPath& Stored() const { return stored_; }

 private:
  WinPath stored_;
  std::variant<WinPath, PathRefusal> result_;
};

// For a path that a command is about to use. Where its drive is not there, the user can name it first.

/// The message store folder `folder` of an identity, as ReadStoreFolder gives it.
DiskPath CheckStoreFolder(Drives& drives, const std::string& userId, WinPath folder);
/// The address book file `file` that `value` of the address book key holds: the one in use, a slot, the saved copy.
DiskPath CheckAddressBook(Drives& drives, WinPath file, const std::string& value = {});

}  // namespace quillbox
