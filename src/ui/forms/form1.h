// The main window: the identities in three linked pickers, what belongs to the selected one, and the buttons and menus
// from which every command is reached.
#pragma once

#include <string>

#include "ui/form.h"
#include "ui/forms/program.h"

namespace quillbox {

class Windows;

class Form1 : public Form {
 public:
  Form1(Program& program, Windows& windows);

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
  /// (Re)loads the catalogue and refills the pickers and labels.
  void GetInputPaths();
  /// The start-time load of the address book settings.
  void loadup();
  /// Tests whether Outlook Express is running under any identity.
  void IsOERuuning();
  /// Opens a folder in the file manager.
  void OpenExplorer(const std::string& folder);

  LayoutNode Layout() override;
  void close() override;

 private:
  struct MenuRow;
  static const MenuRow kMenu[];
  struct Picker;

  void BuildMenu();
  void NotBuiltYet(const std::string& what);
  void ClearStatus();
  void CheckBackupFolder(bool withMessage);
  void chkbox();
  void ShowLoadedIdentities(const CatalogueLoad& load);
  void SelectWhere(const std::string& text, std::string IdentityInfo::*field, ComboBox& picker);

  void cmbUserNames_Click();
  void cmbUserIDs_Click();
  void inpth1_Click();
  void chkOverwrite_Click();
  void cmdQuickBackup_Click();
  void cmdShowAdditionalInfo_Click();
  void cmdOpenFolder_Click();
  void cmdOpenWab_Click();
  void cmdRefresh_Click();
  void cmdExit_Click();
  void crtbkfldr2_Click();
  void brbkfldr_Click();
  void opnbkfldr_Click();
  void qbk_Click();
  void mnuURL_Click();
  void Notyet_Click() {}

  Program& program_;
  Windows& windows_;
};

}  // namespace quillbox
