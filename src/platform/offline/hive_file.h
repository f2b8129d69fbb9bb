// One hive file of the disk, open: read with its logs, held in memory, and written back so that the disk has the hive
// before or after a command, never between. Where the disk cannot be written, a private copy takes the changes.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/offline/hive_storage.h"
#include "platform/offline/private_copy.h"
#include "platform/platform.h"
#include "registry/hive.h"

namespace quillbox {

enum class HiveMode {
  Read,   ///< looks only: nothing is ever written
  Write,  ///< the caller holds the DiskLock of the hive's folder
};

class HiveFile {
 public:
  /// What the first change keeps beside the hive: its name with this at the end.
  static constexpr const char* kKeptSuffix = ".before-quillbox";

  /// Opens and reads the hive. `stateFolder` is the program's (StateFolder()); private copies lie below it. Throws
  /// Error when the file cannot be read or is no usable hive. A private copy made earlier is read in the hive's place
  /// unless the disk's own hive has changed since.
  HiveFile(const HostPlace& hive, HiveMode mode, const std::filesystem::path& stateFolder, Log& log);

  const Hive& View() const { return *hive_; }
  /// The hive for changing it. A recovered hive is written back only once this was called.
  Hive& Edit();

  /// False in Read mode, and when neither the disk nor a private copy can be written.
  bool CanWrite() const { return canWrite_; }
  /// True when changes go to, and are read from, the private copy.
  bool IsPrivateCopy() const { return private_; }
  /// The hive on the disk, links resolved.
  const HostPlace& DiskFile() const { return disk_; }
  /// The file that is written: DiskFile() or the private copy.
  const HostPlace& TargetFile() const { return private_ ? copy_.File() : disk_; }

  /// Writes the hive if it changed. `now` becomes its time. Throws Error, with the file as it was and the changes still
  /// in memory for the next try: when the write fails, and when another program has changed the file meanwhile.
  void Commit(FileTime now);
  /// Reads afresh when the file changed since it was last read or written; changes in memory are then lost, and the
  /// log says so. True when it was read, and every HiveKey is void. Throws Error and keeps what there was.
  bool Reload();

 private:
  void Read(const HostPlace& file);
  void Write(const Bytes& image);
  void KeepOriginals();
  const HostPlace& Source() const;

  HostPlace disk_;
  HiveMode mode_;
  Log& log_;
  PrivateCopy copy_;
  std::optional<Hive> hive_;
  HostPlace readFrom_;
  FileState readState_;
  bool private_ = false;
  bool canWrite_ = false;
  bool edited_ = false;   ///< Edit() was called since the last read
  bool unsaved_ = false;  ///< an image was taken that has not reached the disk
};

}  // namespace quillbox
