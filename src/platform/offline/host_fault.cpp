#include "platform/offline/host_fault.h"

#include <cerrno>

namespace quillbox {

namespace {

class HostFaults : public std::error_category {
 public:
  const char* name() const noexcept override { return "disk"; }
  std::string message(int value) const override {
    switch (static_cast<HostFault>(value)) {
      case HostFault::NoSuchDrive:
        return "there is no such drive";
      case HostFault::ImpossibleName:
        return "a name in it is impossible";
      case HostFault::LeadsOut:
        return "it leads out of the disk";
      case HostFault::TooManyLinks:
        return "its links lead in a circle, or there are too many of them";
      case HostFault::IsLink:
        return "it is a link, and links are not written to";
      case HostFault::Changed:
        return "a link has come into its path in the meantime";
      case HostFault::NotOrdinary:
        return "it is not an ordinary file";
      case HostFault::LeftAlone:
        return "the disk is not written, since its registry is damaged";
    }
    return "it cannot be used";
  }
};

const HostFaults& Faults() {
  static const HostFaults faults;
  return faults;
}

}  // namespace

std::error_code make_error_code(HostFault fault) {
  return {static_cast<int>(fault), Faults()};
}

std::error_code SystemCode(int code) {
  return {code, std::generic_category()};
}

int ErrnoOf(const std::error_code& fault) {
  return fault.category() == std::generic_category() ? fault.value() : 0;
}

void ThrowErrno(int code) {
  throw std::system_error(SystemCode(code));
}

void ThrowFault(const std::error_code& fault) {
  throw std::system_error(fault);
}

std::string ReasonOf(const std::error_code& fault) {
  return fault.category() == Faults() ? fault.message() : SystemReason(fault.value());
}

Status StatusOfErrno(int code) {
  switch (code) {
    case 0:
      return Status::Success;
    case ENOENT:
      return Status::FileNotFound;
    case ENOTDIR:
      return Status::PathNotFound;
    case EEXIST:
      return Status::FileExists;
    case ENOSPC:
    case EDQUOT:
      return Status::DiskFull;
    case EINVAL:
    case EILSEQ:
    case ENAMETOOLONG:
      return Status::InvalidParameter;
    default:
      return Status::AccessDenied;
  }
}

Status StatusOf(const std::error_code& fault) {
  if (fault.category() != Faults()) return StatusOfErrno(fault.value());
  if (fault == HostFault::NoSuchDrive) return Status::PathNotFound;
  return fault == HostFault::ImpossibleName ? Status::InvalidParameter : Status::AccessDenied;
}

}  // namespace quillbox
