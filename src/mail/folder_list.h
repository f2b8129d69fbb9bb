// SPDX-License-Identifier: GPL-3.0-or-later
// The folders of an identity: the tree that Folders.dbx holds, or what the stores' names say when it is lost.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "mail/store_reader.h"
#include "text/code_page.h"

namespace quillbox {

/// What a folder is, in any language.
enum class SpecialFolder : std::uint8_t { None = 0, Inbox, Outbox, Sent, Deleted, Drafts };
/// What the tree is that a folder belongs to.
enum class FolderTree : std::uint8_t { Other = 0, WebMail = 2, Local = 3, Root = 4 };

struct MailFolder {
  std::uint32_t number = 0;
  std::optional<std::size_t> parent = {};  ///< its place in the list; nothing for one at the top
  std::string name = {};                   ///< inner text
  std::string file = {};                   ///< of the store, without a folder; matches without case. Empty: it has none
  std::string server = {};                 ///< "LocalStore", or the account that it is on
  SpecialFolder special = SpecialFolder::None;
  FolderTree tree = FolderTree::Other;
  std::uint32_t flags = 0;
  std::optional<std::uint32_t> messages = {}, unread = {};  ///< as the list counts them
};

struct FolderList {
  std::vector<MailFolder> folders;  ///< each after its parent, else in the file's order
  DamageList damage;
};

/// More folders than these are not read.
inline constexpr std::size_t kMaxFolders = 65'536;

/// The folders of a store of the kind FolderList, whose texts are in `page`. A folder whose parent is missing, or is
/// below itself, comes to the top, and is in the damage.
FolderList ReadFolderList(StoreReader& store, const CodePage& page);

/// The folders above `folder` and it, from the top.
std::vector<std::size_t> PathTo(const FolderList& list, std::size_t folder);

/// What the name of a store's file says: "Inbox (1).dbx" and "Inbox.bak" are copies of "Inbox".
struct StoreName {
  std::string folder;                           ///< the folder's name
  bool isCopy = false;                          ///< it has a number or an ending that copies have
  SpecialFolder special = SpecialFolder::None;  ///< by the names that the languages of Outlook Express have for them
};
/// Nothing for a file that isn't named like a store of messages: another ending, Folders, Offline and the like.
std::optional<StoreName> ParseStoreName(std::string_view file);

/// Adds a folder at the top for each store among `files` that no folder of the list names: for a list without them all
/// stores, where Folders.dbx is lost, damaged or empty.
void AddUnnamedStores(FolderList& list, std::span<const std::string> files);

enum class MailTarget { Thunderbird, Maildir, Files };
/// The name that the program behind a target gives its own folder of this kind; empty for none.
std::string_view TargetName(SpecialFolder special, MailTarget target);
/// What a folder is called at a target: by its kind, else its own name made safe for file systems and the target.
std::string FolderNameAt(const MailFolder& folder, MailTarget target);

}  // namespace quillbox
