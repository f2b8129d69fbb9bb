// SPDX-License-Identifier: GPL-3.0-or-later
// What the sample disks of all kinds of Windows are made with: their folders and files, and the person's identities.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "registry/hive.h"
#include "sample/registry_rows.h"
#include "sample/sample_disk.h"
#include "text/file_time.h"

namespace quillbox {

// Everything on a disk was last changed then: noon (UTC) of the 18th of December 2004.
inline constexpr std::int64_t kSampleMadeAt = 1103371200;
inline constexpr FileTime kSampleFileTime = FileTimeOfUnix(kSampleMadeAt);

/// Throws the Error of a disk that cannot be made.
[[noreturn]] void FailSample(const std::filesystem::path& path, std::string why);

/// A name in UTF-8 as a path, whatever the host takes narrow names for.
std::filesystem::path SamplePath(std::string_view name);

/// Makes a folder and those above it. Throws Error.
void MakeSampleFolders(const std::filesystem::path& path);

/// Throws Error when there is a file already, and when it cannot be written.
void WriteSampleFile(const std::filesystem::path& path, const Bytes& bytes);

/// Where a kind of Windows keeps what belongs to a person.
struct PersonPlaces {
  std::string storeFolder;  ///< on drive C, with slashes; <id> stands for the identity's {USER_ID}
  std::string storeRoot;    ///< the same as a "Store Root" has it
  RowType storeRootType = RowType::Sz;
  std::string documents;  ///< as Windows writes it
  std::string bookFile;   ///< the address book on drive C, with slashes
};

/// Writes the accounts and the key "Identities" below `person`, the person's key.
void AddIdentities(Hive& hive, HiveKey person, const PersonPlaces& places, const SampleOptions& options);

/// Writes the stores of the identities and the address book below `folder`, which has the drives.
void WriteMail(const std::filesystem::path& folder, const PersonPlaces& places, const SampleOptions& options);

}  // namespace quillbox
