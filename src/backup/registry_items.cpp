// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/registry_items.h"

#include <algorithm>

#include "core/identity_catalogue.h"

namespace quillbox {
namespace {

constexpr const char* kFilter = "Registration Files (*.reg) | *.reg";
constexpr std::string_view kIdentityMark = "{IDENTITY}";
constexpr std::string_view kSettingsMark = "{SETTINGS}";

constexpr FileNames kSignatureFiles{"Signatures.reg", "SignaturesWin2k.reg", "SignaturesXP.reg"};

constexpr RegistryItemRow kRows[] = {
    {.item = RegistryItem::Identity,
     .key = "{IDENTITY}",
     .keyForm = KeyForm::PlainAfterOneBlank,
     .exportFile = {"CurrentIdentity.reg"},
     .restoreFile = {""},
     .exportDone = "Current Identity Export Complete",
     .restoreDone = "Current Identity Import Complete",
     .bringsIdentities = true},
    {.item = RegistryItem::AllIdentities,
     .key = "HKEY_CURRENT_USER\\Identities\\",
     .exportFile = {"AllIdentities.reg"},
     .restoreFile = {""},
     .exportDone = "All Identities Export Complete",
     .restoreDone = "All Identities Import Complete",
     .bringsIdentities = true},
    {.item = RegistryItem::AddressBook,
     .key = "HKEY_CURRENT_USER\\Software\\Microsoft\\WAB",
     .exportFile = {"AddressBook.reg"},
     .restoreFile = {"AddressBook.reg"},
     .exportDone = "Address Book Export Complete",
     .restoreDone = "Address Book Import Complete"},
    {.item = RegistryItem::BlockedSenders,
     .key = "{SETTINGS}\\Block Senders",
     .exportFile = {"BlockedSenders.reg"},
     .restoreFile = {"BlockedSenders.reg"},
     .missing = "There is not a Block Senders subkey to save for this Identity.",
     .exportDone = "Blocked Senders Export Complete",
     .restoreDone = "Blocked Senders Import Complete"},
    {.item = RegistryItem::DialogSuppressions,
     .key = "{SETTINGS}\\Dont Show Dialogs",
     .exportFile = {"Dont Show Dialogs.reg"},
     .restoreFile = {"DontShowDialog.reg"},
     .missing = "There is not a Dont Show Dialogs subkey to save for this Identity.",
     .exportDone = "Dont Show Dialogs Export Complete",
     .restoreDone = "Dont Show Dialogs Import Complete"},
    {.item = RegistryItem::Machine,
     .key = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Outlook Express",
     .exportFile = {"HKLMOutlookExpress.reg"},
     .restoreFile = {"HKLMOutlookExpress.reg"},
     .noFolder = FolderMessage::WithBlank,
     .exportDone = "HKLM Outlook Express Export Complete",
     .restoreDone = "HKLM Outlook Express Import Complete"},
    {.item = RegistryItem::MessageRules,
     .key = "{SETTINGS}\\Rules",
     .exportFile = {"MessageRules.reg"},
     .restoreFile = {"MessageRules.reg"},
     .missing = "There is not a Rules subkey to save for this Identity.",
     .exportDone = "Message Rules Export Complete",
     .restoreDone = "Message Rules Import Complete"},
    {.item = RegistryItem::Accounts,
     .key = "HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Internet Account Manager\\Accounts",
     .exportFile = {"IAM.reg"},
     .restoreFile = {"IAM.reg"},
     .noFolder = FolderMessage::WithBlank,
     .exportDone = "Internet Accounts Manager Subkey Backup Complete",
     .restoreDone = "Internet Accounts Manager Import Complete",
     .isDoneOnlyWhenStarted = true,
     .entersFolder = false},
    {.item = RegistryItem::Signatures,
     .key = "{SETTINGS}\\Signatures",
     .exportFile = kSignatureFiles,
     .restoreFile = kSignatureFiles,
     .missing = "There is not a signatures subkey to save for this Identity.",
     .exportDone = "Signatures Export Complete",
     .restoreDone = "Signatures Import Complete",
     .isHiveOnNewer = true},
};

std::string KeyName(const RegistryItemRow& row, const std::string& userId) {
  std::string key = row.key;
  const std::string user = std::string(RootName(RegistryRoot::CurrentUser)) + "\\";
  if (key.starts_with(kIdentityMark)) return user + IdentityKey(userId) + key.substr(kIdentityMark.size());
  if (key.starts_with(kSettingsMark)) return user + IdentitySettingsKey(userId) + key.substr(kSettingsMark.size());
  return key;
}

RegistryPath KeyPath(const RegistryItemRow& row, const std::string& userId) {
  return ParseRegistryPath(KeyName(row, userId)).value();
}

}  // namespace

const char* FileNames::On(OsCode code) const {
  if (code == OsCode::W2K && on2k) return on2k;
  if (code == OsCode::XP && onXp) return onXp;
  return usual;
}

bool RegistryItemRow::IsOfIdentity() const {
  const std::string_view name = key;
  return name.starts_with(kIdentityMark) || name.starts_with(kSettingsMark);
}

const RegistryItemRow& RowOf(RegistryItem item) {
  return *std::find_if(std::begin(kRows), std::end(kRows),
                       [item](const RegistryItemRow& row) { return row.item == item; });
}

bool RegistryItems::MayExport(const RegistryItemRow& row, const std::string& userId) {
  if (row.missing && store_.OpenKey(KeyPath(row, userId)).status == Status::FileNotFound) {
    platform_.GetDialogs().Show({.text = row.missing, .icon = MessageIcon::Exclamation});
    return false;
  }
  return folder_.Guard(row.noFolder).has_value();
}

std::optional<WinPath> RegistryItems::AskExportFile(const RegistryItemRow& row, const WinPath& folder) {
  FileDialog dialog = DialogFor(folder, row.exportFile.On(store_.GetOsCode()));
  dialog.askOverwrite = true;
  return platform_.GetDialogs().SaveFile(dialog);
}

std::optional<WinPath> RegistryItems::AskRestoreFile(const RegistryItemRow& row, const WinPath& folder) {
  return platform_.GetDialogs().OpenFile(DialogFor(folder, row.restoreFile.On(store_.GetOsCode())));
}

FileDialog RegistryItems::DialogFor(const WinPath& folder, const char* name) const {
  return {.title = {}, .folder = folder, .name = name, .filter = kFilter, .askOverwrite = false};
}

bool RegistryItems::IsHive(const RegistryItemRow& row) const {
  const OsCode code = store_.GetOsCode();
  return row.isHiveOnNewer && (code == OsCode::W2K || code == OsCode::XP);
}

bool RegistryItems::Export(const RegistryItemRow& row, const std::string& userId, const WinPath& file,
                           OnFailure onFailure) {
  if (IsHive(row)) {
    store_.SaveKey(KeyPath(row, userId), file, onFailure);
  } else {
    store_.RegExport(KeyName(row, userId), file, row.keyForm, onFailure);
  }
  return !row.isDoneOnlyWhenStarted || store_.GetOsCode() != OsCode::Unknown;
}

void RegistryItems::Restore(const RegistryItemRow& row, const std::string& userId, const WinPath& file) {
  if (IsHive(row)) return store_.RestoreKey(KeyPath(row, userId), file);
  const std::set<std::string> before = UserIds();
  Merge(file, OnFailure::Tell);
  if (!row.bringsIdentities) TellNewIdentities(before);
}

void RegistryItems::ExportSilently(RegistryItem item) {
  const RegistryItemRow& row = RowOf(item);
  const auto folder = folder_.Guard(row.noFolder);
  if (!folder) return;
  if (row.entersFolder) folder_.Enter(*folder);
  Export(row, {}, WinPath(row.exportFile.On(store_.GetOsCode())));
}

bool RegistryItems::RestoreSilently(RegistryItem item) {
  const auto folder = folder_.Get();
  const WinPath file = WinPath(TextOrNone(folder)).Join(RowOf(item).exportFile.On(store_.GetOsCode()));
  return Merge(file, folder ? OnFailure::Tell : OnFailure::LogOnly);
}

// A file of all identities carries the backup folder that was set when it was made, perhaps on another disk.
bool RegistryItems::Merge(const WinPath& file, OnFailure onFailure) {
  bool merged = false;
  folder_.KeepOver([&] { merged = store_.RegMerge(file, onFailure); });
  return merged;
}

std::set<std::string> RegistryItems::UserIds() {
  const OpenResult identities = store_.OpenKey(CurrentUser(kIdentitiesKey), Access::Read);
  if (identities.status != Status::Success) return {};
  const std::vector<std::string> names = store_.EnumSubKeys(identities.key);
  return {names.begin(), names.end()};
}

void RegistryItems::TellNewIdentities(const std::set<std::string>& before) {
  std::string added;
  for (const std::string& userId : UserIds()) {
    if (before.count(userId) == 0) added += "\n" + userId;
  }
  if (added.empty()) return;
  platform_.GetDialogs().Show(
      {.text = "The file is of an identity that this registry did not have:\n" + added +
               "\n\nIt was merged under that {USER_ID} and changed none of the identities that were there. To have it "
               "in one of them, replace the {USER_ID} in the file and merge it again.",
       .icon = MessageIcon::Exclamation});
}

}  // namespace quillbox
