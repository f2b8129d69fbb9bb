// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/posix/posix.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <utility>

#include "host/host_fault.h"

namespace quillbox {

namespace {

EntryKind KindOf(mode_t mode) {
  if (S_ISREG(mode)) return EntryKind::File;
  if (S_ISDIR(mode)) return EntryKind::Folder;
  return S_ISLNK(mode) ? EntryKind::Link : EntryKind::Other;
}

bool IsOneOf(const std::error_code& fault, std::initializer_list<int> codes) {
  return fault.category() == std::generic_category() &&
         std::find(codes.begin(), codes.end(), fault.value()) != codes.end();
}

HostTime TimeOf(const timespec& time) {
  return {time.tv_sec, static_cast<std::uint32_t>(time.tv_nsec)};
}

}  // namespace

EntryInfo InfoOfStat(const struct stat& info) {
  return {.kind = KindOf(info.st_mode),
          .size = static_cast<std::uint64_t>(info.st_size),
          .modified = TimeOf(info.st_mtim),
          .accessed = TimeOf(info.st_atim),
          .id = {info.st_dev, info.st_ino}};
}

struct stat StatOf(const HostHandle& handle) {
  struct stat info = {};
  if (fstat(Fd(handle), &info) != 0) ThrowErrno(errno);
  return info;
}

void HostHandle::Close() {
  if (number_ != kNone) close(static_cast<int>(std::exchange(number_, kNone)));
}

std::string ReasonOf(const std::error_code& fault) {
  return fault.message();
}

bool IsFull(const std::error_code& fault) {
  return IsOneOf(fault, {ENOSPC, EDQUOT});
}

bool IsUnreadablePlace(const std::error_code& fault) {
  return IsOneOf(fault, {EIO, ENODATA, EREMOTEIO, EBADMSG, EUCLEAN, ETIMEDOUT});
}

bool MayPass(const std::error_code& fault) {
  return IsOneOf(fault, {EIO, ENOMEM, EMFILE, ENFILE, ENOSPC, EDQUOT});
}

}  // namespace quillbox
