// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/sample_store.h"

#include <algorithm>
#include <span>

#include "sample/sample_mail.h"

namespace quillbox {
namespace {

constexpr std::size_t kSmallStore = 3;

// Folders above those with messages, by their numbers.
constexpr std::uint32_t kTop = 0;
constexpr std::uint32_t kLocal = 1;
constexpr std::uint32_t kNewsServer = 2;
constexpr std::uint32_t kFirstMailFolder = 4;

struct StoreRow {
  std::string_view folder;  ///< in the system's code page, as are store files
  std::string_view file;    ///< in inner text
  std::uint32_t parent;
  MailTopic topic;
  std::size_t count;
  std::uint32_t special = 0;  ///< as DbxFolder has it
};

constexpr std::uint32_t kInbox = 1, kOutbox = 2, kSent = 3, kDeleted = 4, kDrafts = 5;
constexpr std::uint32_t kLocalTree = 3, kRootTree = 4;

constexpr StoreRow kHome[] = {
    {"Inbox", "Inbox.dbx", kLocal, MailTopic::Inbox, 120, kInbox},
    {"Outbox", "Outbox.dbx", kLocal, MailTopic::Sent, 0, kOutbox},
    {"Sent Items", "Sent Items.dbx", kLocal, MailTopic::Sent, 60, kSent},
    {"Deleted Items", "Deleted Items.dbx", kLocal, MailTopic::Deleted, 25, kDeleted},
    {"Drafts", "Drafts.dbx", kLocal, MailTopic::Drafts, 4, kDrafts},
    {"Choir", "Choir.dbx", kLocal, MailTopic::Choir, 30},
    {"comp.lang.c++", "comp.lang.c++.dbx", kNewsServer, MailTopic::News, 45},
};

constexpr StoreRow kOffice[] = {
    {"Inbox", "Inbox.dbx", kLocal, MailTopic::Office, 40, kInbox},
    {"Outbox", "Outbox.dbx", kLocal, MailTopic::Sent, 0, kOutbox},
    {"Sent Items", "Sent Items.dbx", kLocal, MailTopic::Sent, 12, kSent},
    {"Deleted Items", "Deleted Items.dbx", kLocal, MailTopic::Deleted, 3, kDeleted},
    {"Drafts", "Drafts.dbx", kLocal, MailTopic::Drafts, 1, kDrafts},
    {"Auftr\xE4ge", "Aufträge.dbx", kLocal, MailTopic::Office, 9},
};

constexpr std::string_view kCleanupLog =
    "Wed, 15 Dec 2004 08:12:40 Cleanup started\r\n"
    "Wed, 15 Dec 2004 08:12:41 Inbox.dbx: 4 percent wasted, left as it is\r\n"
    "Wed, 15 Dec 2004 08:12:41 Deleted Items.dbx: 31 percent wasted, compacted\r\n"
    "Wed, 15 Dec 2004 08:12:42 Cleanup ended\r\n";

Bytes FolderListOf(std::span<const StoreRow> rows, std::span<const std::uint32_t> unread, bool small) {
  std::vector<DbxFolder> folders = {{.id = kTop, .name = "Outlook Express", .tree = kRootTree},
                                    {.id = kLocal, .parent = kTop, .name = "Local Folders", .tree = kLocalTree}};
  const auto isNews = [](const StoreRow& row) { return row.parent == kNewsServer; };
  if (std::any_of(rows.begin(), rows.end(), isNews))
    folders.push_back({.id = kNewsServer, .parent = kTop, .name = "news.example.net"});
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const StoreRow& row = rows[i];
    const std::size_t count = small ? std::min(row.count, kSmallStore) : row.count;
    folders.push_back({kFirstMailFolder + static_cast<std::uint32_t>(i), row.parent, std::string(row.folder),
                       std::string(row.folder) + ".dbx", static_cast<std::uint32_t>(count), unread[i], row.special,
                       row.parent == kLocal ? kLocalTree : 0});
  }
  return FolderListFile(folders);
}

std::vector<NamedFile> FilesOf(std::span<const StoreRow> rows, bool small) {
  std::vector<NamedFile> files;
  std::vector<std::uint32_t> unread;
  for (const StoreRow& row : rows) {
    const auto mail = SampleMail(row.topic, small ? std::min(row.count, kSmallStore) : row.count);
    unread.push_back(static_cast<std::uint32_t>(
        std::count_if(mail.begin(), mail.end(), [](const DbxMessage& message) { return !message.read; })));
    files.push_back({std::string(row.file), MessageStore(mail)});
  }
  files.push_back({"Folders.dbx", FolderListOf(rows, unread, small)});
  files.push_back({"Offline.dbx", EmptyStore(DbxKind::Offline)});
  files.push_back({"Pop3uidl.dbx", EmptyStore(DbxKind::Pop3Ids)});
  files.push_back({"cleanup.log", Bytes(kCleanupLog.begin(), kCleanupLog.end())});
  return files;
}

}  // namespace

std::vector<NamedFile> StoreFiles(std::size_t identity, bool small) {
  switch (identity) {
    case 0:
      return FilesOf(kHome, small);
    case 1:
      return FilesOf(kOffice, small);
    default:
      return {};
  }
}

}  // namespace quillbox
