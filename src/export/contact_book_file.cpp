// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/contact_book_file.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/copy_tally.h"
#include "core/disk_path.h"
#include "core/identity_catalogue.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;
/// What is given up for one place that cannot be read.
constexpr std::size_t kSector = 4096;

/// Reads a file block by block, and a block that cannot be read sector by sector.
class BookFileReader {
 public:
  explicit BookFileReader(FileReader& reader) : reader_(reader) {}

  BookBytes Read() {
    while (book_.bytes.size() <= kLargestContactBook && Append(kBlock)) continue;
    if (book_.bytes.size() > kLargestContactBook) book_.bytes.resize(kLargestContactBook + 1);
    return std::move(book_);
  }

 private:
  /// False at the end of the file.
  bool Append(std::size_t size) {
    const std::size_t start = book_.bytes.size();
    try {
      const std::size_t length = reader_.Read(std::span(buffer_).first(size));
      book_.bytes.insert(book_.bytes.end(), buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(length));
      return length == size;
    } catch (const Error& error) {
      if (size == kSector) return Skip(error);
      reader_.GoTo(start);
      bool more = true;
      while (more && book_.bytes.size() < start + size) more = Append(kSector);
      return more;
    }
  }

  /// Goes on behind a sector that cannot be read. The beginning says what kind of file it is: without it there is none.
  bool Skip(const Error& error) {
    const std::uint64_t start = book_.bytes.size();
    if (start == 0) throw error;
    UnreadPlace* last = book_.unread.empty() ? nullptr : &book_.unread.back();
    if (last && last->offset + last->length == start) {
      last->length += kSector;
    } else {
      book_.unread.push_back({start, kSector, error.Why()});
    }
    if (++skipped_ > kMostUnreadPlaces) throw error;
    book_.bytes.resize(book_.bytes.size() + kSector);
    reader_.GoTo(book_.bytes.size());
    return true;
  }

  FileReader& reader_;
  BookBytes book_;
  std::size_t skipped_ = 0;
  std::array<char, kBlock> buffer_{};
};

BookRefusal NotRead(const std::string& why) {
  return {"The address book was not read: " + why + "."};
}

}  // namespace

BookBytes ReadBookBytes(FileReader& reader) {
  return BookFileReader(reader).Read();
}

std::vector<std::string> ContactBookFile::Faults() const {
  const std::string name = path.Name();
  std::vector<std::string> lines;
  for (const UnreadPlace& place : unread) {
    lines.push_back(Describe(
        Error("", {name, place.offset, {}}, std::to_string(place.length) + " bytes cannot be read: " + place.reason)));
  }
  for (const BookFault& fault : book.faults) lines.push_back(Describe(fault, name));
  if (book.faultsNotListed > 0)
    lines.push_back(name + ": " + CountOf(book.faultsNotListed, " more fault", " more faults"));
  return lines;
}

std::string ContactBookFile::LeftOut() const {
  std::string text;
  const auto add = [&](std::size_t count, const char* one, const char* several) {
    if (count > 0) text += (text.empty() ? "" : ", ") + CountOf(count, one, several);
  };
  add(book.deleted, " deleted record", " deleted records");
  add(book.unlisted, " record that the index does not list", " records that the index does not list");
  add(book.others, " record that is not of a contact or group", " records that are not of contacts or groups");
  return text;
}

BookResult ReadBookFile(FileSystem& files, SystemFacts& facts, const WinPath& file) {
  try {
    BookBytes read = ReadBookBytes(*files.OpenForReading(file));
    const CodePage codePage(facts.CodePageNumber());
    return ContactBookFile{file, ReadContactBook(read.bytes, file.Text(), codePage), std::move(read.unread)};
  } catch (const Error& error) {
    return NotRead(Describe(error));
  }
}

BookResult ReadBookInUse(Platform& platform, RegistryStore& store) {
  const WinPath stored = ReadAddressBookFile(store);
  if (stored.Empty()) return BookRefusal{"The registry names no address book file."};
  const DiskPath file = CheckAddressBook(platform.GetDrives(), stored);
  if (!file.IsUsable()) return BookRefusal{file.Refusal().Sentence()};
  return ReadBookFile(platform.GetFiles(), platform.GetSystemFacts(), file.Path());
}

}  // namespace quillbox
