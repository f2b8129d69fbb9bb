// SPDX-License-Identifier: GPL-3.0-or-later
// Messages as files of their own: a folder of .eml files, or the "cur" of a Maildir.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "export/background_work.h"
#include "export/file_source.h"
#include "export/folder_target.h"
#include "export/message_queue.h"
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
  struct Start {
    std::string name;
    std::optional<std::uint64_t> modified;  ///< the file's time to be
    std::uint64_t digest = 0;               ///< the first half
  };
  using Queue = MessageQueue<Start>;
  static constexpr std::size_t kMostUnchecked = 1000;  ///< files

  /// The name of the message's file, which no file has yet.
  virtual std::string NameFor(const OutgoingMessage& message) = 0;
  void Put(std::vector<Queue::Piece>& pieces);
  void Check(const std::vector<Start>& files);

  ReadTick tick_;
  std::unique_ptr<FolderWriter> folder_;

  std::uint64_t readBack_ = 0;               ///< of the checking thread
  BackgroundWork checking_{kMostUnchecked};  ///< reads what was written a moment ago: it is in the memory yet
  Start writing_;                            ///< of the writing thread, as what follows
  Queue queue_;                              ///< the last member: its thread has ended before the others go
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
