// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_fault.h"

namespace quillbox {

namespace {

class HostFaults : public std::error_category {
 public:
  const char* name() const noexcept override { return "host"; }
  std::string message(int value) const override {
    switch (static_cast<HostFault>(value)) {
      case HostFault::NotOrdinary:
        return "it is not an ordinary file";
      case HostFault::InUse:
        return "another program is using it; close that program and try again";
    }
    return "it cannot be used";
  }
};

}  // namespace

std::error_code make_error_code(HostFault fault) {
  static const HostFaults faults;
  return {static_cast<int>(fault), faults};
}

std::error_code SystemCode(int code) {
  return {code, std::generic_category()};
}

std::error_code SystemCode(std::errc code) {
  return std::make_error_code(code);
}

void ThrowErrno(int code) {
  throw std::system_error(SystemCode(code));
}

void ThrowFault(const std::error_code& fault) {
  throw std::system_error(fault);
}

bool ForbidsWriting(const std::error_code& fault) {
  return fault == std::errc::read_only_file_system || fault == std::errc::permission_denied ||
         fault == std::errc::operation_not_permitted;
}

}  // namespace quillbox
