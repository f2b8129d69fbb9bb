// Why something on the host is refused: the system's errors and this program's own rules, in one type, with words for
// both. An errno would say "Invalid cross-device link" where a disk's link leads out of the disk.
#pragma once

#include <string>
#include <system_error>

#include "platform/status.h"
#include "text/error.h"

namespace quillbox {

/// The rules of this program for what is on a disk.
enum class HostFault {
  NoSuchDrive = 1,
  ImpossibleName,  ///< a name that would leave its folder
  LeadsOut,        ///< a link on the path leads to a place outside the disk's drives
  TooManyLinks,    ///< links that lead in a circle, or more of them than any path needs
  IsLink,          ///< what would be written is a link
  Changed,         ///< a link has come into the path since the place was looked up
  NotOrdinary,     ///< a device, pipe or socket
  LeftAlone,       ///< the disk is not written: its registry is damaged, and the user knows it
};
std::error_code make_error_code(HostFault fault);  // NOLINT(readability-identifier-naming): the library's name

/// An errno as an error code, and back: 0 for a reason of another kind.
std::error_code SystemCode(int code);
int ErrnoOf(const std::error_code& fault);

/// Throws std::system_error for an errno, or for another reason.
[[noreturn]] void ThrowErrno(int code);
[[noreturn]] void ThrowFault(const std::error_code& fault);

/// A clause without a final full stop: "it leads out of the disk", "No such file or directory".
std::string ReasonOf(const std::error_code& fault);

/// The platform's status for an errno, or for another reason.
Status StatusOfErrno(int code);
Status StatusOf(const std::error_code& fault);

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
