// SPDX-License-Identifier: GPL-3.0-or-later
// Where something is on the host. What a Windows disk names must stay on that disk: a place beneath a drive's folder
// carries the disk's bounds with it, so that nothing can be opened there by a plain path. Only what belongs to the
// person or to this program (drive Z:, the state folder) is anywhere on the host, where links are followed as usual.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "host/host_path.h"
#include "platform/hosted/disk_fault.h"

namespace quillbox {

/// A drive of the disk on the host.
struct DriveFolder {
  /// Takes a folder as a person gives it, which need not exist.
  explicit DriveFolder(const HostPath& given);

  HostPath folder;     ///< absolute, as given
  HostPath canonical;  ///< the same without symbolic links
};

/// The drives' folders that make up one disk. A link that leads from one of them into another stays on the disk, as a
/// junction from one volume to another does on Windows: the person named both as parts of the same Windows.
class DiskBounds {
 public:
  explicit DiskBounds(std::vector<DriveFolder> drives) : drives_(std::move(drives)) {}

  struct Inside {
    std::size_t drive = 0;
    HostPath below;
  };
  const DriveFolder& Drive(std::size_t drive) const { return drives_.at(drive); }
  /// The drive with the deepest folder that contains the absolute host path, and the rest of the path. Nothing outside
  /// the disk.
  std::optional<Inside> Find(const HostPath& absolute) const;

 private:
  std::vector<DriveFolder> drives_;
};

class HostPlace {
 public:
  /// Anywhere on the host.
  static HostPlace Anywhere(const HostPath& path);
  /// Beneath a drive of the disk: the names `below`, without "..", of which none may be a link when it is opened.
  static HostPlace Beneath(std::shared_ptr<const DiskBounds> bounds, std::size_t drive, HostPath below = {});
  /// The folder of a disk that has this one drive, or further ones.
  static HostPlace DiskRoot(const HostPath& folder, const std::vector<HostPath>& more = {});

  bool IsBeneathDrive() const { return bounds_ != nullptr; }
  /// The following three for places beneath a drive only.
  const std::shared_ptr<const DiskBounds>& Bounds() const { return bounds_; }
  const DriveFolder& Drive() const { return bounds_->Drive(drive_); }
  std::size_t DriveNumber() const { return drive_; }
  /// The names below the drive's folder, or the whole path of a place anywhere.
  const HostPath& Names() const { return names_; }

  /// True for the drive's own folder and the host's root, which have no folder above them and no name.
  bool IsRoot() const { return !names_.HasName(); }
  /// The folder that it is in, and its name there; not for a root.
  HostPlace Folder() const;
  std::string Name() const { return names_.Name(); }
  /// The entry `hostName` of this folder; the name must be one that cannot leave it.
  HostPlace Join(const std::string& hostName) const;

  /// As a host path: for messages, and for programs of the host that the user starts. Never for opening.
  HostPath Path() const;

  friend bool operator==(const HostPlace& a, const HostPlace& b) {
    return a.IsBeneathDrive() == b.IsBeneathDrive() && a.Path() == b.Path();
  }

 private:
  HostPlace(std::shared_ptr<const DiskBounds> bounds, std::size_t drive, HostPath names)
      : bounds_(std::move(bounds)), drive_(drive), names_(std::move(names)) {}

  std::shared_ptr<const DiskBounds> bounds_;  ///< null for a place anywhere
  std::size_t drive_ = 0;
  HostPath names_;
};

/// A place, or why there is none.
class PlaceResult {
 public:
  PlaceResult(HostPlace place) : place_(std::move(place)) {}        // NOLINT: as std::optional
  PlaceResult(const std::error_code& fault) : fault_(fault) {}      // NOLINT
  PlaceResult(DiskFault fault) : fault_(make_error_code(fault)) {}  // NOLINT

  explicit operator bool() const { return place_.has_value(); }
  const HostPlace& operator*() const { return *place_; }
  const HostPlace* operator->() const { return &*place_; }
  const std::error_code& Fault() const { return fault_; }
  /// The place; throws std::system_error with the reason when there is none.
  const HostPlace& OrThrow() const {
    if (!place_) ThrowFault(fault_);
    return *place_;
  }

 private:
  std::optional<HostPlace> place_;
  std::error_code fault_;
};

}  // namespace quillbox
