// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspection/file_check.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <span>
#include <variant>

#include "contacts/contact_book.h"
#include "core/copy_tally.h"
#include "registry/hive.h"
#include "registry/reg_file_form.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

/// Enough of a file's beginning to know its kind.
constexpr std::size_t kHead = 128;
/// A hive that is larger is not taken into memory; Windows' own stay far below.
constexpr std::uint64_t kLargestHive = std::uint64_t{1} << 30;
constexpr std::string_view kOldHiveMark = "CREG";

struct Ending {
  std::string_view text;
  FileKind kind;
  const char* isNot;
};
constexpr Ending kEndings[] = {
    {".dbx", FileKind::MessageStore, "its name is that of a message store, but it does not begin as one"},
    {".wab", FileKind::AddressBook, "its name is that of an address book, but it does not begin as one"},
    {".reg", FileKind::RegistryText, "its name is that of a registry file, but it does not begin as one"},
};

const Ending* EndingOf(const std::string& name) {
  for (const Ending& ending : kEndings) {
    const bool fits = name.size() >= ending.text.size();
    if (fits && EqualIgnoreCase(name.substr(name.size() - ending.text.size()), ending.text)) return &ending;
  }
  return nullptr;
}

bool BeginsAsRegistryText(const Bytes& head) {
  std::string text(head.begin(), head.end());
  if (text.starts_with(kUtf16Mark)) text = ToUtf8(Utf16FromBytes(ByteView(head).subspan(kUtf16Mark.size())));
  if (text.starts_with(kUtf8Mark)) text.erase(0, kUtf8Mark.size());
  return text.starts_with(kRegedit4Header) || text.starts_with(kUnicode5Header);
}

Bytes HeadOf(PositionedSource& source) {
  Bytes head(static_cast<std::size_t>(std::min<std::uint64_t>(kHead, source.Size())));
  head.resize(source.ReadAt(0, head));
  return head;
}

std::optional<FileKind> KindOf(PositionedSource& source) {
  switch (StoreReader(source).Kind()) {
    case StoreKind::Messages:
      return FileKind::MessageStore;
    case StoreKind::FolderList:
      return FileKind::FolderList;
    case StoreKind::Other:
      return FileKind::OtherStore;
    case StoreKind::OutlookExpress4:
      return FileKind::OldStore;
    case StoreKind::NotAStore:
      break;
  }
  const Bytes head = HeadOf(source);
  if (LooksLikeContactBook(head)) return FileKind::AddressBook;
  if (LooksLikeHive(head)) return FileKind::Hive;
  if (std::string(head.begin(), head.end()).starts_with(kOldHiveMark)) return FileKind::OldHive;
  if (BeginsAsRegistryText(head)) return FileKind::RegistryText;
  return std::nullopt;
}

/// Of a file whose content nothing here knows: whether it can be read at all.
void ReadThrough(PositionedSource& source, InspectedFile& file) {
  std::array<std::uint8_t, std::size_t{64} << 10> piece = {};
  for (std::uint64_t at = 0; at < source.Size();) {
    const std::size_t length = source.ReadAt(at, piece);
    if (length == 0) return file.AddFault(OffsetText(at) + ": the file became shorter while it was read");
    at += length;
  }
  if (file.state != CheckState::Damaged) file.state = CheckState::NotChecked;
}

void CheckBook(PositionedSource& source, const CodePage& page, InspectedFile& file) {
  if (source.Size() > kLargestContactBook) return file.AddFault("it is too large for an address book");
  const ContactBook book = ReadContactBook(ReadWhole(source), {}, page);
  for (const BookFault& fault : book.faults) file.AddFault(Describe(fault, {}));
  file.faultCount += book.faultsNotListed;
  file.contents =
      CountOf(book.contacts.size(), " contact", " contacts") + ", " + CountOf(book.groups.size(), " group", " groups");
}

FileFindings CheckKnown(PositionedSource& source, const CodePage& page, InspectedFile& file) {
  switch (file.kind) {
    case FileKind::AddressBook:
      CheckBook(source, page, file);
      return {};
    case FileKind::RegistryText:
      CheckRegistryText(source, page, file);
      return {};
    case FileKind::Hive:
    case FileKind::OldHive:
      if (source.Size() <= kLargestHive) {
        CheckHive(source, page, file);
      } else {
        file.AddFault("it is too large for a hive");
      }
      return {};
    default:
      return CheckStore(source, page, file);
  }
}

FileFindings CheckContent(PositionedSource& source, const CodePage& page, InspectedFile& file) {
  const auto kind = KindOf(source);
  if (kind) {
    file.kind = *kind;
    file.state = CheckState::Whole;
    FileFindings findings = CheckKnown(source, page, file);
    if (file.kind == FileKind::OtherStore) ReadThrough(source, file);
    return findings;
  }
  if (const Ending* ending = EndingOf(file.path.Name())) {
    file.kind = ending->kind;
    file.AddFault(OffsetText(0) + ": " + ending->isNot);
    return {};
  }
  ReadThrough(source, file);
  return {};
}

}  // namespace

std::string OffsetText(std::uint64_t offset) {
  std::array<char, 32> text = {};
  std::snprintf(text.data(), text.size(), "offset 0x%llX", static_cast<unsigned long long>(offset));
  return text.data();
}

std::string FaultOf(const Error& error) {
  if (error.Place().line) return "line " + std::to_string(*error.Place().line) + ": " + error.Why();
  return error.Place().offset ? OffsetText(*error.Place().offset) + ": " + error.Why() : error.Why();
}

/// Nothing is opened that has no size: a pipe, a device, a link that leads nowhere.
FileFindings CheckFile(const FileCheckTools& tools, InspectedFile& file) {
  if (file.size == 0) {
    const Ending* ending = EndingOf(file.path.Name());
    if (ending) file.kind = ending->kind;
    file.AddFault("it is empty, or not an ordinary file");
    if (!ending) file.state = CheckState::NotChecked;
    return {};
  }
  try {
    InspectedSource source(tools.files, file.path, tools.progress);
    file.size = source.Size();
    FileFindings findings;
    try {
      findings = CheckContent(source, tools.page, file);
    } catch (const Error& error) {
      file.AddFault(FaultOf(error));
    }
    if (source.HasChanged()) file.AddFault("it changed while it was read");
    return findings;
  } catch (const Error& error) {
    file.AddFault(FaultOf(error));
    file.state = CheckState::NotReadable;
    return {};
  }
}

}  // namespace quillbox
