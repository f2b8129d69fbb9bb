#include "backup/identity_backup.h"

#include "core/file_helpers.h"
#include "core/identity_catalogue.h"
#include "core/status_text.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kPop3Uidl = "Pop3uidl.dbx";

struct SharedExport {
  const char* key;
  const char* file;
  const char* status;
};
constexpr SharedExport kSharedExports[] = {
    {backup_keys::kAddressBook, "WAB.reg", "Address Book Subkey Backup Complete"},
    {backup_keys::kMachine, "HKLMOutlookExpress.reg", "HKLM Outlook Express Export Complete"},
    {backup_keys::kAccounts, "IAM.reg", "Internet Accounts Manager Subkey Backup Complete"},
};

}  // namespace

bool ShellFileCopy(Shell& shell, const WinPath& source, const WinPath& target, bool noConfirm) {
  return shell.CopyFile(source, target, noConfirm);
}

bool IsStoreFileToCopy(const std::string& name, Pop3Uidl pop3Uidl) {
  constexpr std::size_t kEnding = 4;
  if (name.size() < kEnding) return false;
  if (name.substr(0, name.size() - kEnding).find('.') != std::string::npos) return false;
  return pop3Uidl == Pop3Uidl::Copy || name != kPop3Uidl;
}

std::optional<WinPath> IdentityBackup::EnterIdentityFolder(const WinPath& backupFolder, const std::string& username) {
  const WinPath target = backupFolder.Join(username);
  const auto refuse = [&](const WinPath& folder, const std::string& reason) -> std::optional<WinPath> {
    platform_.GetDialogs().Show({.text = "The backup of \"" + username + "\" was not made: the folder \"" +
                                         folder.Text() + "\" cannot be used because " + reason + ".",
                                 .icon = MessageIcon::Exclamation});
    return std::nullopt;
  };
  const std::string fault = FileNameFault(username);
  if (!fault.empty()) return refuse(target, fault);
  try {
    folder_.Enter(backupFolder);
  } catch (const Error& error) {
    return refuse(backupFolder, error.Why());
  }
  FileSystem& files = platform_.GetFiles();
  if (!DirExists(files, username)) {
    const Status made = files.MakeDirectory(WinPath(username));
    if (made != Status::Success) return refuse(target, StatusReason(made));
  }
  const Status entered = files.SetCurrentDirectory(WinPath(username));
  if (entered != Status::Success) return refuse(target, StatusReason(entered));
  return files.CurrentDirectory();
}

bool IdentityBackup::CheckIdentitiesKey() {
  const Status status = store_.OpenKey(CurrentUser(kIdentitiesKey)).status;
  if (status == Status::Success) return true;
  store_.ShowRegistryReadError(status, " Identities");
  platform_.GetDialogs().Show({.text = "You will need to run Outlook Express at least one time."});
  return false;
}

void IdentityBackup::CopyStore(const std::string& userId, const WinPath& target, Pop3Uidl pop3Uidl,
                               OverwriteSetting overwrite) {
  const std::string folder = ReadStoreFolder(store_, platform_.GetFiles(), userId);
  if (!DirExists(platform_.GetFiles(), folder)) {
    platform_.GetDialogs().Show({.text = "The message store folder \"" + folder +
                                         "\" does not exist. None of its files can be copied; the rest of the backup "
                                         "goes on.",
                                 .icon = MessageIcon::Exclamation});
    return;
  }
  for (const std::string& name : FileList(platform_.GetFiles(), folder + "\\*.dbx")) {
    if (!IsStoreFileToCopy(name, pop3Uidl)) continue;
    Copy(WinPath(folder + "\\" + name), target.Join(name), overwrite);
    status_(name + " Backup Complete");
  }
}

void IdentityBackup::CopyAddressBook(const WinPath& target, OverwriteSetting overwrite) {
  const std::string file = store_.RegistryGetKeyValue(CurrentUser(kAddressBookKey), "").AsText();
  // Without an address book setting there is no file that could be missed.
  if (!file.empty()) Copy(WinPath(file), target.Join(WinPath(file).Name()), overwrite);
  status_("Adress Book Backup Complete");
}

void IdentityBackup::ExportIdentity(const std::string& userId, const std::string& username, const WinPath& target) {
  if (store_.GetOsCode() == OsCode::Unknown) return;
  store_.RegExport("HKEY_CURRENT_USER\\" + IdentityKey(userId), target.Join(username + ".reg").Text(), KeyForm::Plain);
  status_("{USER_ID} Subkey Backup Complete");
}

void IdentityBackup::ExportSharedKeys(const WinPath& target) {
  if (store_.GetOsCode() == OsCode::Unknown) return;
  for (const SharedExport& row : kSharedExports) {
    store_.RegExport(row.key, target.Join(row.file).Text());
    status_(row.status);
  }
}

void IdentityBackup::Copy(const WinPath& source, const WinPath& target, OverwriteSetting overwrite) {
  if (!ShellFileCopy(platform_.GetShell(), source, target, overwrite)) ++filesNotCopied_;
}

}  // namespace quillbox
