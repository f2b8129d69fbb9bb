// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/mbox_target.h"

#include <algorithm>
#include <utility>

#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kPieceSize = std::size_t{256} * 1024;

/// Gives the identity of each message of a mailbox file.
template <class Take>
class Identities final : public MboxListener {
 public:
  explicit Identities(Take take) : take_(std::move(take)) {}
  void Text(std::string_view piece) override { collector_.Add(piece); }
  void Message(const MboxMessage&) override { take_(collector_.Finish()); }

 private:
  Take take_;
  IdentityCollector collector_;
};

/// What is missing between the end of a mailbox file and a next message. Files of other programs end in their own ways.
std::string_view MissingAtEnd(std::string_view end) {
  if (end.empty() || end.ends_with("\n\n") || end.ends_with("\n\r\n")) return {};
  return end.ends_with("\r\n") ? "\r\n" : end.ends_with('\n') ? "\n" : "\r\n\n";
}

}  // namespace

MboxTarget::MboxTarget(FileSystem& files, WinPath file, ReadTick tick)
    : files_(files),
      file_(std::move(file)),
      tick_(std::move(tick)),
      mbox_([this](std::string_view bytes) { Append(bytes); }),
      queue_([this](const std::vector<Queue::Piece>& pieces) { Put(pieces); }) {
  if (files_.Stat(file_)) ReadThere();
}

void MboxTarget::ReadThere() {
  before_ = std::make_unique<FileSource>(files_, file_, tick_);
  Identities read([this](const MessageIdentity& message) {
    there_.Add(message);
    messages_.push_back(message.digest[0]);
  });
  if (!ReadMbox(*before_, read)) {
    throw Error("adding messages to a mailbox file", {file_.Text(), {}, {}},
                "there is a file of this name that is not a mailbox file");
  }
  countBefore_ = messages_.size();
}

void MboxTarget::Begin(const OutgoingMessage& message) {
  if (!writer_) Start();
  const StoredMessage& stored = message.stored;
  const auto received = stored.received ? UnixSeconds(*stored.received) : std::nullopt;
  queue_.Begin({stored.senderAddress, received.value_or(0), StateOf(stored.flags)});
  messages_.push_back(message.identity.digest[0]);
}

void MboxTarget::Write(std::string_view piece) {
  queue_.Write(piece);
}

void MboxTarget::End() {
  queue_.End();
}

void MboxTarget::Start() {
  writer_ = files_.StartFile(file_);
  check_.emplace(*writer_);
  if (before_) CopyThere();
}

void MboxTarget::CopyThere() {
  Bytes buffer(kPieceSize);
  std::string end;
  for (std::uint64_t at = 0; at < before_->Size();) {
    const std::size_t size = before_->ReadAt(at, buffer);
    if (size == 0) break;
    at += size;
    const std::string_view piece(reinterpret_cast<const char*>(buffer.data()), size);
    queue_.Write(piece);
    end.append(piece.substr(size - std::min<std::size_t>(size, 3)));
    end.erase(0, end.size() - std::min<std::size_t>(end.size(), 3));
  }
  queue_.Write(MissingAtEnd(end));
  queue_.Finish();
}

/// What is not a part of a message is what was there before.
void MboxTarget::Put(const std::vector<Queue::Piece>& pieces) {
  for (const Queue::Piece& piece : pieces) {
    if (piece.start) mbox_.Begin(*piece.start);
    isInMessage_ = isInMessage_ || piece.start;
    isInMessage_ ? mbox_.Add(piece.bytes) : Append(piece.bytes);
    if (!piece.ends) continue;
    mbox_.End();
    isInMessage_ = false;
  }
}

void MboxTarget::Append(std::string_view bytes) {
  pending_ += bytes;
  if (pending_.size() >= kPieceSize) Flush();
}

void MboxTarget::Flush() {
  writer_->Write(pending_);
  written_ += pending_.size();
  pending_.clear();
  check_->Written(written_);
}

std::uint64_t MboxTarget::ReadBack() {
  if (!writer_) return 0;
  queue_.Finish();
  Flush();
  const std::vector<std::uint64_t> found = check_->Digests(tick_);
  // Messages that were there must come back as well, and nothing else.
  const auto before = static_cast<std::ptrdiff_t>(countBefore_);
  if (found.size() != messages_.size() || !std::equal(found.begin(), found.begin() + before, messages_.begin())) {
    return 0;
  }
  std::uint64_t same = 0;
  for (std::size_t at = countBefore_; at < found.size(); ++at) same += found[at] == messages_[at] ? 1 : 0;
  return same;
}

void MboxTarget::Commit() {
  if (before_ && writer_ && before_->HasChanged()) {
    throw Error("adding messages to a mailbox file", {file_.Text(), {}, {}},
                "another program has changed it meanwhile, so it was left as it is");
  }
  if (!before_ && !writer_) Start();
  if (!writer_) return;
  queue_.Finish();
  Flush();
  before_.reset();  // Windows replaces no file that is open
  writer_->Commit();
}

}  // namespace quillbox
