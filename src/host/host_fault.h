// SPDX-License-Identifier: GPL-3.0-or-later
// Why the host refuses something: std::error_code throughout, thrown as std::system_error. Codes are errnos (the
// generic category) on every host, so that one comparison serves all, and this program's own where no errno says what
// it is.
#pragma once

#include <string>
#include <system_error>

#include "text/error.h"

namespace quillbox {

/// What no errno says.
enum class HostFault {
  NotOrdinary = 1,  ///< a device, pipe or socket
  InUse,            ///< another program has it open and shares it with nobody
};
std::error_code make_error_code(HostFault fault);  // NOLINT(readability-identifier-naming): the library's name

/// An errno as an error code.
std::error_code SystemCode(int code);
std::error_code SystemCode(std::errc code);

/// Throws std::system_error for an errno, or for another reason.
[[noreturn]] void ThrowErrno(int code);
[[noreturn]] void ThrowFault(const std::error_code& fault);

/// A clause without a final full stop: "it is not an ordinary file", "No such file or directory".
std::string ReasonOf(const std::error_code& fault);

/// True when there is no space left, whether the disk's or the user's share of it.
bool IsFull(const std::error_code& fault);
/// True for what disks, and file systems with checksums, answer about a place that cannot be read.
bool IsUnreadablePlace(const std::error_code& fault);
/// True for failures that do not mean that writing is forbidden: the next try may succeed.
bool MayPass(const std::error_code& fault);
/// True when the disk or the permissions forbid to write, as opposed to a full or failing disk.
bool ForbidsWriting(const std::error_code& fault);

/// Runs `work`; a std::system_error becomes an Error about the file `name`. `doing` is the Error's.
template <class Work>
auto WithName(const char* doing, const std::string& name, const Work& work) {
  try {
    return work();
  } catch (const std::system_error& failure) {
    throw Error(doing, {name, {}, {}}, ReasonOf(failure.code()));
  }
}

}  // namespace quillbox

template <>
struct std::is_error_code_enum<quillbox::HostFault> : std::true_type {};
