// SPDX-License-Identifier: GPL-3.0-or-later
// "restore": brings back what a complete backup saved.
#include "addressbook/address_book_copy.h"
#include "backup/registry_items.h"
#include "backup/store_restore.h"
#include "cli/backup_lines.h"
#include "cli/commands.h"
#include "core/disk_path.h"
#include "core/file_helpers.h"
#include "core/message_store.h"
#include "session/session.h"
#include "text/error.h"

namespace quillbox {
namespace {

void MergeItems(Console& console, OpenedDisk& disk, const WinPath& folder) {
  Session& session = disk.session;
  RegistryItems items(disk.platform, session.store, session.backupFolder);
  for (const RegistryItem item : kCompleteItems) {
    const std::string file = RowOf(item).exportFile.On(session.store.GetOsCode());
    if (items.RestoreSilently(item)) {
      console.Result(file + ": merged into the registry");
    } else {
      console.NotDone(folder.Join(file).Text() + ": not everything of it was merged into the registry");
    }
  }
  session.GetInputPaths();
}

/// The file of the backup that has the address book's name, or the only one there.
std::optional<WinPath> BookIn(OpenedDisk& disk, const WinPath& folder) {
  const std::string name = NameFromFullPath(disk.session.Catalogue().addressBookFile.Text());
  if (!name.empty() && disk.platform.GetFiles().Stat(folder.Join(name))) return folder.Join(name);
  const auto books = FilesLike(disk.platform.GetFiles(), folder.Join("*.wab"));
  return books.size() == 1 ? std::optional(folder.Join(books.front())) : std::nullopt;
}

/// Without --overwrite a disk is left alone as soon as anything of it would change: half of a restore, with merged
/// registry files over stores that stay, would fit neither the disk nor the backup.
class WhatIsThere {
 public:
  WhatIsThere(OpenedDisk& disk, const WinPath& backup)
      : disk_(disk), files_(disk.platform.GetFiles()), store_(disk.session.store), backup_(backup) {}

  /// Throws Error for the first key or file, in the order in which a restore comes to them.
  void Refuse() {
    RefuseKeys();
    RefuseBook();
    RefuseStores();
  }

 private:
  void RefuseKeys() {
    for (const RegistryItem item : kCompleteItems) {
      const auto key = ParseRegistryPath(RowOf(item).key);
      if (!key || !files_.Stat(backup_.Join(RowOf(item).exportFile.On(store_.GetOsCode())))) continue;
      if (store_.OpenKey(*key, Access::Read).status == Status::FileNotFound) continue;
      Refuse(FullName(*key), "this registry has it already; with --overwrite the backup is merged into it");
    }
  }
  void RefuseBook() {
    const auto book = BookIn(disk_, backup_);
    const WinPath home(DirectoryFromFile(disk_.session.Catalogue().addressBookFile.Text()));
    if (!book || home.Empty()) return;
    const DiskPath folder = CheckAddressBook(disk_.platform.GetDrives(), home);
    if (folder.IsUsable()) RefuseFile(folder.Path().Join(book->Name()));
  }
  void RefuseStores() {
    for (const IdentityInfo& identity : disk_.session.Catalogue().identities) {
      const WinPath saved = backup_.Join(identity.username);
      if (FileNameFault(identity.username) || !DirExists(files_, saved)) continue;
      const auto store = LocateStore(store_, disk_.platform, identity.userId);
      const auto* folder = std::get_if<WinPath>(&store);
      if (folder == nullptr) continue;
      for (const std::string& name : FilesLike(files_, saved.Join("*.dbx"))) {
        if (IsStoreFileToCopy(name, Pop3Uidl::Skip)) RefuseFile(folder->Join(name));
      }
    }
  }
  void RefuseFile(const WinPath& file) {
    if (files_.Stat(file)) Refuse(file.Text(), "it is there already; with --overwrite the backup's takes its place");
  }
  [[noreturn]] static void Refuse(const std::string& what, const std::string& why) {
    throw Error("beginning the restore", {what, {}, {}}, why + ". Nothing was changed");
  }

  OpenedDisk& disk_;
  FileSystem& files_;
  RegistryStore& store_;
  const WinPath& backup_;
};

void RestoreBook(Console& console, OpenedDisk& disk, const WinPath& folder, bool overwrite) {
  const auto book = BookIn(disk, folder);
  if (!book) return console.NotDone("the address book was not restored: the backup has no file of its name");
  AddressBookCopy copy(disk.platform, disk.session.store, disk.session.backupFolder);
  copy.CopyBack(*book, CopyPart::OneOfSeveral, overwrite);
}

BackupRecord Restore(Console& console, OpenedDisk& disk, const WinPath& folder, bool overwrite) {
  BackupRecord record;
  const CommandFailures::Scope failures(disk.session.store.Failures());
  StoreRestore stores(disk.platform, disk.session.store, disk.session.backupFolder,
                      [&](const std::string& status) { console.Progress(status); });
  try {
    MergeItems(console, disk, folder);
    RestoreBook(console, disk, folder, overwrite);
    stores.RestoreAll(folder, disk.session.Catalogue(), overwrite);
  } catch (const Error& error) {
    record.endedEarly = Describe(error);
  }
  record.copies = disk.platform.GetShell().FinishCopies();
  record.leftOut = stores.GetLeftOut();
  return record;
}

}  // namespace

CliExit RunRestore(Console& console, const CommandArguments& arguments) {
  OpenedDisk disk(console, arguments.disk, OpenedDisk::Use::Change);
  const WinPath folder = disk.PathOf(GivenPath(arguments.to));
  if (!DirExists(disk.platform.GetFiles(), folder)) {
    throw Error("restoring a backup", {arguments.to, {}, {}}, "there is no such folder");
  }
  if (const auto refusal = disk.session.backupFolder.UseOnce(folder)) {
    throw Error("restoring a backup", {arguments.to, {}, {}}, refusal->Reason());
  }
  if (!arguments.overwrite) WhatIsThere(disk, folder).Refuse();
  const BackupRecord record = Restore(console, disk, folder, arguments.overwrite);
  disk.platform.EndCommand();
  PrintRecord(console, record);
  const std::string protection = disk.platform.WriteProtection({RegistryRoot::CurrentUser, RegistryRoot::LocalMachine});
  if (!protection.empty()) console.NotDone("the disk's registry is as it was. " + protection);
  console.Result((console.incomplete ? "NOT everything was restored from " : "Restored from ") +
                 GivenPath(arguments.to).Text() + ": " + SummaryOf(record));
  return console.End();
}

}  // namespace quillbox
