// SPDX-License-Identifier: GPL-3.0-or-later
// Where changes to a hive go when its disk cannot be written: a copy in the user's state folder, which is valid as long
// as the disk's own hive has not changed since the copy was begun.
#pragma once

#include <cstddef>
#include <string>

#include "platform/hosted/host_place.h"

namespace quillbox {

class PrivateCopy {
 public:
  /// The copy of the hive `disk`, below `stateFolder`. Touches nothing.
  PrivateCopy(const HostPath& stateFolder, const HostPlace& disk);

  const HostPlace& File() const { return file_; }
  /// True when there is a copy and the disk's hive has not changed since it was begun.
  bool IsCurrent() const;
  /// True when there is a copy that IsCurrent() has turned down.
  bool IsOutdated() const;
  /// True when the copy's folder is there, or could be made, and can be written.
  bool CanWrite() const;
  /// The number of damaged places of the hive that a current copy was made from.
  std::size_t DamagedPlaces() const;
  /// Notes the disk's hive as it is now, ahead of writing File(), and in how many places it is damaged.
  /// An outdated copy is kept under another name, which is returned; else an empty path. Throws Error.
  HostPath Begin(std::size_t damagedPlaces);
  /// Keeps the copy, damaged as it is, under another name too, ahead of its being replaced. Throws Error.
  HostPath KeepDamaged() const;

 private:
  bool IsThere() const;
  std::string DiskOrigin() const;

  HostPlace disk_;
  HostPath folder_;
  HostPlace file_;
  HostPlace originFile_;
};

}  // namespace quillbox
