// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/files_target.h"

#include <array>
#include <functional>
#include <utility>

#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::size_t kReadSize = std::size_t{64} * 1024;
constexpr std::string_view kEml = ".eml";

/// Gives `to` what is in a file.
template <class To>
void ReadTo(To& to, FileReader& file) {
  std::array<char, kReadSize> buffer;
  while (const std::size_t size = file.Read(buffer)) to.Add({buffer.data(), size});
}

std::size_t HashOf(std::string_view name) {
  return std::hash<std::string_view>()(name);
}

/// Parts of a Maildir that hold no message of ours, but that every program expects.
constexpr std::array kMaildirParts = {"new", "tmp"};

}  // namespace

FilesTarget::FilesTarget(FileSystem& files, const WinPath& folder, ReadTick tick)
    : tick_(std::move(tick)),
      folder_(files.StartFolder(folder)),
      queue_([this](std::vector<Queue::Piece>& pieces) { Put(pieces); }) {}

void FilesTarget::ReadThere(const HostFileName& name) {
  if (tick_) tick_();
  try {
    IdentityCollector collector;
    ReadTo(collector, *folder_->OpenThere(name));
    there_.Add(collector.Finish());
  } catch (const Error&) {  // NOLINT(bugprone-empty-catch): at worst the message is there twice
  }
}

void FilesTarget::Begin(const OutgoingMessage& message) {
  const auto sent = ParseMailDate(message.header.date);
  queue_.Begin({NameFor(message), sent ? std::optional(FileTimeOfUnix(*sent)) : message.stored.received,
                message.identity.digest[0]});
}

void FilesTarget::Write(std::string_view piece) {
  queue_.Write(piece);
}

void FilesTarget::End() {
  queue_.End();
}

void FilesTarget::Put(std::vector<Queue::Piece>& pieces) {
  std::vector<Start> written;
  for (Queue::Piece& piece : pieces) {
    if (piece.start) {
      writing_ = *std::move(piece.start);
      folder_->StartFile({writing_.name});
    }
    if (!piece.bytes.empty()) folder_->Write(piece.bytes);
    if (!piece.ends) continue;
    folder_->EndFile(writing_.modified);
    written.push_back(std::move(writing_));
  }
  const std::size_t count = written.size();
  checking_.Post(count, [this, written = std::move(written)] { Check(written); });
}

void FilesTarget::Check(const std::vector<Start>& files) {
  for (const Start& file : files) {
    MessageDigest digest;
    ReadTo(digest, *folder_->Open({file.name}));
    if (digest.Finish()[0] == file.digest) ++readBack_;
  }
}

std::uint64_t FilesTarget::ReadBack() {
  queue_.Finish();
  checking_.WaitForAll();
  return readBack_;
}

void FilesTarget::Commit() {
  queue_.Finish();
  folder_->Commit();
}

EmlTarget::EmlTarget(FileSystem& files, const WinPath& folder, const CodePage& page, ReadTick tick)
    : FilesTarget(files, folder, std::move(tick)), page_(page) {
  for (const HostFileName& name : Folder().NamesThere()) {
    names_.Note(name.text);
    if (UpperCase(name.text).ends_with(UpperCase(kEml))) ReadThere(name);
  }
}

std::string EmlTarget::NameFor(const OutgoingMessage& message) {
  return names_.Take(EmlStem(FactsOf(message.stored, message.header, page_)), kEml);
}

MaildirTarget::MaildirTarget(FileSystem& files, const WinPath& maildir, ReadTick tick)
    : FilesTarget(files, maildir.Join("cur"), std::move(tick)),
      files_(files),
      maildir_(maildir),
      separator_(Folder().Takes({"a:2,"}) ? ':' : '!') {
  for (const HostFileName& name : Folder().NamesThere()) {
    bases_.emplace(HashOf(MaildirBase(name.text)), 1);
    ReadThere(name);
  }
}

std::string MaildirTarget::NameFor(const OutgoingMessage& message) {
  const auto received = message.stored.received ? UnixSeconds(*message.stored.received) : std::nullopt;
  const std::string name =
      MaildirName(message.identity, received.value_or(0), StateOf(message.stored.flags), separator_);
  std::string base(MaildirBase(name));
  const std::string flags = name.substr(base.size());
  // The same message several times in one folder.
  const std::string first = base;
  while (!bases_.emplace(HashOf(base), 1).second) base = first + std::to_string(++bases_[HashOf(first)]);
  return base + flags;
}

void MaildirTarget::Commit() {
  for (const char* part : kMaildirParts) files_.MakePath(maildir_.Join(part));
  FilesTarget::Commit();
}

}  // namespace quillbox
