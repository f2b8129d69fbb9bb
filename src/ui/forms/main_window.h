// SPDX-License-Identifier: GPL-3.0-or-later
// The main window: the identities in three linked pickers, what belongs to the selected one, and the buttons and menus
// from which every command is reached.
#pragma once

#include <string>
#include <vector>

#include "backup/identity_backup.h"
#include "backup/registry_items.h"
#include "core/disk_path.h"
#include "reports/report_template.h"
#include "session/backup_recorder.h"
#include "session/session.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class Form1 : public Form {
 public:
  explicit Form1(ProgramWindows& windows);

  // In tab order.
  Label Label12;
  ComboBox cmbUserNames;
  Label lblSelUserID;
  ComboBox cmbUserIDs;
  Label Label4;
  ComboBox inpth1;
  Label lblbkip;
  Label lblbkuppth;
  Label Label1;
  Label Label2;
  CheckBox chkOverwrite;
  Button cmdQuickBackup;
  Button cmdbkupall;
  Button cmdComplete;
  Button cmdRestore;
  Button cmdShowAdditionalInfo;
  Button cmdExit;
  Label lblSystem;
  Frame Frame1;
  Label Label3;
  Label Label7;
  Label Label5;
  Label Label6;
  Label Label11;
  Label Label10;
  Label Label8;
  Label Label9;
  Label Path;
  TextBox Text1;
  Button cmdOpenFolder;
  Label lblWabloc;
  TextBox txtwabloc;
  Button cmdOpenWab;
  Label lblOERunning;
  Button cmdRefresh;
  Button cmdSearch;
  Label Label13;
  StatusBar sb1;

  /// Runs the start-up sequence as a command.
  void Open();
  /// The start-up sequence; shows the window.
  void Form_Load();
  /// The start-time load of the address book settings.
  void loadup();
  /// Opens a folder in the file manager.
  void OpenExplorer(const WinPath& folder);
  /// The same for a folder that the disk's registry names; a refused one is reported.
  void OpenExplorer(const DiskPath& folder);
  /// Opens a folder with the file `selected` selected.
  void OpenExplorer2(const WinPath& folder, const std::string& selected);

  LayoutNode Layout() override;
  void close() override;

 private:
  struct MenuRow;
  static const MenuRow kMenu[];

  void BuildMenu();
  void WatchSession();
  void ClearStatus();
  RegistryItems Items();
  void ExportItem(RegistryItem item);
  void RestoreItem(RegistryItem item);
  void ExportSilently(RegistryItem item);
  void RestoreSilently(RegistryItem item);
  void BackUpAll(const BackupScope& scope);
  /// Runs a command of several steps and says in one message what went wrong with registry files, and what ended it
  /// early. `what` begins a sentence.
  void ReportFailure(const std::string& what, const Handler& command);
  StatusSink ToStatus();
  /// Waits for the running command's copies and says in the second panel, after `first`, which did not go as asked, and
  /// `notes` on what was not tried.
  void ShowCopies(const std::string& first = {}, std::vector<std::string> notes = {});
  /// What the backup did not try, and whether it copied nothing at all.
  std::vector<std::string> NotesOf(IdentityBackup& backup);
  void CopyAddressBook(CopyPart part);
  void RestoreAddressBook(CopyPart part);
  void ShowAddressBookCopied();
  void CheckBackupFolder(bool withMessage);
  void OpenSearch();
  void SaveReport(const char* name, const char* filter, ReportFormat format, const char* outcome);
  void chkbox();
  void ShowCatalogue();
  void ShowSelection();
  void ShowDefault();
  void ShowUsernames();
  void ShowRunning();
  /// The selected identity; an empty one when nothing is selected.
  IdentityInfo Selected() const { return session_.Selected().value_or(IdentityInfo()); }
  /// False after a message that no identity is selected.
  bool HasSelection();
  /// True, after `message`, when the selected identity has no message store.
  bool RefusesEmptyIdentity(const std::string& message);

  void cmbUserNames_Click();
  void cmbUserIDs_Click();
  void inpth1_Click();
  void chkOverwrite_Click();
  void cmdQuickBackup_Click();
  void cmdShowAdditionalInfo_Click();
  void cmdOpenFolder_Click();
  void cmdOpenWab_Click();
  void cmdRefresh_Click();
  void cmdSearch_Click();
  void Search_Click();
  void dbxFiles_Click();
  void openDisk_Click();
  void cmdExit_Click();
  void crtbkfldr2_Click();
  void brbkfldr_Click();
  void opnbkfldr_Click();
  void qbk_Click();
  void cmdbkupall_Click();
  void bkAll_Click();
  void cmdComplete_Click();
  void bkupallIdentities() { ExportSilently(RegistryItem::AllIdentities); }
  void bkupIAM() { ExportSilently(RegistryItem::Accounts); }
  void bkupAddBook() { ExportSilently(RegistryItem::AddressBook); }
  void bkupcomplete();
  void cmdRestore_Click();
  void resbkupAllIdent();
  void resbkupIAM() { RestoreSilently(RegistryItem::Accounts); }
  void resbkupAddBook() { RestoreSilently(RegistryItem::AddressBook); }
  void resComplete();
  void resDBX_Click();
  void addBookFile_Click();
  void resWAB_Click();
  void Identity_Click() { ExportItem(RegistryItem::Identity); }
  void allIdentities_Click() { ExportItem(RegistryItem::AllIdentities); }
  void regAddBook_Click() { ExportItem(RegistryItem::AddressBook); }
  void blkSend_Click() { ExportItem(RegistryItem::BlockedSenders); }
  void dntshowdlg_Click() { ExportItem(RegistryItem::DialogSuppressions); }
  void expLMOE_Click() { ExportItem(RegistryItem::Machine); }
  void msgRules_Click() { ExportItem(RegistryItem::MessageRules); }
  void regIAM_Click() { ExportItem(RegistryItem::Accounts); }
  void sigs_Click() { ExportItem(RegistryItem::Signatures); }
  void resCurSelIdent_Click() { RestoreItem(RegistryItem::Identity); }
  void resAllIdent_Click() { RestoreItem(RegistryItem::AllIdentities); }
  void resAddBook_Click() { RestoreItem(RegistryItem::AddressBook); }
  void resblkswnd_Click() { RestoreItem(RegistryItem::BlockedSenders); }
  void resdontshow_Click() { RestoreItem(RegistryItem::DialogSuppressions); }
  void resHKLMOE_Click() { RestoreItem(RegistryItem::Machine); }
  void resIAM_Click() { RestoreItem(RegistryItem::Accounts); }
  void resMsgRules_Click() { RestoreItem(RegistryItem::MessageRules); }
  void resSigs_Click() { RestoreItem(RegistryItem::Signatures); }
  void manual_Click();
  void mnuURL_Click();
  void SaveAs_Click();
  void SaveAsHTML_Click();
  void chAddBk_Click();
  void MoveWAB_Click();
  void svMailMsgRules_Click();
  void svNewsRules_Click();
  void regEntry_Click();
  void msc_Click();
  void lastBackup_Click();
  void checkBackup_Click();
  void exportMail_Click();
  void exportContacts_Click();
  void crtnewID_Click();
  void CloneIdentity_Click();
  void remIdent_Click();
  void chgStartIdent_Click();
  void chgIdentName_Click();
  void repUSERID_Click();
  void usrIDString_Click();
  void Notyet_Click() {}

  Session& session_;
  ProgramWindows& windows_;
  BackupRecorder recorder_{session_};
};

}  // namespace quillbox
