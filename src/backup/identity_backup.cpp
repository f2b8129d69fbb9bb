// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/identity_backup.h"

#include <map>
#include <utility>

#include "backup/registry_items.h"
#include "core/disk_path.h"
#include "core/file_helpers.h"
#include "core/message_store.h"
#include "platform/status_text.h"
#include "text/error.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

struct SharedExport {
  RegistryItem item;
  const char* file;
  const char* status;
};
constexpr SharedExport kSharedExports[] = {
    {RegistryItem::AddressBook, "WAB.reg", "Address Book Subkey Backup Complete"},
    {RegistryItem::Machine, "HKLMOutlookExpress.reg", "HKLM Outlook Express Export Complete"},
    {RegistryItem::Accounts, "IAM.reg", "Internet Accounts Manager Subkey Backup Complete"},
};

}  // namespace

std::vector<std::string> SharedUsernames(const std::vector<IdentityInfo>& identities) {
  std::map<std::u16string, std::pair<std::string, std::size_t>> counts;
  for (const IdentityInfo& identity : identities) {
    if (!identity.storeFolder || FileNameFault(identity.username)) continue;
    auto& [username, count] = counts[UpperCase(ToUtf16(identity.username))];
    if (count++ == 0) username = identity.username;
  }
  std::vector<std::string> shared;
  for (const auto& [upper, seen] : counts) {
    if (seen.second > 1) shared.push_back(seen.first);
  }
  return shared;
}

std::optional<WinPath> IdentityBackup::EnterIdentityFolder(const WinPath& backupFolder, const std::string& username) {
  const WinPath target = backupFolder.Join(username);
  const auto refuse = [&](const WinPath& folder, const std::string& reason) -> std::optional<WinPath> {
    platform_.GetDialogs().Show({.text = "The backup of \"" + OneLine(username) + "\" was not made: the folder \"" +
                                         OneLine(folder.Text()) + "\" cannot be used because " + reason + ".",
                                 .icon = MessageIcon::Exclamation});
    LeaveOut(username, "the folder " + folder.Text() + " cannot be used because " + reason);
    return std::nullopt;
  };
  if (const auto fault = FileNameFault(username)) return refuse(target, fault->reason);
  // A folder above the disk's may be the backup folder; that of an identity is then perhaps the disk's.
  if (const auto refusal = folder_.RefusalOf(target)) return refuse(target, refusal->Reason());
  try {
    folder_.Enter(backupFolder);
  } catch (const Error& error) {
    return refuse(backupFolder, error.Why());
  }
  FileSystem& files = platform_.GetFiles();
  if (!DirExists(files, WinPath(username))) {
    const Status made = files.MakeDirectory(WinPath(username));
    if (made != Status::Success) return refuse(target, StatusReason(made));
  }
  const Status entered = platform_.GetDrives().SetCurrentDirectory(WinPath(username));
  if (entered != Status::Success) return refuse(target, StatusReason(entered));
  return platform_.GetDrives().CurrentDirectory();
}

bool IdentityBackup::CheckIdentitiesKey() {
  const Status status = store_.OpenKey(CurrentUser(kIdentitiesKey)).status;
  if (status == Status::Success) return true;
  store_.ShowRegistryReadError(status, " Identities");
  platform_.GetDialogs().Show({.text = "You will need to run Outlook Express at least one time."});
  return false;
}

void IdentityBackup::LeaveOut(const std::string& username, std::string why) {
  copier_.LeaveOut({LeftOut::Kind::Identity, "the backup of \"" + username + "\"", std::move(why)});
}

void IdentityBackup::Save(const IdentityInfo& identity, const WinPath& target, const BackupScope& scope,
                          OverwriteSetting overwrite) {
  CopyStore(identity, target, scope.pop3Uidl, overwrite);
  CopyAddressBook(target, overwrite);
  ExportIdentity(identity, target);
  if (scope.sharedKeys) ExportSharedKeys(target);
  if (scope.signatures) SaveSignatures(identity.userId);
}

std::optional<std::size_t> IdentityBackup::SaveAll(const WinPath& backupFolder, const IdentityCatalogue& catalogue,
                                                   const BackupScope& scope, OverwriteSetting overwrite) {
  TellSharedFolders(catalogue);
  std::size_t saved = 0;
  const std::vector<IdentityInfo>& all = catalogue.identities;
  for (auto identity = all.begin(); identity != all.end(); ++identity) {
    folder_.Enter(backupFolder);
    if (IsEmpty(*identity)) continue;
    const auto target = EnterIdentityFolder(backupFolder, identity->username);
    if (!target) continue;
    if (!CheckIdentitiesKey()) {
      for (; identity != all.end(); ++identity) {
        if (identity->storeFolder) LeaveOut(identity->username, kNoIdentitiesKey);
      }
      return std::nullopt;
    }
    Save(*identity, *target, scope, overwrite);
    ++saved;
  }
  return saved;
}

/// An identity whose setting is not text does not count as empty: its other parts are saved, and the copying reports
/// why its store is not.
bool IdentityBackup::IsEmpty(const IdentityInfo& identity) {
  try {
    return !ReadStoreFolder(store_, platform_.GetSystemFacts(), identity.userId);
  } catch (const Error&) {
    return false;
  }
}

void IdentityBackup::TellSharedFolders(const IdentityCatalogue& catalogue) {
  for (const std::string& username : SharedUsernames(catalogue.identities)) {
    platform_.GetDialogs().Show({.text = "Several identities are named \"" + OneLine(username) +
                                         "\". Their backups share one folder, in which the file of a later one takes "
                                         "the place of an earlier one's file of that name. To keep them apart, give "
                                         "them different names first.",
                                 .icon = MessageIcon::Exclamation});
  }
}

void IdentityBackup::CopyStore(const IdentityInfo& identity, const WinPath& target, Pop3Uidl pop3Uidl,
                               OverwriteSetting overwrite) {
  const auto folder = FindStore(store_, platform_, identity.userId);
  if (const auto* fault = std::get_if<StoreFault>(&folder)) {
    platform_.GetShell().FinishCopies();  // of the identity before
    platform_.GetDialogs().Show({.text = "The messages of \"" + OneLine(identity.username) +
                                         "\" cannot be copied: " + fault->clause + ". The rest of the backup goes on.",
                                 .icon = MessageIcon::Exclamation});
    return copier_.LeaveOut(
        {LeftOut::Kind::MessageStore, "the messages of \"" + identity.username + "\"", fault->clause});
  }
  copier_.Copy({.from = std::get<WinPath>(folder),
                .to = target,
                .pop3Uidl = pop3Uidl,
                .overwrite = overwrite,
                .done = " Backup Complete"});
}

void IdentityBackup::CopyAddressBook(const WinPath& target, OverwriteSetting overwrite) {
  const WinPath file = ReadAddressBookFile(store_);
  // Without an address book setting no file is missing.
  if (!file.Empty()) {
    const DiskPath source = CheckAddressBook(platform_.GetDrives(), file);
    if (source.IsUsable()) {
      platform_.GetShell().BeginCopyStep();
      platform_.GetShell().CopyFile(
          {.source = source.Path(), .target = target.Join(source.Path().Name()), .noConfirm = overwrite});
    } else {
      store_.Failures().Add(source.Refusal().Sentence());
      copier_.LeaveOut({LeftOut::Kind::AddressBook, "the address book", source.Refusal().Clause()});
    }
  }
  copier_.Show("Adress Book Backup Complete");
}

void IdentityBackup::ExportIdentity(const IdentityInfo& identity, const WinPath& target) {
  store_.RegExport("HKEY_CURRENT_USER\\" + IdentityKey(identity.userId), target.Join(identity.username + ".reg"),
                   KeyForm::Plain);
  ShowExported("{USER_ID} Subkey Backup Complete");
}

void IdentityBackup::ExportSharedKeys(const WinPath& target) {
  for (const SharedExport& row : kSharedExports) {
    store_.RegExport(RowOf(row.item).key, target.Join(row.file), KeyForm::Quoted, OnFailure::TellUnlessMissing);
    ShowExported(row.status);
  }
}

/// Without an OS code no export was started.
void IdentityBackup::ShowExported(const char* status) {
  if (!store_.WhyNoExports()) copier_.Show(status);
}

std::vector<std::string> IdentityBackup::Notes() {
  std::vector<std::string> notes = copier_.Notes();
  if (store_.WhyNoExports()) notes.emplace_back("no registry keys exported");
  return notes;
}

void IdentityBackup::SaveSignatures(const std::string& userId) {
  RegistryItems(platform_, store_, folder_)
      .Export(RowOf(RegistryItem::Signatures), userId, WinPath(kSignaturesInBackup.On(store_.GetOsCode())),
              OnFailure::TellUnlessMissing);
}

}  // namespace quillbox
