// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/found_folders.h"

#include <algorithm>
#include <utility>

#include "export/file_source.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr const char* kFolderList = "Folders.dbx";

/// The rows that only hold others: "Outlook Express" and "Local Folders".
bool IsOnlyContainer(const MailFolder& folder) {
  return folder.file.empty() && (folder.tree == FolderTree::Root || folder.tree == FolderTree::Local);
}

const FileEntry* Find(const std::vector<FileEntry>& entries, const std::string& name) {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const FileEntry& entry) { return EqualIgnoreCase(entry.name, name); });
  return found == entries.end() ? nullptr : &*found;
}

/// Why the number that the index leads to is not to be trusted, although the index itself is sound: others that count
/// the messages have another. Empty when they agree.
std::string CountFault(const FoundFolder& folder, std::optional<std::uint32_t> inHeader) {
  const auto differs = [&](const char* who, std::uint64_t count) {
    return std::string(who) + std::to_string(count) + (count == 1 ? " message" : " messages") +
           ", the store's index leads to " + std::to_string(folder.messages);
  };
  if (inHeader.value_or(folder.messages) != folder.messages) return differs("the header promises ", *inHeader);
  const std::uint64_t inList = folder.folder.messages.value_or(folder.messages);
  return inList == folder.messages ? "" : differs("Folders.dbx counts ", inList);
}

std::vector<std::string> NamesOf(const std::vector<FileEntry>& entries) {
  std::vector<std::string> names;
  for (const FileEntry& entry : entries) names.push_back(entry.name);
  // "Inbox.dbx" before "Inbox (1).dbx".
  const auto key = [](const std::string& name) { return std::pair(UpperCase(name.substr(0, name.rfind('.'))), name); };
  std::sort(names.begin(), names.end(), [&](const std::string& a, const std::string& b) { return key(a) < key(b); });
  return names;
}

}  // namespace

FoundFolders::FoundFolders(FileSystem& files, MailPlace place, CodePage page)
    : files_(files), place_(std::move(place)), page_(std::move(page)) {}

bool FoundFolders::Step() {
  if (!std::exchange(isListMade_, true)) {
    MakeList();
  } else if (counted_ < folders_.size()) {
    Count(folders_[counted_++]);
  }
  return counted_ < folders_.size();
}

FoundFolders::Entries FoundFolders::EntriesOf(const WinPath& folder) {
  Entries entries;
  const auto finder = files_.Find(folder.Join("*"));
  while (auto entry = finder->Next()) {
    if (!entry->isDirectory) entries.push_back(*std::move(entry));
  }
  return entries;
}

void FoundFolders::MakeList() {
  const Entries entries = EntriesOf(place_.folder);
  FolderList list = ReadList(entries);
  const std::size_t listed = list.folders.size();
  AddUnnamedStores(list, NamesOf(entries));
  Take(list, listed, entries);
  FindCopies();
}

FolderList FoundFolders::ReadList(const Entries& entries) {
  const FileEntry* file = Find(entries, kFolderList);
  if (!file) {
    listFault_ = std::string(kFolderList) + " is not there";
    return {};
  }
  try {
    FileSource source(files_, place_.folder.Join(file->name));
    StoreReader store(source);
    if (store.Kind() != StoreKind::FolderList) {
      listFault_ = std::string(kFolderList) + " is not a list of folders";
      return {};
    }
    FolderList list = ReadFolderList(store, page_);
    if (!list.damage.IsEmpty()) {
      listFault_ = std::string(kFolderList) + ", " + Describe(list.damage.Listed().front());
    } else if (list.folders.empty()) {
      listFault_ = std::string(kFolderList) + " is empty";
    }
    return list;
  } catch (const Error& error) {
    listFault_ = Describe(error);
    return {};
  }
}

/// Makes the list without the rows that only hold others, whose folders come to the top.
void FoundFolders::Take(const FolderList& list, std::size_t listed, const Entries& entries) {
  std::vector<std::optional<std::size_t>> places;
  for (std::size_t at = 0; at < list.folders.size(); ++at) {
    const MailFolder& folder = list.folders[at];
    const auto parent = folder.parent ? places[*folder.parent] : std::nullopt;
    if (IsOnlyContainer(folder)) {
      places.push_back(parent);
      continue;
    }
    FoundFolder found;
    found.folder = folder;
    found.parent = parent;
    found.depth = parent ? folders_[*parent].depth + 1 : 0;
    found.isListed = at < listed;
    if (const FileEntry* entry = folder.file.empty() ? nullptr : Find(entries, folder.file)) {
      found.store = place_.folder.Join(entry->name);
      found.size = entry->size;
    }
    places.emplace_back(folders_.size());
    folders_.push_back(std::move(found));
  }
}

std::optional<std::size_t> FoundFolders::OriginalOf(const std::string& file) const {
  const auto name = ParseStoreName(file);
  if (!name) return std::nullopt;
  for (std::size_t at = 0; at < folders_.size(); ++at) {
    const auto other = ParseStoreName(folders_[at].folder.file);
    if (other && !other->isCopy && EqualIgnoreCase(other->folder, name->folder)) return at;
  }
  return std::nullopt;
}

void FoundFolders::FindCopies() {
  for (FoundFolder& folder : folders_) {
    const auto name = ParseStoreName(folder.folder.file);
    if (!folder.isListed && name && name->isCopy) folder.copyOf = OriginalOf(folder.folder.file);
  }
  for (const WinPath& folder : place_.copies) AddCopiesIn(folder);
}

void FoundFolders::AddCopiesIn(const WinPath& folder) {
  for (const FileEntry& entry : EntriesOf(folder)) {
    const auto name = ParseStoreName(entry.name);
    if (!name) continue;
    FoundFolder found;
    found.isElsewhere = true;
    found.copyOf = OriginalOf(entry.name);
    found.folder.name = name->folder + " (copy)";
    found.folder.file = entry.name;
    found.folder.tree = FolderTree::Local;
    found.store = folder.Join(entry.name);
    found.size = entry.size;
    folders_.push_back(std::move(found));
  }
}

void FoundFolders::Count(FoundFolder& folder) {
  folder.isCounted = true;
  if (!folder.store) {
    if (!folder.folder.file.empty()) folder.fault = "the file " + folder.folder.file + " is not there";
    return;
  }
  try {
    FileSource source(files_, *folder.store);
    StoreReader store(source);
    const bool isStore = store.Kind() == StoreKind::Messages || store.Kind() == StoreKind::OutlookExpress4;
    if (isStore) folder.messages = store.Entries().size();
    if (!store.Damage().IsEmpty()) {
      folder.fault = Describe(store.Damage().Listed().front());
    } else if (!isStore) {
      folder.fault = "it is not a store of messages";
    } else {
      folder.fault = CountFault(folder, store.CountInHeader());
    }
  } catch (const Error& error) {
    folder.fault = error.Why();
  }
}

std::vector<std::size_t> UsualChoice(const FoundFolders& folders, bool withCopies) {
  std::vector<std::size_t> chosen;
  for (std::size_t at = 0; at < folders.All().size(); ++at) {
    const FoundFolder& folder = folders.All()[at];
    const bool isCopy = folder.copyOf || folder.isElsewhere;
    if (isCopy ? withCopies && folder.copyOf : true) chosen.push_back(at);
  }
  return chosen;
}

std::vector<WinPath> RecycleBinsBeside(FileSystem& files, const WinPath& folder) {
  if (!folder.IsAbsolute()) return {};
  const WinPath root(folder.Text().substr(0, 3));
  std::vector<WinPath> bins;
  for (const char* name : {"RECYCLED", "RECYCLER", "$Recycle.Bin"}) {
    const auto there = files.Stat(root.Join(name));
    if (!there || !there->isDirectory) continue;
    const WinPath bin = root.Join(there->name);
    bins.push_back(bin);
    const auto finder = files.Find(bin.Join("*"));
    while (const auto entry = finder->Next()) {
      if (entry->isDirectory && entry->name != "." && entry->name != "..") bins.push_back(bin.Join(entry->name));
    }
  }
  return bins;
}

}  // namespace quillbox
