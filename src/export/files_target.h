// SPDX-License-Identifier: GPL-3.0-or-later
// Messages as files of their own: a folder of .eml files, or the "cur" of a Maildir.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "export/file_source.h"
#include "export/folder_target.h"
#include "mail/export_names.h"

namespace quillbox {

class FilesTarget : public FolderTarget {
 public:
  void Begin(const OutgoingMessage& message) override;
  void Write(std::string_view piece) override;
  void End() override;
  std::uint64_t ReadBack() override;
  void Commit() override;

 protected:
  FilesTarget(FileSystem& files, const WinPath& folder, ReadTick tick);

  FolderWriter& Folder() { return *folder_; }
  /// Notes what is in a file that is there. One that cannot be read is not known.
  void ReadThere(const HostFileName& name);

 private:
  /// The name of the message's file, which no file has yet.
  virtual std::string NameFor(const OutgoingMessage& message) = 0;
  void ReadBackSome();

  ReadTick tick_;
  std::unique_ptr<FolderWriter> folder_;
  std::string name_;                                              ///< of the file that is being written
  std::optional<std::uint64_t> modified_;                         ///< its time to be
  std::vector<std::pair<std::string, std::uint64_t>> unchecked_;  ///< written, with a part of their digests
  std::uint64_t readBack_ = 0;
};

/// Files named after date, subject and sender.
class EmlTarget final : public FilesTarget {
 public:
  EmlTarget(FileSystem& files, const WinPath& folder, const CodePage& page, ReadTick tick);

 private:
  std::string NameFor(const OutgoingMessage& message) override;

  CodePage page_;
  UniqueNames names_;
};

/// Files with the message's state in their names. The folder of the Maildir must be there.
class MaildirTarget final : public FilesTarget {
 public:
  MaildirTarget(FileSystem& files, const WinPath& maildir, ReadTick tick);

  void Commit() override;

 private:
  std::string NameFor(const OutgoingMessage& message) override;

  FileSystem& files_;
  WinPath maildir_;
  char separator_;
  /// By the hash of a name without the state: the number given last. Two names of one hash only cost a number.
  std::unordered_map<std::size_t, std::uint64_t> bases_;
};

}  // namespace quillbox
