// SPDX-License-Identifier: GPL-3.0-or-later
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
  recorder_.Begin("Quick Backup");
  const IdentityInfo identity = Selected();
  IdentityBackup backup(session_.platform, session_.store, session_.backupFolder, ToStatus());
  const auto target = backup.EnterIdentityFolder(*folder, identity.username);
  if (!target || !backup.CheckIdentitiesKey()) return;
  {
    const PleaseWaitScope pleaseWait(cmdQuickBackup);
    backup.Save(identity, *target, kQuickBackup, session_.Overwrite());
    ShowCopies({}, NotesOf(backup));
    recorder_.Record().folder = *folder;
    recorder_.Record().leftOut = backup.GetLeftOut();
  }
  recorder_.End();
  session_.backupFolder.Enter(*folder);
  sb1.panels[0] = "Backup Complete";
}

void Form1::cmdbkupall_Click() {
  recorder_.Begin("Backup of All Identities");
  ReportFailure("The backup", [this] { BackUpAll(kBackupOfAll); });
  recorder_.End();
}

void Form1::bkAll_Click() {
  cmdbkupall_Click();
}

void Form1::cmdComplete_Click() {
  recorder_.Begin("Complete Backup");
  ReportFailure("The complete backup", [this] {
    const BusyScope busy(*this, cmdComplete);
    bkupallIdentities();
    bkupIAM();
    bkupAddBook();
    CopyAddressBook(CopyPart::OneOfSeveral);
    bkupcomplete();
  });
  recorder_.End();
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
    recorder_.Record().folder = *folder;
    IdentityBackup backup(session_.platform, session_.store, session_.backupFolder, ToStatus());
    const auto saved = backup.SaveAll(*folder, session_.Catalogue(), scope, session_.Overwrite());
    recorder_.Record().leftOut = backup.GetLeftOut();
    if (!saved) return ShowCopies({}, backup.Notes());
    ShowCopies(std::to_string(*saved) + " Identities Backed Up", *saved > 0 ? NotesOf(backup) : backup.Notes());
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
    recorder_.Record().endedEarly = Describe(error);
    session_.platform.GetLog().Write(what + " ended early: " + Describe(error));
    session_.platform.GetDialogs().Show(
        {.text = what + " ended early. What was done until then stays done.\n\n" + Describe(error),
         .icon = MessageIcon::Exclamation});
  }
}

StatusSink Form1::ToStatus() {
  return [this](const std::string& text) { sb1.panels[0] = text; };
}

std::vector<std::string> Form1::NotesOf(IdentityBackup& backup) {
  std::vector<std::string> notes = backup.Notes();
  if (session_.platform.GetShell().FinishCopies().empty()) notes.insert(notes.begin(), "no files copied");
  return notes;
}

void Form1::ShowCopies(const std::string& first, std::vector<std::string> notes) {
  sb1.panels[1] = CopyTally(session_.platform.GetShell().FinishCopies(), std::move(notes)).After(first);
}

}  // namespace quillbox
