// SPDX-License-Identifier: GPL-3.0-or-later
// Why something on a disk is refused by the rules of this program, beside the reasons that the host has (host_fault.h).
// An errno would say "Invalid cross-device link" where a disk's link leads out of the disk.
#pragma once

#include <system_error>

#include "host/host_fault.h"
#include "platform/status.h"

namespace quillbox {

enum class DiskFault {
  NoSuchDrive = 1,
  ImpossibleName,  ///< a name that would leave its folder
  LeadsOut,        ///< a link on the path leads to a place outside the disk's drives
  TooManyLinks,    ///< links that lead in a circle, or more of them than any path needs
  IsLink,          ///< what would be written is a link
  Changed,         ///< a link has come into the path since the place was looked up
  LeftAlone,       ///< the disk is not written: its registry is damaged, and the user knows it
};
std::error_code make_error_code(DiskFault fault);  // NOLINT(readability-identifier-naming): the library's name

/// The platform's status for a reason; Success for none.
Status StatusOf(const std::error_code& fault);

}  // namespace quillbox

template <>
struct std::is_error_code_enum<quillbox::DiskFault> : std::true_type {};
