// SPDX-License-Identifier: GPL-3.0-or-later
// What the program keeps of other people's disks on this computer, and its removal: the private copies of hives that
// could not be written, and the logs. Nothing outside the state folder is touched, and no link in it is followed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/entry.h"
#include "host/host_path.h"

namespace quillbox {

/// A folder of private copies of one hive: the copy in use and older ones. All of them were begun by changes that could
/// not be written to the disk, so removing them loses those changes.
struct KeptCopy {
  std::string folder = {};  ///< its name below the folder of copies
  HostPath hive = {};       ///< the hive on the disk; empty when it is not known
  std::size_t files = 0;    ///< copies, the notes on their origin left out
  std::uint64_t size = 0;   ///< bytes of everything in it
  HostTime changed = {};    ///< the last time
};

struct PrivateData {
  std::vector<KeptCopy> copies;
  std::vector<std::string> logs;    ///< names in the state folder
  std::uint64_t logSize = 0;        ///< bytes
  std::vector<std::string> faults;  ///< what could not be looked at, and why

  bool IsEmpty() const { return copies.empty() && logs.empty(); }
};

/// Never throws; what cannot be read is in the faults.
PrivateData ListPrivateData(const HostPath& stateFolder);
/// All of it for a person, with the changes that are lost with it. `now` in seconds since 1970 UTC is for their age.
std::string TextOf(const PrivateData& data, const HostPath& stateFolder, std::int64_t now);

struct PrivateRemoval {
  std::size_t copies = 0;         ///< hives whose copies were removed
  std::size_t logs = 0;           ///< files
  std::vector<std::string> kept;  ///< what is still there, and why
};

/// Removes what `shown` has, and nothing that came after it. Copies of a hive that a running program has open stay,
/// and those of which that cannot be found out.
PrivateRemoval RemovePrivateData(const HostPath& stateFolder, const PrivateData& shown);
std::string SummaryOf(const PrivateRemoval& removal);

}  // namespace quillbox
