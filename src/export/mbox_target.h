// SPDX-License-Identifier: GPL-3.0-or-later
// A mailbox file that messages are added to. The file that is there is copied to a new one, the messages follow, all of
// it is read again, and then it takes the old one's place in one step. Appending to the file itself would be less work,
// but a program that is killed or a computer that loses power would leave half a message at the end of the user's mail.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "export/file_source.h"
#include "export/folder_target.h"
#include "export/mbox_check.h"
#include "export/message_queue.h"
#include "mail/mbox.h"

namespace quillbox {

class MboxTarget final : public FolderTarget {
 public:
  /// Reads the file that is there, if any. Throws Error when it is not a mailbox file.
  MboxTarget(FileSystem& files, WinPath file, ReadTick tick);

  void Begin(const OutgoingMessage& message) override;
  void Write(std::string_view piece) override;
  void End() override;
  std::uint64_t ReadBack() override;
  void Commit() override;

 private:
  using Queue = MessageQueue<MboxEnvelope>;

  void ReadThere();
  void Start();
  void CopyThere();

  // On the writing thread, or when it has nothing to do.
  void Put(const std::vector<Queue::Piece>& pieces);
  void Append(std::string_view bytes);
  void Flush();

  FileSystem& files_;
  WinPath file_;
  ReadTick tick_;
  std::unique_ptr<FileSource> before_;  ///< the file that is there
  std::size_t countBefore_ = 0;
  std::vector<std::uint64_t> messages_;  ///< the first half of the digest of each, in the file's order

  std::unique_ptr<FileWriter> writer_;  ///< nothing until there is something new
  std::optional<MboxCheck> check_;      ///< as long as the writer
  MboxWriter mbox_;
  bool isInMessage_ = false;
  std::string pending_;
  std::uint64_t written_ = 0;  ///< bytes
  Queue queue_;                ///< the last member: its thread has ended before the others go
};

}  // namespace quillbox
