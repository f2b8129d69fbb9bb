// SPDX-License-Identifier: GPL-3.0-or-later
// Very many small files that belong together, such as the messages of a mail folder: each is written once, none is
// flushed by itself, and all get their place together. Failures are std::system_error.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/host_file.h"
#include "host/host_folder.h"

namespace quillbox {

/// A folder in the making, under a temporary name. When there is no folder of its name yet, it takes that name with
/// Commit(). Otherwise its files move into the one that is there, where they replace nothing; when one cannot move,
/// those before it are taken out again. Destroyed before Commit() it leaves no trace.
class NewFolder {
 public:
  /// The folder `name` in `parent`. A link or a file of that name is refused (not_a_directory).
  NewFolder(HostFolder parent, std::string name);
  ~NewFolder();
  NewFolder(const NewFolder&) = delete;
  NewFolder& operator=(const NewFolder&) = delete;

  /// The folder that its files are to move into; nothing for one that is new.
  const HostFolder* There() const { return there_ ? &*there_ : nullptr; }
  /// Whether this file system takes such a name: a file is made and removed.
  bool Takes(const std::string& name) const;

  /// Begins a file; file_exists when there is one of that name, here or where it is to move.
  void StartFile(const std::string& name);
  void Write(std::string_view bytes);
  /// Ends the file that was begun last, which gets this time, if there is one. A file system that cannot hold the time
  /// gives it another one.
  void EndFile(const std::optional<HostTime>& modified);
  /// A file that was ended, for reading.
  HostFile Open(const std::string& name) const { return made_.OpenFile(name); }

  /// Returns when the disk has all files, then gives them their place.
  void Commit();

 private:
  static constexpr int kMaxNameAttempts = 100;

  const HostFolder& Outer() const { return there_ ? *there_ : parent_; }
  void Make();
  HostHandle MakeFile(const std::string& name) const;
  /// Shows other programs that the folder is being written.
  void MarkInUse() const;
  void MoveFiles();
  void Empty();

  HostFolder parent_;
  std::string name_;
  std::optional<HostFolder> there_;
  std::string temporary_;  ///< empty when there is none (any more)
  HostFolder made_;
  HostHandle file_;
};

/// Whether a program is writing the folder in the making `name`.
bool IsBeingMade(const HostFolder& folder, const std::string& name);
/// Removes a folder in the making that a killed program has left, with the files in it; nothing happens to one that is
/// being written.
void RemoveAbandonedFolder(const HostFolder& folder, const std::string& name);

}  // namespace quillbox
