// SPDX-License-Identifier: GPL-3.0-or-later
// "backup": the quick backup of the chosen identities, or the complete one.
#include <algorithm>
#include <functional>

#include "addressbook/address_book_copy.h"
#include "backup/identity_backup.h"
#include "backup/registry_items.h"
#include "cli/backup_lines.h"
#include "cli/commands.h"
#include "core/file_helpers.h"
#include "host/host_paths.h"
#include "session/backup_recorder.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

class Backup {
 public:
  Backup(Console& console, OpenedDisk& disk, const CommandArguments& arguments)
      : console_(console), disk_(disk), arguments_(arguments) {}

  BackupRecord Run(const WinPath& folder) {
    recorder_.Begin(arguments_.complete ? "Complete Backup" : "Quick Backup");
    recorder_.Record().folder = folder;
    {
      const CommandFailures::Scope failures(disk_.session.store.Failures());
      try {
        arguments_.complete ? Complete(folder) : Quick(folder);
      } catch (const Error& error) {
        recorder_.Record().endedEarly = Describe(error);
      }
    }
    for (const LeftOut& leftOut : backup_.GetLeftOut()) recorder_.Record().leftOut.push_back(leftOut);
    recorder_.End();
    return *disk_.session.LastBackup();
  }

 private:
  /// Identities of one name share a folder: no file of one takes the place of another's.
  bool MayOverwrite(const IdentityInfo& identity, const std::vector<std::string>& shared) const {
    return arguments_.overwrite && std::none_of(shared.begin(), shared.end(), [&](const std::string& name) {
             return EqualIgnoreCase(name, identity.username);
           });
  }

  void Quick(const WinPath& folder) {
    const std::vector<IdentityInfo> chosen = disk_.Chosen(arguments_.disk.identities);
    const std::vector<std::string> shared = SharedUsernames(chosen);
    if (chosen.empty()) backup_.LeaveOut("", "there are no identities");
    for (const IdentityInfo& identity : chosen) {
      if (!identity.storeFolder) {
        const std::string why = "it was never started in Outlook Express and has nothing to back up";
        arguments_.disk.identities.empty() ? console_.Note(identity.username + ": " + why)
                                           : backup_.LeaveOut(identity.username, why);
        continue;
      }
      const auto target = backup_.EnterIdentityFolder(folder, identity.username);
      if (!target) continue;
      if (backup_.CheckIdentitiesKey()) {
        backup_.Save(identity, *target, kQuickBackup, MayOverwrite(identity, shared));
      } else {
        backup_.LeaveOut(identity.username, kNoIdentitiesKey);
      }
    }
  }

  void Complete(const WinPath& folder) {
    Session& session = disk_.session;
    RegistryItems items(disk_.platform, session.store, session.backupFolder);
    for (const RegistryItem item : kCompleteItems) items.ExportSilently(item);
    const WinPath book = session.Catalogue().addressBookFile;
    AddressBookCopy copy(disk_.platform, session.store, session.backupFolder);
    if (!book.Empty() && !copy.BackUp(book, folder, CopyPart::OneOfSeveral, arguments_.overwrite)) {
      recorder_.Record().leftOut.push_back({LeftOut::Kind::AddressBook, "the address book", "its file cannot be used"});
    }
    const IdentityCatalogue& catalogue = session.Catalogue();
    const bool overwrite = arguments_.overwrite && SharedUsernames(catalogue.identities).empty();
    backup_.SaveAll(folder, catalogue, kCompleteBackup, overwrite);
  }

  Console& console_;
  OpenedDisk& disk_;
  const CommandArguments& arguments_;
  BackupRecorder recorder_{disk_.session};
  IdentityBackup backup_{disk_.platform, disk_.session.store, disk_.session.backupFolder,
                         [this](const std::string& status) { console_.Progress(status); }};
};

/// A backup that is there is not mixed with a new one unasked.
void RefuseOldBackup(OpenedDisk& disk, const CommandArguments& arguments, const WinPath& folder) {
  if (arguments.overwrite) return;
  FileSystem& files = disk.platform.GetFiles();
  const auto refuse = [&](const WinPath& there) {
    if (!files.Stat(there)) return;
    throw Error("beginning the backup", {there.Text(), {}, {}},
                "it is there already; with --overwrite a new backup takes its place");
  };
  for (const IdentityInfo& identity : disk.Chosen(arguments.disk.identities)) {
    if (identity.storeFolder && !identity.username.empty()) refuse(folder.Join(identity.username));
  }
  if (!arguments.complete) return;
  for (const RegistryItem item : kCompleteItems) {
    refuse(folder.Join(RowOf(item).exportFile.On(disk.session.store.GetOsCode())));
  }
}

}  // namespace

CliExit RunBackup(Console& console, const CommandArguments& arguments) {
  OpenedDisk disk(console, arguments.disk, OpenedDisk::Use::Change);
  const WinPath folder = disk.PathOf(GivenPath(arguments.to));
  if (const auto refusal = disk.session.backupFolder.UseOnce(folder)) {
    throw Error("choosing the backup folder", {arguments.to, {}, {}}, refusal->Reason());
  }
  RefuseOldBackup(disk, arguments, folder);
  if (!CreatePath(disk.platform.GetFiles(), folder)) {
    throw Error("making the backup folder", {arguments.to, {}, {}}, "it cannot be made");
  }
  const BackupRecord record = Backup(console, disk, arguments).Run(folder);
  disk.platform.EndCommand();
  PrintRecord(console, record);
  console.Result((console.incomplete ? "NOT everything was backed up to " : "Backed up to ") +
                 GivenPath(arguments.to).Text() + ": " + SummaryOf(record));
  return console.End();
}

}  // namespace quillbox
