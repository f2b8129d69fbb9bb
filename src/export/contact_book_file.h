// SPDX-License-Identifier: GPL-3.0-or-later
// An address book file of the disk or of this computer, read as far as it can be: the one in use, or any other.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "contacts/contact_book.h"
#include "core/registry_store.h"
#include "platform/platform.h"
#include "text/win_path.h"

namespace quillbox {

/// Places of a file that cannot be read. With more than these the file is refused: a dying disk takes seconds for each.
inline constexpr std::size_t kMostUnreadPlaces = 64;

/// A place that could not be read. Zeros are taken for its bytes.
struct UnreadPlace {
  std::uint64_t offset = 0;  ///< bytes from the start of the file
  std::uint64_t length = 0;  ///< bytes
  std::string reason;
};

struct BookBytes {
  Bytes bytes;
  std::vector<UnreadPlace> unread;
};

/// The file behind `reader`, at most one byte more than kLargestContactBook of it. Throws Error when its beginning or
/// too many places cannot be read.
BookBytes ReadBookBytes(FileReader& reader);

struct ContactBookFile {
  WinPath path;
  ContactBook book;
  std::vector<UnreadPlace> unread;

  /// False when something in the file was damaged or could not be read.
  bool IsWhole() const { return unread.empty() && book.IsWhole(); }
  /// What could not be read, each with its offset and the reason. Of very many faults the last line has the number.
  std::vector<std::string> Faults() const;
  std::size_t FaultCount() const { return unread.size() + book.faults.size() + book.faultsNotListed; }
  /// What is in the file and is not exported on purpose ("1 deleted record"); empty for nothing.
  std::string LeftOut() const;
};

/// Why there is no address book to read.
struct BookRefusal {
  std::string sentence;

  const std::string& Sentence() const { return sentence; }
};

using BookResult = std::variant<ContactBookFile, BookRefusal>;

/// Reads the address book `file`, wherever it is.
BookResult ReadBookFile(FileSystem& files, SystemFacts& facts, const WinPath& file);

/// Reads the address book that the registry names as the one in use, from the disk's own drives only.
BookResult ReadBookInUse(Platform& platform, RegistryStore& store);

}  // namespace quillbox
