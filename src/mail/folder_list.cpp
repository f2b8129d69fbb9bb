// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/folder_list.h"

#include <algorithm>
#include <unordered_map>

#include "mail/export_names.h"

namespace quillbox {
namespace {

constexpr RecordField kNumber{0x00}, kParent{0x01}, kName{0x02}, kFile{0x03}, kServer{0x05}, kFlags{0x06},
    kMessages{0x07}, kUnread{0x08}, kSpecial{0x09}, kTree{0x0A};
constexpr std::uint32_t kNoParent = 0xFFFFFFFF;

/// A folder with its parent's number.
struct Entry {
  MailFolder folder;
  std::uint32_t parent = kNoParent;
  std::uint32_t offset = 0;
};

template <class Kind>
Kind KindOf(std::optional<std::uint32_t> number, Kind last) {
  return number && *number <= static_cast<std::uint32_t>(last) ? static_cast<Kind>(*number) : Kind{};
}

Entry EntryOf(const StoreRecord& record, std::uint32_t offset, const CodePage& page) {
  const auto text = [&](RecordField field) { return page.Decode(record.Text(field).value_or("")); };
  Entry entry;
  entry.offset = offset;
  entry.parent = record.Number(kParent).value_or(0);
  entry.folder.number = record.Number(kNumber).value_or(0);
  entry.folder.name = text(kName);
  entry.folder.file = text(kFile);
  entry.folder.server = text(kServer);
  entry.folder.flags = record.Number(kFlags).value_or(0);
  entry.folder.messages = record.Number(kMessages);
  entry.folder.unread = record.Number(kUnread);
  entry.folder.special = KindOf(record.Number(kSpecial), SpecialFolder::Drafts);
  entry.folder.tree = KindOf(record.Number(kTree), FolderTree::Root);
  return entry;
}

/// Puts folders in order: each after its parent.
class FolderSort {
 public:
  FolderSort(std::vector<Entry> entries, FolderList& list) : entries_(std::move(entries)), list_(list) {}

  void Run() {
    NumberFolders();
    std::vector<std::size_t> tops;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      if (const auto parent = ParentOf(i)) {
        children_[*parent].push_back(i);
      } else {
        tops.push_back(i);
      }
    }
    for (const std::size_t top : tops) Place(top);
    // What no top leads to is in a ring.
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      if (place_[i]) continue;
      list_.damage.Add({entries_[i].offset, StorePart::Folder, DamageReason::ParentLoop, entries_[i].folder.name});
      Place(i);
    }
  }

 private:
  void NumberFolders() {
    place_.resize(entries_.size());
    children_.resize(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      const Entry& entry = entries_[i];
      if (byNumber_.emplace(entry.folder.number, i).second) continue;
      list_.damage.Add({entry.offset, StorePart::Folder, DamageReason::NumberTwice, entry.folder.name});
    }
  }

  std::optional<std::size_t> ParentOf(std::size_t i) {
    const Entry& entry = entries_[i];
    if (entry.parent == kNoParent) return std::nullopt;
    const auto found = byNumber_.find(entry.parent);
    if (found != byNumber_.end()) return found->second;
    list_.damage.Add({entry.offset, StorePart::Folder, DamageReason::ParentMissing, entry.folder.name});
    return std::nullopt;
  }

  /// Lists `top` and all below it that are not listed yet.
  void Place(std::size_t top) {
    std::vector<std::pair<std::size_t, std::optional<std::size_t>>> next = {{top, std::nullopt}};
    while (!next.empty()) {
      const auto [i, parent] = next.back();
      next.pop_back();
      if (place_[i]) continue;
      place_[i] = list_.folders.size();
      entries_[i].folder.parent = parent;
      list_.folders.push_back(std::move(entries_[i].folder));
      for (auto child = children_[i].rbegin(); child != children_[i].rend(); ++child) {
        next.emplace_back(*child, place_[i]);
      }
    }
  }

  std::vector<Entry> entries_;
  FolderList& list_;
  std::unordered_map<std::uint32_t, std::size_t> byNumber_;
  std::vector<std::vector<std::size_t>> children_;
  std::vector<std::optional<std::size_t>> place_;
};

}  // namespace

FolderList ReadFolderList(StoreReader& store, const CodePage& page) {
  FolderList list;
  std::vector<Entry> entries;
  for (const std::uint32_t offset : store.Entries()) {
    if (entries.size() == kMaxFolders) {
      list.damage.Add({offset, StorePart::Folder, DamageReason::TooMany});
      break;
    }
    const auto read = store.ReadRecord(offset);
    if (const auto* damage = std::get_if<StoreDamage>(&read)) {
      list.damage.Add(*damage);
    } else {
      entries.push_back(EntryOf(std::get<StoreRecord>(read), offset, page));
    }
  }
  list.damage.Append(store.Damage());
  FolderSort(std::move(entries), list).Run();
  return list;
}

std::vector<std::size_t> PathTo(const FolderList& list, std::size_t folder) {
  std::vector<std::size_t> path;
  for (std::optional<std::size_t> at = folder; at; at = list.folders[*at].parent) path.push_back(*at);
  std::reverse(path.begin(), path.end());
  return path;
}

std::string FolderNameAt(const MailFolder& folder, MailTarget target) {
  const std::string_view special = TargetName(folder.special, target);
  if (!special.empty()) return std::string(special);
  // Endings and numbers get room behind it.
  constexpr std::size_t kMaxBytes = kMaxNameBytes - 20;
  std::string name = SafeName(folder.name, kMaxBytes, "Folder");
  if (target == MailTarget::Maildir) std::replace(name.begin(), name.end(), '.', '_');
  if (target != MailTarget::Thunderbird) return name;
  // Files of Thunderbird's own.
  for (const std::string_view ending : {".msf", ".sbd", ".dat", ".mozmsgs"}) {
    if (UpperCase(name).ends_with(UpperCase(ending))) return name + "_";
  }
  return name;
}

}  // namespace quillbox
