// The main window's backup folder, the quick backup, and the backups of all identities.
#include "backup/identity_backup.h"
#include "backup/registry_items.h"
#include "core/copy_tally.h"
#include "text/error.h"
#include "ui/forms/main_window.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

void Form1::CheckBackupFolder(bool withMessage) {
  const BackupFolderCheck check = program_.backupFolder.Check(withMessage);
  if (!check.keyOpened) return;
  lblbkuppth.caption = check.shown;
  if (!check.isSet) {
    lblbkuppth.colour = Colour::Red;
    return;
  }
  windows_.form3.EnsureLoaded();
  windows_.form3.txtbkPth.text = check.shown;
}

void Form1::chkbox() {
  if (const auto overwrite = program_.backupFolder.LoadOverwrite()) chkOverwrite.checked = *overwrite;
}

void Form1::chkOverwrite_Click() {
  program_.backupFolder.StoreOverwrite(chkOverwrite.checked);
}

void Form1::cmdQuickBackup_Click() {
  sb1.panels[1] = "";
  const auto folder = program_.backupFolder.Guard(FolderMessage::WithoutEnding);
  if (!folder) return;
  if (inpth1.text == kEmptyIdentityMarker) {
    program_.platform.GetDialogs().Show({.text = std::string(kEmptyIdentityMarker) + " Please select another Identity.",
                                         .icon = MessageIcon::Exclamation});
    return;
  }
  const CommandFailures::Scope failures(program_.store.Failures());
  const HourglassScope hourglass(*this);
  sb1.panels[0] = "";
  const std::string userId = Label6.caption;
  const std::string username = Label7.caption;
  IdentityBackup backup(program_.platform, program_.store, program_.backupFolder, ToStatus());
  const auto target = backup.EnterIdentityFolder(*folder, username);
  if (!target || !backup.CheckIdentitiesKey()) return;
  {
    const PleaseWaitScope pleaseWait(cmdQuickBackup);
    program_.overwrite = chkOverwrite.checked;
    backup.Save(userId, username, *target, kQuickBackup, program_.overwrite);
    ShowCopies({}, backup.MissingStores());
  }
  program_.backupFolder.Enter(*folder);
  sb1.panels[0] = "Backup Complete";
}

void Form1::cmdbkupall_Click() {
  TellFailure("The backup", [this] { BackUpAll(kBackupOfAll); });
}

void Form1::bkAll_Click() {
  cmdbkupall_Click();
}

void Form1::cmdComplete_Click() {
  TellFailure("The complete backup", [this] {
    bkupallIdentities();
    bkupIAM();
    bkupAddBook();
    CopyAddressBook(CopyPart::OneOfSeveral);
    bkupcomplete();
  });
}

void Form1::bkupcomplete() {
  BackUpAll(kCompleteBackup);
}

void Form1::BackUpAll(const BackupScope& scope) {
  sb1.panels[1] = "";
  const auto folder = program_.backupFolder.Guard(FolderMessage::WithFullStop);
  if (!folder) return;
  program_.overwrite = chkOverwrite.checked;
  {
    const HourglassScope hourglass(*this);
    const PleaseWaitScope pleaseWait(cmdbkupall);
    sb1.panels[0] = "";
    IdentityBackup backup(program_.platform, program_.store, program_.backupFolder, ToStatus());
    const auto saved = backup.SaveAll(*folder, program_.catalogue, scope, program_.overwrite);
    if (!saved) return ShowCopies();
    ShowCopies(std::to_string(*saved) + " Identities Backed Up", backup.MissingStores());
  }
  program_.backupFolder.Enter(*folder);
  sb1.panels[0] = "Backup Complete";
}

void Form1::TellFailure(const std::string& what, const Handler& command) {
  const CommandFailures::Scope failures(program_.store.Failures());
  try {
    command();
  } catch (const Error& error) {
    ShowCopies();
    program_.platform.GetLog().Write(what + " ended early: " + Describe(error));
    program_.platform.GetDialogs().Show(
        {.text = what + " ended early. What was done until then stays done.\n\n" + Describe(error),
         .icon = MessageIcon::Exclamation});
  }
}

StatusSink Form1::ToStatus() {
  return [this](const std::string& text) { sb1.panels[0] = text; };
}

void Form1::ShowCopies(const std::string& first, std::size_t missingStores) {
  CopyTally tally(program_.platform.GetShell().FinishCopies());
  tally.AddMissingStores(missingStores);
  sb1.panels[1] = tally.After(first);
}

}  // namespace quillbox
