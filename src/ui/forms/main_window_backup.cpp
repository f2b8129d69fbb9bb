// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's backup folder, the quick backup, and the backups of all identities.
#include <utility>

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
  BeginRecord("Quick Backup");
  const IdentityInfo identity = Selected();
  IdentityBackup backup(session_.platform, session_.store, session_.backupFolder, ToStatus());
  const auto target = backup.EnterIdentityFolder(*folder, identity.username);
  if (!target || !backup.CheckIdentitiesKey()) return;
  {
    const PleaseWaitScope pleaseWait(cmdQuickBackup);
    backup.Save(identity, *target, kQuickBackup, session_.Overwrite());
    ShowCopies({}, NotesOf(backup));
    record_.folder = *folder;
    record_.leftOut = backup.GetLeftOut();
  }
  EndRecord();
  session_.backupFolder.Enter(*folder);
  sb1.panels[0] = "Backup Complete";
}

void Form1::cmdbkupall_Click() {
  BeginRecord("Backup of All Identities");
  ReportFailure("The backup", [this] { BackUpAll(kBackupOfAll); });
  EndRecord();
}

void Form1::bkAll_Click() {
  cmdbkupall_Click();
}

void Form1::cmdComplete_Click() {
  BeginRecord("Complete Backup");
  ReportFailure("The complete backup", [this] {
    const BusyScope busy(*this, cmdComplete);
    bkupallIdentities();
    bkupIAM();
    bkupAddBook();
    CopyAddressBook(CopyPart::OneOfSeveral);
    bkupcomplete();
  });
  EndRecord();
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
    record_.folder = *folder;
    IdentityBackup backup(session_.platform, session_.store, session_.backupFolder, ToStatus());
    const auto saved = backup.SaveAll(*folder, session_.Catalogue(), scope, session_.Overwrite());
    record_.leftOut = backup.GetLeftOut();
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
    record_.endedEarly = Describe(error);
    session_.platform.GetLog().Write(what + " ended early: " + Describe(error));
    session_.platform.GetDialogs().Show(
        {.text = what + " ended early. What was done until then stays done.\n\n" + Describe(error),
         .icon = MessageIcon::Exclamation});
  }
}

void Form1::BeginRecord(const char* command) {
  record_ = {
      .command = command, .ended = 0, .folder = {}, .copies = {}, .exports = {}, .leftOut = {}, .endedEarly = {}};
  session_.store.TakeExports();
}

/// Without a backup folder nothing was begun.
void Form1::EndRecord() {
  if (record_.folder.Empty()) return;
  record_.ended = session_.platform.GetClock().Now();
  record_.copies = session_.platform.GetShell().FinishCopies();
  record_.exports = session_.store.TakeExports();
  session_.KeepBackup(std::exchange(record_, {}));
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
