#include "core/status_text.h"

namespace quillbox {
namespace {

struct StatusRow {
  Status status;
  const char* reason;
};
constexpr StatusRow kRows[] = {
    {Status::FileNotFound, "it does not exist"},
    {Status::PathNotFound, "the folder that it should be in does not exist"},
    {Status::AccessDenied, "it may not be written (is the disk read-only?)"},
    {Status::DiskFull, "the disk is full"},
    {Status::FileExists, "a file of that name is in the way"},
    {Status::InvalidParameter, "Windows allows nothing of that name"},
    {Status::BadRegistry, "it is not a usable hive file"},
    {Status::RegistryIo, "a file could not be read or written (the log says more)"},
    {Status::KeyDeleted, "it was deleted meanwhile"},
    {Status::NoResources, "it is larger than the registry can hold (the log says more)"},
};

}  // namespace

std::string StatusReason(Status status) {
  for (const StatusRow& row : kRows) {
    if (row.status == status) return row.reason;
  }
  return "the system answered " + std::to_string(static_cast<unsigned>(status));
}

}  // namespace quillbox
