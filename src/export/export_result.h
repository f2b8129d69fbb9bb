// SPDX-License-Identifier: GPL-3.0-or-later
// What became of an export: for each folder the numbers that must agree, and every message that did not simply arrive.
// There is no "done" to set: how an export ended follows from its numbers.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mail/store_survey.h"
#include "text/win_path.h"

namespace quillbox {

/// How a message of a store's index ended. Each has one end.
enum class MessageEnd {
  Written,
  AlreadyThere,  ///< the same bytes were there before, or came from another copy of the folder
  Partly,        ///< a part of it could be read, and went to the folder of recovered messages
  NoText,        ///< its text was never downloaded, so the store has none
  Unreadable,
};
inline constexpr std::size_t kMessageEnds = 5;

/// A message that was not written whole.
struct MessageTrouble {
  MessageEnd end = MessageEnd::Unreadable;
  std::uint64_t offset = 0;  ///< of its record in the store
  std::string subject;       ///< inner text; empty when it cannot be read
  std::string why;           ///< with the place of the damage
};

/// What one store gave.
struct StoreResult {
  /// More troubles are counted only.
  static constexpr std::size_t kMaxListed = 10'000;

  WinPath file;
  std::string fault;                      ///< why nothing of it could be read; mostly empty
  std::optional<std::uint64_t> inHeader;  ///< messages that the header promises
  std::uint64_t inIndex = 0;              ///< that the tree leads to
  std::array<std::uint64_t, kMessageEnds> ends = {};
  std::vector<MessageTrouble> troubles;
  std::uint64_t recoverable = 0;    ///< messages that nothing leads to, with text
  std::uint64_t onlyRecords = 0;    ///< deleted messages of which subject and sender are left
  std::vector<std::string> damage;  ///< of the store itself, in words
  StoreAccount account;             ///< what its bytes are used for
  bool changed = false;             ///< while it was read

  std::uint64_t Of(MessageEnd end) const { return ends[static_cast<std::size_t>(end)]; }
  void Note(MessageEnd end) { ++ends[static_cast<std::size_t>(end)]; }
  void Note(MessageTrouble trouble);
  bool IsComplete() const;
};

/// What went to one folder at the target.
struct BoxResult {
  WinPath place;
  std::uint64_t written = 0;
  std::uint64_t alreadyThere = 0;
  std::uint64_t readBack = 0;  ///< of those written

  /// The folder was left as it was.
  void Forget() { written = readBack = 0; }
};

struct FolderResult {
  std::size_t at = 0;                         ///< its place in the list of folders
  std::string name;                           ///< with those above it: "Ann > Inbox"
  std::optional<std::uint64_t> inFolderList;  ///< messages by Folders.dbx
  std::vector<StoreResult> stores;            ///< the folder's own first, then its copies; none when it has no file
  BoxResult box;
  BoxResult recovered;
  std::string fault;           ///< why the folder was not written; empty when it was
  std::string recoveredFault;  ///< the same for the folder of recovered messages

  std::uint64_t InIndex() const;
  /// How many messages there should be: the most that list, header or index say.
  std::uint64_t Expected() const;
  std::uint64_t Of(MessageEnd end) const;
  /// Every number agrees.
  bool IsComplete() const;
};

enum class ExportEnd {
  Complete,    ///< every message of every folder is at the target, read back as it was written
  Incomplete,  ///< a number differs
  Cancelled,
};

struct ExportResult {
  std::vector<FolderResult> folders;
  bool cancelled = false;
  std::string listFault;  ///< what is wrong with the list of folders
  std::string fault;      ///< why nothing could be exported at all

  ExportEnd End() const;
  std::uint64_t Of(MessageEnd end) const;
  std::uint64_t Expected() const;
};

}  // namespace quillbox
