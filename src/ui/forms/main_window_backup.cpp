// The main window's backup folder, the quick backup, and the backups of all identities.
#include "backup/identity_backup.h"
#include "backup/registry_items.h"
#include "core/copy_tally.h"
#include "text/error.h"
#include "ui/forms/main_window.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

void Form1::CheckBackupFolder(bool withMessage) {
  const BackupFolderCheck check = session_.CheckBackupFolder(withMessage);
  if (check.keyOpened && !check.folder) lblbkuppth.colour = Colour::Red;
}

void Form1::chkbox() {
  session_.LoadOverwrite();
}

void Form1::chkOverwrite_Click() {
  session_.SetOverwrite(chkOverwrite.checked);
}

void Form1::cmdQuickBackup_Click() {
  sb1.panels[1] = "";
  const auto folder = session_.backupFolder.Guard(FolderMessage::WithoutEnding);
  if (!folder || !HasSelection()) return;
  if (RefusesEmptyIdentity(std::string(kEmptyIdentityMarker) + " Please select another Identity.")) return;
  const CommandFailures::Scope failures(session_.store.Failures());
  const HourglassScope hourglass(*this);
  sb1.panels[0] = "";
  const IdentityInfo identity = Selected();
  IdentityBackup backup(session_.platform, session_.store, session_.backupFolder, ToStatus());
  const auto target = backup.EnterIdentityFolder(*folder, identity.username);
  if (!target || !backup.CheckIdentitiesKey()) return;
  {
    const PleaseWaitScope pleaseWait(cmdQuickBackup);
    backup.Save(identity, *target, kQuickBackup, session_.Overwrite());
    ShowCopies({}, backup.Notes());
  }
  session_.backupFolder.Enter(*folder);
  sb1.panels[0] = "Backup Complete";
}

void Form1::cmdbkupall_Click() {
  ReportFailure("The backup", [this] { BackUpAll(kBackupOfAll); });
}

void Form1::bkAll_Click() {
  cmdbkupall_Click();
}

void Form1::cmdComplete_Click() {
  ReportFailure("The complete backup", [this] {
    const BusyScope busy(*this, cmdComplete);
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
  const auto folder = session_.backupFolder.Guard(FolderMessage::WithFullStop);
  if (!folder) return;
  {
    const BusyScope busy(*this, cmdbkupall);
    sb1.panels[0] = "";
    IdentityBackup backup(session_.platform, session_.store, session_.backupFolder, ToStatus());
    const auto saved = backup.SaveAll(*folder, session_.Catalogue(), scope, session_.Overwrite());
    if (!saved) return ShowCopies({}, backup.Notes());
    ShowCopies(std::to_string(*saved) + " Identities Backed Up", backup.Notes());
  }
  session_.backupFolder.Enter(*folder);
  sb1.panels[0] = "Backup Complete";
}

void Form1::ReportFailure(const std::string& what, const Handler& command) {
  const CommandFailures::Scope failures(session_.store.Failures());
  try {
    command();
  } catch (const Error& error) {
    ShowCopies();
    session_.platform.GetLog().Write(what + " ended early: " + Describe(error));
    session_.platform.GetDialogs().Show(
        {.text = what + " ended early. What was done until then stays done.\n\n" + Describe(error),
         .icon = MessageIcon::Exclamation});
  }
}

StatusSink Form1::ToStatus() {
  return [this](const std::string& text) { sb1.panels[0] = text; };
}

void Form1::ShowCopies(const std::string& first, std::vector<std::string> notes) {
  sb1.panels[1] = CopyTally(session_.platform.GetShell().FinishCopies(), std::move(notes)).After(first);
}

}  // namespace quillbox
