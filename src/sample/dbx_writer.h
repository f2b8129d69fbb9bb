// SPDX-License-Identifier: GPL-3.0-or-later
// Message store files as Outlook Express lays them out: a fixed header, the records, and a tree that leads to them.
// The sample's stores are written with it, so that code that reads or searches stores finds real structure.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "text/unicode.h"

namespace quillbox {

enum class DbxKind { Messages, FolderList, Pop3Ids, Offline };

struct DbxMessage {
  std::string text;  ///< headers, an empty line, the body; CR LF
  std::string subject;
  std::string senderName;
  std::string senderAddress;
  std::string receiverName;
  std::string receiverAddress;
  std::string messageId;
  std::string account;
  std::uint64_t sent = 0;  ///< 100-nanosecond intervals since 1601-01-01 UTC
  bool read = true;
  std::uint32_t flags = 0;  ///< further flags, as the record has them
  bool deleted = false;     ///< written, but the tree doesn't lead to it
};

/// A folder in Folders.dbx. Texts are in the system's code page.
struct DbxFolder {
  std::uint32_t id = 0;
  std::optional<std::uint32_t> parent = {};  ///< nothing for the root
  std::string name = {};
  std::string file = {};  ///< without a folder; empty where the folder has none
  std::uint32_t messages = 0;
  std::uint32_t unread = 0;
  std::uint32_t special = 0;  ///< 1 inbox, 2 outbox, 3 sent, 4 deleted, 5 drafts
  std::uint32_t tree = 0;     ///< 4 root, 3 local, 2 web mail
};

/// A store file with `messages` in their order. Throws Error for one that 32-bit offsets cannot reach.
Bytes MessageStore(std::span<const DbxMessage> messages);
/// Folders.dbx with `folders` in their order.
Bytes FolderListFile(std::span<const DbxFolder> folders);
/// A store of Outlook Express 4: messages one after another.
Bytes OldMessageStore(std::span<const std::string> texts);
/// A file of another kind without records.
Bytes EmptyStore(DbxKind kind);

}  // namespace quillbox
