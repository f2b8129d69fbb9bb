// Files of the host at the level of its system calls: files read whole, and files written whole or not at all. Failures
// are std::system_error; callers know the name that a person would recognise, and ReasonOf has the words.
#pragma once

#include <sys/stat.h>

#include <ctime>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/offline/host_open.h"

namespace quillbox {

/// A folder could not be flushed to the disk: the file that was made or replaced in it has its name, but may lose it
/// when the power fails.
class FolderFlushError : public std::system_error {
 public:
  using std::system_error::system_error;
};

/// Flushes an open folder, so that the names in it last. File systems that have no such call, and folders that may not
/// be read, are passed over. Throws FolderFlushError.
void FlushFolder(int folder);

/// A file in the making: written under a temporary name beside its target, and in the target's place with Commit(),
/// after a flush to the disk. Destroyed before that, it leaves what was there. Everything happens in the folder that
/// was there at the beginning, also when that is renamed meanwhile. The permissions of a file that is replaced are
/// kept. Beneath a drive a target that is a link is refused; anywhere on the host the file that it leads to is
/// replaced. Every call throws std::system_error when it fails.
class NewFile {
 public:
  explicit NewFile(const HostPlace& target);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// For calls that write without Write(). Call it again after a Flush(), or the next Flush() does nothing.
  int Fd() {
    flushed_ = false;
    return fd_.Get();
  }
  void Write(std::string_view bytes);
  void SetTimes(const timespec& accessed, const timespec& modified);
  /// Another name for the file, in the same folder: a host name that cannot leave it.
  void SetName(const std::string& name) { target_.name = name; }
  /// Returns when the disk has what was written so far. Costs nothing when nothing was written since the last time.
  void Flush();
  /// Flushes, gives the file its name and flushes the folder; with FolderFlushError the file is in its place.
  void Commit();

 private:
  OpenPlace target_;
  std::string temporary_;  ///< empty when there is none (any more)
  HostFd fd_;
  bool flushed_ = false;
};

/// True for a device, pipe or socket, which is written to and never replaced. There are none beneath a drive.
bool IsStream(const HostPlace& file);

/// Removes what killed programs have left in a folder: temporary files of NewFile that nobody is writing any more.
void RemoveAbandonedFiles(int folder);
void RemoveAbandonedFiles(const HostPlace& folder);

/// A whole file. Throws std::system_error.
std::string ReadWholeFile(const HostPlace& file);

}  // namespace quillbox
