// A Windows disk to try the program on, made by code: a person's hive with three identities, their stores, accounts
// and address book, and the machine's hives. Nobody's real data, and the same each time.
#pragma once

#include <filesystem>
#include <string>

namespace quillbox {

struct SampleOptions {
  bool smallStores = false;  ///< a few messages in each store, for tests that only need the files to be there
  std::string profile = "Ann Miller";
  std::string productName = "Microsoft Windows XP";
  unsigned codePage = 1252;
};

struct SampleDisk {
  std::filesystem::path driveC;
  std::filesystem::path driveD;
  std::string profile;  ///< the name of the person's folder in `Documents and Settings`
};

/// Makes `folder` with the drives C and D in it. Throws Error when it exists and is not an empty folder, and when
/// anything can't be written; `folder` is then as it was before.
SampleDisk MakeSampleDisk(const std::filesystem::path& folder, const SampleOptions& options = {});

}  // namespace quillbox
