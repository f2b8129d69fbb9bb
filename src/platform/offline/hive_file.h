// SPDX-License-Identifier: GPL-3.0-or-later
// One hive file of the disk, open: read with its logs, held in memory, and written back so that the disk has the hive
// before or after a command, never between. Where the disk cannot be written, a private copy takes the changes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/offline/hive_consent.h"
#include "platform/offline/hive_storage.h"
#include "platform/offline/private_copy.h"
#include "platform/platform.h"
#include "registry/hive.h"

namespace quillbox {

/// The two places where a hive can be: on the disk (links resolved), and the private copy.
struct HivePlaces {
  HostPlace disk, copy;
};

/// Throws Error when the hive is not there. `stateFolder` as for HiveFile.
HivePlaces PlacesOf(const HostPlace& hive, const HostPath& stateFolder);

/// What HiveFile has to know of a registry file of Windows 95, 98 or Me.
struct OldRegistryFile {
  CodePage codePage;   ///< of its names and texts
  std::string copies;  ///< where earlier copies of it are, as a clause, for its faults; may be empty
};

enum class HiveMode {
  Read,   ///< looks only: nothing is ever written
  Write,  ///< the caller holds the DiskLock of the hive's folder
};

class HiveFile {
 public:
  /// The suffix of the original that the first change keeps beside the hive.
  static constexpr const char* kKeptSuffix = ".before-quillbox";

  /// The suffix of a new hive that waits for the other hives of a command.
  static constexpr const char* kStagedSuffix = ".quillbox-new";

  /// Opens and reads the hive. `stateFolder` is the program's (StateFolder()); private copies are below it. Throws
  /// Error when the file cannot be read or is not a usable hive, HiveRefused when it NeedsConsent() and does not get
  /// it. A private copy made earlier is read in the hive's place unless the disk's own hive has changed since. The
  /// changes to a hive with damaged parts go to the private copy, and so do all changes where the disk has an `old`
  /// registry file: that one is only read.
  HiveFile(const HostPlace& hive, HiveMode mode, const HostPath& stateFolder, Log& log, const HiveConsent& consent = {},
           std::optional<OldRegistryFile> old = {});

  const Hive& View() const { return *hive_; }
  /// The hive for changing it. A recovered hive is written back only once this was called.
  Hive& Edit();

  /// False in Read mode, and when neither the disk nor a private copy can be written.
  bool CanWrite() const { return canWrite_; }
  /// True when changes go to, and are read from, the private copy.
  bool IsPrivateCopy() const { return private_; }
  /// Has changes go to the private copy from now on.
  void LeaveDiskAlone();
  /// The number of damaged places of the disk's hive; what cannot be read there is left out.
  std::size_t DamagedPlaces() const { return damagedPlaces_; }
  /// True when the user had to agree to the use of this hive.
  bool NeededConsent() const { return agreed_; }
  HivePlaces Places() const { return {disk_, copy_.File()}; }
  /// The hive on the disk, links resolved.
  const HostPlace& DiskFile() const { return disk_; }
  /// The file that is written: DiskFile() or the private copy.
  const HostPlace& TargetFile() const { return private_ ? copy_.File() : disk_; }

  /// True when there are changes that have not reached the file.
  bool NeedsWriting() const;
  /// Writes the hive if it NeedsWriting(). `now` becomes its time. Throws Error, with the file as it was and the
  /// changes still in memory for the next try: when the write fails, and when another program has changed the file
  /// meanwhile.
  void Commit(FileTime now);
  /// Commit() in two steps, for hives that change together. Stage() writes the new hive beside the old one, with its
  /// name and kStagedSuffix; Publish() puts it in place and can be called again when it has failed; Unstage() takes it
  /// away. Both of the first throw as Commit() does.
  void Stage(FileTime now);
  void Publish();
  void Unstage() noexcept;
  bool IsStaged() const { return staged_ == Staged::Ready; }

  /// Removes what killed programs have left where the hive is written. The caller has run FinishInterruptedCommit
  /// before.
  void RemoveLeftovers() const;

  /// Reads the file again when it changed since it was last read or written; changes in memory are then lost, and the
  /// log says so. True when it was read: every HiveKey is then invalid. Throws Error and keeps the old state. The user
  /// is not asked again; a hive that was sound and is now damaged is an Error.
  bool Reload();

 private:
  enum class Staged { No, Ready, InPlace };

  void Read(const HostPlace& file, const HiveConsent& consent);
  void CheckWritable() const;
  void WriteImage(FileTime now, const char* suffix);
  void Write(const Bytes& image, const char* suffix);
  void KeepOriginals();
  void NoteWritten();
  HostPlace StagedFile() const { return Beside(TargetFile(), kStagedSuffix); }
  const HostPlace& Source() const;

  HostPlace disk_;
  HiveMode mode_;
  std::optional<OldRegistryFile> old_;
  Log& log_;
  PrivateCopy copy_;
  std::optional<Hive> hive_;
  HostPlace readFrom_;
  FileState readState_;
  bool private_ = false;
  bool canWrite_ = false;
  bool edited_ = false;       ///< Edit() was called since the last read
  bool unsaved_ = false;      ///< an image was taken that has not reached the disk
  bool agreed_ = false;       ///< the person has agreed to use the hive as it is
  bool damagedCopy_ = false;  ///< the file is the private copy and is damaged itself
  std::size_t damagedPlaces_ = 0;
  Staged staged_ = Staged::No;
};

}  // namespace quillbox
