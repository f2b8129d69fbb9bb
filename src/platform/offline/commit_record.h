// SPDX-License-Identifier: GPL-3.0-or-later
// The record that is on the disk while several hives are put in place together. hive_commit.h explains it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/hosted/host_place.h"

namespace quillbox {

struct CommitRecordLine {
  std::string hive;  ///< NameInRecord()
  bool isPrivateCopy = false;
  std::string before, after;  ///< HiveStamp() of the hive that is replaced and of the one that replaces it
  bool operator==(const CommitRecordLine&) const = default;
};
using CommitRecord = std::vector<CommitRecordLine>;

/// How a record names the hive `disk`: seen from the folder of the machine's hives, so that the disk may be mounted
/// elsewhere next time.
std::string NameInRecord(const HostPlace& disk, const HostPlace& machineFolder);

/// Makes or replaces the record, flushed. Throws HostFileError.
void WriteRecord(const HostPlace& file, const CommitRecord& record);
/// Nothing when there is none, and when it is not such a record.
std::optional<CommitRecord> ReadRecord(const HostPlace& file);

}  // namespace quillbox
