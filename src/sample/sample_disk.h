// SPDX-License-Identifier: GPL-3.0-or-later
// A Windows disk to try the program on, made by code: a person's hive with three identities, their stores, accounts
// and address book, and the machine's hives. Nobody's real data, and the same each time.
#pragma once

#include <filesystem>
#include <string>

namespace quillbox {

enum class SampleKind {
  Xp,                     ///< or another of its family, by the product's name
  Windows98,              ///< or another of its family; everyone shares one registry
  Windows98WithProfiles,  ///< each person has a registry
};

struct SampleOptions {
  bool smallStores = false;  ///< a few messages in each store, for tests that only need the files to be there
  std::string profile = "Ann Miller";
  std::string productName = {};  ///< empty: that of `kind`
  unsigned codePage = 1252;
  SampleKind kind = SampleKind::Xp;
};

struct SampleDisk {
  std::filesystem::path driveC;
  std::filesystem::path driveD;
  std::string profile;  ///< the name by which the person's registry is opened
};

/// Makes `folder` with the drives C and D in it. Throws Error when it exists and is not an empty folder, and when
/// anything can't be written; `folder` is then as it was before.
SampleDisk MakeSampleDisk(const std::filesystem::path& folder, const SampleOptions& options = {});

}  // namespace quillbox
