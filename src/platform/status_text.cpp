// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/status_text.h"

#include <algorithm>
#include <iterator>

namespace quillbox {
namespace {

struct StatusRow {
  Status status;
  const char* reason;
  const char* ofKey = nullptr;  ///< where the registry editor has words of its own
};
constexpr StatusRow kRows[] = {
    {Status::FileNotFound, "it does not exist", "there is no such key on this disk"},
    {Status::PathNotFound, "the folder that it should be in does not exist", "there is no such key on this disk"},
    {Status::AccessDenied, "it may not be written (is the disk read-only?)", "access is denied"},
    {Status::DiskFull, "the disk is full"},
    {Status::FileExists, "a file of that name is in the way"},
    {Status::InvalidParameter, "Windows allows nothing of that name", "the registry cannot hold such a name"},
    {Status::BadRegistry, "it is not a usable hive file", "its hive cannot be used"},
    {Status::RegistryIo, "the work on its file failed (the log says more)", "the work on its hive failed"},
    {Status::KeyDeleted, "it was deleted meanwhile", "the key was deleted meanwhile"},
    {Status::PrivilegeNotHeld, "it needs a right that this program does not have"},
    {Status::NoResources, "it is larger than the registry can hold (the log says more)",
     "it is larger than the registry can hold"},
};

const StatusRow* Find(Status status) {
  const auto* row =
      std::find_if(std::begin(kRows), std::end(kRows), [status](const StatusRow& r) { return r.status == status; });
  return row == std::end(kRows) ? nullptr : row;
}

std::string Number(Status status) {
  return std::to_string(static_cast<unsigned>(status));
}

}  // namespace

std::string StatusReason(Status status) {
  const StatusRow* row = Find(status);
  return row != nullptr ? row->reason : "the system answered " + Number(status);
}

std::string KeyStatusReason(Status status) {
  const StatusRow* row = Find(status);
  if (row == nullptr) return "the registry refuses it (code " + Number(status) + ")";
  return row->ofKey != nullptr ? row->ofKey : row->reason;
}

}  // namespace quillbox
