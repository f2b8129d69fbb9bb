// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/files_target.h"

#include <array>
#include <functional>

#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::size_t kPieceSize = std::size_t{64} * 1024;
/// So many files are written before they are read back: while they are in the memory anyway.
constexpr std::size_t kUnchecked = 1000;
constexpr std::string_view kEml = ".eml";

MessageIdentity IdentityOf(FileReader& file) {
  IdentityCollector collector;
  std::array<char, kPieceSize> buffer;
  while (const std::size_t size = file.Read(buffer)) collector.Add({buffer.data(), size});
  return collector.Finish();
}

std::size_t HashOf(std::string_view name) {
  return std::hash<std::string_view>()(name);
}

/// Parts of a Maildir that hold no message of ours, but that every program expects.
constexpr std::array kMaildirParts = {"new", "tmp"};

}  // namespace

FilesTarget::FilesTarget(FileSystem& files, const WinPath& folder, ReadTick tick)
    : tick_(std::move(tick)), folder_(files.StartFolder(folder)) {}

void FilesTarget::ReadThere(const HostFileName& name) {
  if (tick_) tick_();
  try {
    there_.Add(IdentityOf(*folder_->OpenThere(name)));
  } catch (const Error&) {  // NOLINT(bugprone-empty-catch): at worst the message is there twice
  }
}

void FilesTarget::Begin(const OutgoingMessage& message) {
  name_ = NameFor(message);
  const auto sent = ParseMailDate(message.header.date);
  modified_ = sent ? std::optional(FileTimeOfUnix(*sent)) : message.stored.received;
  folder_->StartFile({name_});
  unchecked_.emplace_back(name_, message.identity.digest[0]);
}

void FilesTarget::Write(std::string_view piece) {
  folder_->Write(piece);
}

void FilesTarget::End() {
  folder_->EndFile(modified_);
  if (unchecked_.size() >= kUnchecked) ReadBackSome();
}

void FilesTarget::ReadBackSome() {
  for (const auto& [name, digest] : unchecked_) {
    if (tick_) tick_();
    if (IdentityOf(*folder_->Open({name})).digest[0] == digest) ++readBack_;
  }
  unchecked_.clear();
}

std::uint64_t FilesTarget::ReadBack() {
  ReadBackSome();
  return readBack_;
}

void FilesTarget::Commit() {
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
