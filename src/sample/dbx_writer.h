// Message store files as Outlook Express lays them out: a fixed header, the records, and a tree that leads to them.
// The sample's stores are written with it, so that code that reads or searches stores finds real structure.
#pragma once

#include <cstdint>
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
};

/// A folder in Folders.dbx. Texts are in the system's code page.
struct DbxFolder {
  std::uint32_t id = 0;
  std::uint32_t parent = 0;  ///< 0 for the root
  std::string name;
  std::string file;  ///< without a folder; empty where the folder has none
  std::uint32_t messages = 0;
  std::uint32_t unread = 0;
};

/// More records than this are refused with Error (the tree has two levels).
inline constexpr std::size_t kMaxDbxRecords = 2703;

/// A store file with `messages` in their order.
Bytes MessageStore(std::span<const DbxMessage> messages);
Bytes FolderList(std::span<const DbxFolder> folders);
/// A file of another kind without records.
Bytes EmptyStore(DbxKind kind);

}  // namespace quillbox
