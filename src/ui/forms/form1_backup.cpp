// The main window's backup folder and quick backup.
#include "backup/identity_backup.h"
#include "ui/forms/form1.h"
#include "ui/forms/windows.h"

namespace quillbox {
namespace {

/// Shows "Please Wait" on a button until it goes out of scope.
class PleaseWaitScope {
 public:
  explicit PleaseWaitScope(Button& button) : button_(button), caption_(button.caption) {
    button_.caption = "Please Wait";
  }
  ~PleaseWaitScope() { button_.caption = caption_; }
  PleaseWaitScope(const PleaseWaitScope&) = delete;
  PleaseWaitScope& operator=(const PleaseWaitScope&) = delete;

 private:
  Button& button_;
  std::string caption_;
};

}  // namespace

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
  const HourglassScope hourglass(*this);
  sb1.panels[0] = "";
  const std::string userId = Label6.caption;
  const std::string username = Label7.caption;
  IdentityBackup backup(program_.platform, program_.store, program_.backupFolder,
                        [this](const std::string& text) { sb1.panels[0] = text; });
  const auto target = backup.EnterIdentityFolder(*folder, username);
  if (!target || !backup.CheckIdentitiesKey()) return;
  {
    const PleaseWaitScope pleaseWait(cmdQuickBackup);
    program_.overwrite = chkOverwrite.checked;
    backup.CopyStore(userId, *target, Pop3Uidl::Skip, program_.overwrite);
    backup.CopyAddressBook(*target, program_.overwrite);
    backup.ExportIdentity(userId, username, *target);
    backup.ExportSharedKeys(*target);
  }
  program_.backupFolder.Enter(*folder);
  sb1.panels[0] = "Backup Complete";
  if (backup.FilesNotCopied() > 0) sb1.panels[1] = "Files not copied: " + std::to_string(backup.FilesNotCopied());
}

}  // namespace quillbox
