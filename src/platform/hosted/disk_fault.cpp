// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/disk_fault.h"

#include <string>

namespace quillbox {

namespace {

class DiskFaults : public std::error_category {
 public:
  const char* name() const noexcept override { return "disk"; }
  std::string message(int value) const override {
    switch (static_cast<DiskFault>(value)) {
      case DiskFault::NoSuchDrive:
        return "there is no such drive";
      case DiskFault::ImpossibleName:
        return "a name in it is impossible";
      case DiskFault::LeadsOut:
        return "it leads out of the disk";
      case DiskFault::TooManyLinks:
        return "its links lead in a circle, or there are too many of them";
      case DiskFault::IsLink:
        return "it is a link, and links are not written to";
      case DiskFault::Changed:
        return "a link has come into its path in the meantime";
      case DiskFault::LeftAlone:
        return "the disk is not written, since its registry is damaged";
    }
    return "it cannot be used";
  }
};

/// The status for what the host says.
struct HostReason {
  std::errc code;
  Status status;
};
constexpr HostReason kHostReasons[] = {
    {std::errc::no_such_file_or_directory, Status::FileNotFound},
    {std::errc::not_a_directory, Status::PathNotFound},
    {std::errc::file_exists, Status::FileExists},
    {std::errc::invalid_argument, Status::InvalidParameter},
    {std::errc::illegal_byte_sequence, Status::InvalidParameter},
    {std::errc::filename_too_long, Status::InvalidParameter},
};

}  // namespace

std::error_code make_error_code(DiskFault fault) {
  static const DiskFaults faults;
  return {static_cast<int>(fault), faults};
}

Status StatusOf(const std::error_code& fault) {
  if (!fault) return Status::Success;
  if (fault == DiskFault::NoSuchDrive) return Status::PathNotFound;
  if (fault == DiskFault::ImpossibleName) return Status::InvalidParameter;
  if (IsFull(fault)) return Status::DiskFull;
  for (const HostReason& reason : kHostReasons) {
    if (fault == reason.code) return reason.status;
  }
  return Status::AccessDenied;
}

}  // namespace quillbox
