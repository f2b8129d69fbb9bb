// SPDX-License-Identifier: GPL-3.0-or-later
// A backup against the disk that it was made from: each store, address book and registry file with what is there now.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/identity_catalogue.h"
#include "core/registry_store.h"
#include "inspection/inspection.h"
#include "inspection/inspection_progress.h"
#include "inspection/registry_image.h"
#include "platform/platform.h"
#include "text/code_page.h"

namespace quillbox {

/// The disk that a backup is compared with. What it refers to must outlive it.
struct ComparedDisk {
  Platform& platform;
  RegistryStore& store;  ///< with its kind of Windows detected
  const IdentityCatalogue& catalogue;
};

class DiskComparison {
 public:
  /// `files` are the system of the backup and the disk, whose drives it has as well.
  DiskComparison(const ComparedDisk& disk, const CodePage& page, InspectionProgress& progress);

  /// How many bytes of the disk Compare() reads for a file of this size.
  static std::uint64_t BytesFor(const InspectedFile& file) { return 2 * file.size; }

  /// Fills what `file` has on the disk. Throws InspectionCancelled only.
  void Compare(InspectedFile& file);
  /// After all files: what of the disk the backup does not have.
  std::vector<NotInBackup> Missing(const Inspection& inspection) const;

 private:
  struct DiskIdentity {
    IdentityInfo info;
    std::optional<WinPath> store;  ///< nothing when there is none, or it cannot be reached
    std::string fault;             ///< why it cannot
  };
  using Candidates = std::vector<const DiskIdentity*>;

  /// The identities whose backup has the name of the folder that `file` is in: several when they share it.
  Candidates CandidatesFor(const WinPath& file) const;
  void CompareStore(InspectedFile& file);
  void CompareBook(InspectedFile& file);
  void CompareText(InspectedFile& file);
  void CompareHive(InspectedFile& file);
  /// True when both are equal; else `file` says how they differ.
  bool CompareFiles(InspectedFile& file, const WinPath& onDisk);
  void TakeDifference(InspectedFile& file, const ImageDifference& difference);
  void AddMissingStores(const DiskIdentity& identity, const Inspection& inspection,
                        std::vector<NotInBackup>& missing) const;
  void AddMissingKeys(const Inspection& inspection, std::vector<NotInBackup>& missing) const;

  const ComparedDisk& disk_;
  const CodePage& page_;
  InspectionProgress& progress_;
  FileSystem& files_;
  std::vector<DiskIdentity> identities_;
  std::optional<WinPath> book_;
  std::string bookFault_;           ///< why the address book cannot be reached
  std::vector<std::string> saved_;  ///< the roots of the registry files, in upper case
};

}  // namespace quillbox
