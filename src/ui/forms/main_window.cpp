// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/main_window.h"

#include "core/refusal_message.h"
#include "ui/forms/identity_picker.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr int kHeightWithoutInfo = 4215;  // twips
constexpr int kHeightWithInfo = 8790;
constexpr const char* kShowInfo = "Show Additional Identity Info";
constexpr const char* kHideInfo = "Hide Additional Identity Info";
constexpr const char* kRunning = "Outlook Express is currently running. Please close it if you intend to make changes.";
constexpr const char* kNotRunning = "Outlook Express is not currently running.";

}  // namespace

Form1::Form1(ProgramWindows& windows)
    : Form(windows.guard, "Form1", kProgramName),
      Label12(*this, "Label12", "Select Username :"),
      cmbUserNames(*this, "cmbUserNames", "Combo1", "Click to select Username"),
      lblSelUserID(*this, "lblSelUserID", "or    Select {USER_ID}: "),
      cmbUserIDs(*this, "cmbUserIDs", "Combo1", "Click to select {USER_ID}"),
      Label4(*this, "Label4", "or   Select Path:"),
      inpth1(*this, "inpth1", "", "Click here to select a different Identity if available."),
      lblbkip(*this, "lblbkip", "Backup Folder"),
      lblbkuppth(*this, "lblbkuppth", "", "Path to folder used for backup."),
      Label1(*this, "Label1", "Number Of Identities:"),
      Label2(*this, "Label2", "", "Total number of Identities in Registry."),
      chkOverwrite(*this, "chkOverwrite", "", "Check here to overwrite backed up files in Quickbackup"),
      cmdQuickBackup(*this, "cmdQuickBackup", "QuickBackup --- Backup The Selected Identity Now",
                     "This wil backup the Identities DBX files, Address Book, Internat Account Manager, Outlook "
                     "Express  and {USER_ID} Subkeys"),
      cmdbkupall(*this, "cmdbkupall", "Backup All Identities Now",
                 "This will backup all accounts that contain data to be saved such as DBX files. If there are none, no "
                 "backup will be made to that account."),
      cmdComplete(*this, "cmdComplete", "Complete Backup "),
      cmdRestore(*this, "cmdRestore", "Complete Restore"),
      cmdShowAdditionalInfo(*this, "cmdShowAdditionalInfo", kShowInfo,
                            "Click to show additional information about Identities and Address Book location."),
      cmdExit(*this, "cmdExit", "&Exit", "Exit the program."),
      lblSystem(*this, "lblSystem", windows.session.platform.SystemDescription(), "The disk that is open."),
      Frame1(*this, "Frame1", "Additional Identity Information"),
      Label3(*this, "Label3", "Curent Identity Username: "),
      Label7(*this, "Label7", "Username", "Current selected Identity Username"),
      Label5(*this, "Label5", "Current USER ID"),
      Label6(*this, "Label6", "", "Current selected {USER_ID} of select Identity"),
      Label11(*this, "Label11", "Default Identity Username: "),
      Label10(*this, "Label10", "", "Default Identity Username"),
      Label8(*this, "Label8", "Default USER ID: "),
      Label9(*this, "Label9", "", "Default Identity's (USER_ID}"),
      Path(*this, "Path", "Pathlist to Currently Selected DBX Files:"),
      Text1(*this, "Text1", "", "Tab to this line and CTRL C to Copy"),
      cmdOpenFolder(*this, "cmdOpenFolder", "Open Current Message Store Folder",
                    "Open the current message store folder"),
      lblWabloc(*this, "lblWabloc", "Windows Address Book (wab ) Location: "),
      txtwabloc(*this, "txtwabloc", "", "Tab to this line and CTRL C to Copy"),
      cmdOpenWab(*this, "cmdOpenWab", "Open Address Book Folder", "Open the Address Book folder"),
      lblOERunning(*this, "lblOERunning"),
      cmdRefresh(*this, "cmdRefresh", "OE Running?", "Click this button to test if OE is running still."),
      cmdSearch(*this, "cmdSearch", "Search", "Click to search for OE files."),
      Label13(*this, "Label13", "Label13"),
      sb1(*this, "sb1", 2),
      session_(windows.session),
      windows_(windows) {
  heightTwips = kHeightWithoutInfo;
  Frame1.visible = false;
  Text1.readOnly = true;
  txtwabloc.readOnly = true;
  lblSystem.wraps = true;
  BuildMenu();
  WatchSession();
  cmbUserNames.onClick = [this] { cmbUserNames_Click(); };
  cmbUserIDs.onClick = [this] { cmbUserIDs_Click(); };
  inpth1.onClick = [this] { inpth1_Click(); };
  chkOverwrite.onClick = [this] { chkOverwrite_Click(); };
  cmdQuickBackup.onClick = [this] { cmdQuickBackup_Click(); };
  cmdShowAdditionalInfo.onClick = [this] { cmdShowAdditionalInfo_Click(); };
  cmdOpenFolder.onClick = [this] { cmdOpenFolder_Click(); };
  cmdOpenWab.onClick = [this] { cmdOpenWab_Click(); };
  cmdRefresh.onClick = [this] { cmdRefresh_Click(); };
  cmdExit.onClick = [this] { cmdExit_Click(); };
  cmdbkupall.onClick = [this] { cmdbkupall_Click(); };
  cmdComplete.onClick = [this] { cmdComplete_Click(); };
  cmdRestore.onClick = [this] { cmdRestore_Click(); };
  cmdSearch.onClick = [this] { cmdSearch_Click(); };
}

LayoutNode Form1::Layout() {
  return Column({
      Grid(3, {0, 1, 2},
           {Item(Label12), Item(lblSelUserID), Item(Label4), Item(cmbUserNames), Item(cmbUserIDs), Item(inpth1)}),
      Row({Item(lblbkip), Item(lblbkuppth, 1), Item(Label1), Item(Label2)}),
      Row({Item(chkOverwrite), Item(cmdQuickBackup, 1), Item(cmdbkupall, 1)}),
      Row({Item(cmdComplete, 1), Item(cmdRestore, 1), Item(cmdShowAdditionalInfo, 1), Item(cmdExit, 1)}),
      Item(lblSystem),
      Group(Frame1, Column({
                        Grid(4, {1, 3},
                             {Item(Label3), Item(Label7), Item(Label5), Item(Label6), Item(Label11), Item(Label10),
                              Item(Label8), Item(Label9)}),
                        Item(Path),
                        Row({Item(Text1, 1), Item(cmdOpenFolder)}),
                        Item(lblWabloc),
                        Row({Item(txtwabloc, 1), Item(cmdOpenWab)}),
                        Row({Item(lblOERunning, 1), Item(cmdRefresh)}),
                        Row({Item(cmdSearch), Item(Label13, 1)}),
                    })),
      Space(),
      Item(sb1),
  });
}

void Form1::Open() {
  RunHandler("Form_Load", [this] { Form_Load(); });
}

void Form1::Form_Load() {
  sb1.panels[1] = "";
  windows_.form2.FillFileTypes();
  Frame1.visible = false;
  heightTwips = kHeightWithoutInfo;
  sb1.panels[0] = "";
  cmbUserIDs.Clear();
  CheckBackupFolder(true);
  windows_.form2.ShowNoSearches();
  session_.GetInputPaths();
  Show();
  windows_.form2.Load();
  session_.IsOERuuning();
  loadup();
  chkbox();
  if (const auto why = session_.store.WhyNoExports()) {
    const std::string text =
        "Registry backups are switched off because " + *why + ". Files are backed up all the same.";
    session_.platform.GetLog().Write(text);
    session_.platform.GetDialogs().Show({.text = text, .icon = MessageIcon::Exclamation});
  }
}

void Form1::WatchSession() {
  session_.catalogueLoaded.Connect([this] { ShowCatalogue(); });
  session_.selectionChanged.Connect([this] { ShowSelection(); });
  session_.usernamesChanged.Connect([this] { ShowUsernames(); });
  session_.runningTested.Connect([this] { ShowRunning(); });
  session_.overwriteChanged.Connect([this] { chkOverwrite.checked = session_.Overwrite(); });
  session_.backupFolderChanged.Connect([this] { lblbkuppth.caption = TextOrNone(session_.ShownBackupFolder()); });
  session_.addressBookChanged.Connect([this] { txtwabloc.text = session_.Catalogue().addressBookFile.Text(); });
}

void Form1::ShowCatalogue() {
  // A disk may turn out to be write-protected while it is worked on.
  lblSystem.caption = session_.platform.SystemDescription();
  cmbUserNames.Clear();
  inpth1.Clear();
  const IdentityCatalogue& catalogue = session_.Catalogue();
  ListUserIds(cmbUserIDs, catalogue);
  cmbUserNames.items = Usernames(catalogue);
  const bool isComplete = catalogue.end.kind == LoadEnd::Kind::Complete;
  if (isComplete) inpth1.items = StoreFolders(catalogue);
  Label2.caption = std::to_string(catalogue.identities.size());
  ShowDefault();
  ShowSelection();
  if (!isComplete) return;
  Text1.SelectAll();
  txtwabloc.text = catalogue.addressBookFile.Text();
  txtwabloc.SelectAll();
}

void Form1::ShowSelection() {
  const IdentityInfo identity = Selected();
  const std::string folder = session_.Selected() ? identity.FolderText() : std::string();
  Label7.caption = identity.username;
  Label6.caption = identity.userId;
  Text1.text = folder;
  cmbUserNames.text = identity.username;
  cmbUserIDs.text = identity.userId;
  inpth1.text = folder;
}

void Form1::ShowUsernames() {
  cmbUserNames.items = Usernames(session_.Catalogue());
  ShowSelection();
  ShowDefault();
}

void Form1::ShowDefault() {
  Label9.caption = session_.Catalogue().defaultUserId;
  Label10.caption = session_.Catalogue().defaultUsername;
}

void Form1::ShowRunning() {
  sb1.panels[1] = "";
  if (const auto isRunning = session_.IsRunning()) lblOERunning.caption = *isRunning ? kRunning : kNotRunning;
}

void Form1::loadup() {
  sb1.panels[0] = "";
  if (session_.LoadSlots()) CheckBackupFolder(false);
}

void Form1::OpenExplorer(const WinPath& folder) {
  sb1.panels[1] = "";
  session_.platform.GetShell().Explore(folder, "");
}

void Form1::OpenExplorer(const DiskPath& folder) {
  sb1.panels[1] = "";
  if (folder.IsUsable()) return OpenExplorer(folder.Stored());
  ShowRefusal(session_.platform.GetDialogs(), folder.Refusal());
}

void Form1::OpenExplorer2(const WinPath& folder, const std::string& selected) {
  sb1.panels[1] = "";
  session_.platform.GetShell().Explore(folder, "/n,/e,/select " + selected);
}

void Form1::OpenSearch() {
  ClearStatus();
  windows_.form2.Open();
  Hide();
}

void Form1::close() {
  RunHandler("Form_Unload", [this] { windows_.UnloadAll(); });
}

void Form1::ClearStatus() {
  for (auto& panel : sb1.panels) panel = "";
}

bool Form1::HasSelection() {
  if (session_.Selected()) return true;
  session_.platform.GetDialogs().Show({.text = "No identity is selected.", .icon = MessageIcon::Exclamation});
  return false;
}

bool Form1::RefusesEmptyIdentity(const std::string& message) {
  if (!session_.Selected() || session_.Selected()->storeFolder) return false;
  session_.platform.GetDialogs().Show({.text = message, .icon = MessageIcon::Exclamation});
  return true;
}

void Form1::cmbUserNames_Click() {
  ClearStatus();
  session_.SelectByUsername(cmbUserNames.text);
}

void Form1::cmbUserIDs_Click() {
  ClearStatus();
  session_.SelectByUserId(cmbUserIDs.text);
}

void Form1::inpth1_Click() {
  ClearStatus();
  session_.SelectByFolder(inpth1.text);
  Text1.SelectAll();
}

void Form1::cmdShowAdditionalInfo_Click() {
  sb1.panels[1] = "";
  const bool show = !Frame1.visible;
  Frame1.visible = show;
  heightTwips = show ? kHeightWithInfo : kHeightWithoutInfo;
  cmdShowAdditionalInfo.caption = show ? kHideInfo : kShowInfo;
}

void Form1::cmdOpenFolder_Click() {
  ClearStatus();
  if (!HasSelection()) return;
  const IdentityInfo identity = Selected();
  // Without a store there is nothing to refuse; the shell says that there is no such folder.
  if (!identity.storeFolder || identity.storeFolder->Empty()) return OpenExplorer(WinPath(Text1.text));
  OpenExplorer(CheckStoreFolder(session_.platform.GetDrives(), identity.userId, *identity.storeFolder));
}

void Form1::cmdOpenWab_Click() {
  ClearStatus();
  const WinPath folder(DirectoryFromFile(session_.Catalogue().addressBookFile.Text()));
  if (folder.Empty()) return OpenExplorer(folder);
  OpenExplorer(CheckAddressBook(session_.platform.GetDrives(), folder));
}

void Form1::cmdRefresh_Click() {
  ClearStatus();
  session_.IsOERuuning();
}

void Form1::cmdExit_Click() {
  windows_.UnloadAll();
}

}  // namespace quillbox
