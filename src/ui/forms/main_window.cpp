#include "ui/forms/main_window.h"

#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr int kHeightWithoutInfo = 4215;  // twips
constexpr int kHeightWithInfo = 8790;
constexpr const char* kShowInfo = "Show Additional Identity Info";
constexpr const char* kHideInfo = "Hide Additional Identity Info";
constexpr const char* kNoSearches = "0 Searches";
constexpr const char* kRunning = "Outlook Express is currently running. Please close it if you intend to make changes.";
constexpr const char* kNotRunning = "Outlook Express is not currently running.";

}  // namespace

Form1::Form1(Program& program, ProgramWindows& windows)
    : Form(program.guard, "Form1", kProgramName),
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
      lblSystem(*this, "lblSystem", program.platform.SystemDescription(), "The disk that is open."),
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
      program_(program),
      windows_(windows) {
  heightTwips = kHeightWithoutInfo;
  Frame1.visible = false;
  Text1.readOnly = true;
  txtwabloc.readOnly = true;
  cmdQuickBackup.isDefault = true;
  cmdExit.isCancel = true;
  BuildMenu();
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
      Grid(3, {1, 2},
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
  windows_.form2.Label3.caption = kNoSearches;
  GetInputPaths();
  Show();
  windows_.form2.Load();
  IsOERuuning();
  loadup();
  chkbox();
}

void Form1::GetInputPaths() {
  // A disk may turn out to be write-protected while it is worked on.
  lblSystem.caption = program_.platform.SystemDescription();
  cmbUserNames.Clear();
  inpth1.Clear();
  const CatalogueLoad load = LoadCatalogue(program_.store, program_.platform.GetSystemFacts());
  program_.catalogue = load.catalogue;
  switch (load.end) {
    case CatalogueLoad::End::NoIdentitiesKey:
      return;
    case CatalogueLoad::End::ReadError:
      ShowLoadedIdentities(load);
      program_.store.ShowRegistryReadError(load.status, load.suffix);
      return;
    case CatalogueLoad::End::Failed:
      ShowLoadedIdentities(load);
      inpth1.text = "";
      program_.platform.GetLog().Write("The identities could not be loaded: " + load.failure);
      return;
    case CatalogueLoad::End::Complete:
      break;
  }
  ShowLoadedIdentities(load);
  std::vector<std::string> folders;
  for (const IdentityInfo& identity : load.catalogue.identities) folders.push_back(identity.storeFolder);
  inpth1.items = std::move(folders);
  const IdentityInfo first = load.catalogue.identities.empty() ? IdentityInfo() : load.catalogue.identities.front();
  cmbUserIDs.text = first.userId;
  cmbUserNames.text = first.username;
  inpth1.text = first.storeFolder;
  Label7.caption = first.username;
  Label6.caption = first.userId;
  Label2.caption = std::to_string(load.catalogue.identities.size());
  Text1.text = first.storeFolder;
  Text1.SelectAll();
  program_.platform.GetClipboard().Clear();
  txtwabloc.text = load.catalogue.addressBookFile;
  txtwabloc.SelectAll();
}

void Form1::ShowLoadedIdentities(const CatalogueLoad& load) {
  cmbUserIDs.Clear();
  std::vector<std::string> userIds;
  std::vector<std::string> usernames;
  for (const IdentityInfo& identity : load.catalogue.identities) {
    userIds.push_back(identity.userId);
    if (usernames.size() < load.usernamesRead) usernames.push_back(identity.username);
  }
  cmbUserIDs.items = std::move(userIds);
  cmbUserNames.items = std::move(usernames);
  Label9.caption = load.catalogue.defaultUserId;
  Label10.caption = load.catalogue.defaultUsername;
}

void Form1::loadup() {
  sb1.panels[0] = "";
  const SlotsLoad load = LoadAddressBookSlots(program_.store);
  program_.addressBookSlots = load.slots;
  windows_.form9.txtOutPath3.text = load.slots.folder;
  if (!load.keyOpened) return;
  windows_.form6.ShowSlots(load.slots.captions);
  if (load.readError) return program_.store.ShowRegistryReadError(load.readError->first, load.readError->second);
  CheckBackupFolder(false);
}

void Form1::IsOERuuning() {
  sb1.panels[1] = "";
  if (program_.catalogue.identities.empty()) return;
  lblOERunning.caption = IsAnyIdentityRunning(program_.store, program_.catalogue) ? kRunning : kNotRunning;
}

void Form1::OpenExplorer(const std::string& folder) {
  sb1.panels[1] = "";
  program_.platform.GetShell().Explore(folder, "");
}

void Form1::OpenExplorer(const DiskPath& folder) {
  sb1.panels[1] = "";
  if (folder.IsUsable()) return OpenExplorer(folder.Text());
  TellRefusal(program_, folder.Refusal());
}

void Form1::OpenExplorer2(const std::string& folder) {
  sb1.panels[1] = "";
  const ListView& list = windows_.form2.lvFiles;
  const std::string name = list.selected < 0 ? "" : list.Text(static_cast<std::size_t>(list.selected.Get()), 0);
  program_.platform.GetShell().Explore(folder, "/n,/e,/select " + name);
}

void Form1::close() {
  RunHandler("Form_Unload", [this] { windows_.UnloadAll(); });
}

void Form1::ClearStatus() {
  sb1.panels[0] = "";
  sb1.panels[1] = "";
}

void Form1::SelectWhere(const std::string& text, std::string IdentityInfo::*field, ComboBox& picker) {
  ClearStatus();
  // All positions are walked: of two identities with one username the later one is selected.
  for (const IdentityInfo& identity : program_.catalogue.identities) {
    if (identity.*field != text) continue;
    Label7.caption = identity.username;
    Label6.caption = identity.userId;
    Text1.text = identity.storeFolder;
    if (&picker != &cmbUserNames) cmbUserNames.text = identity.username;
    if (&picker != &cmbUserIDs) cmbUserIDs.text = identity.userId;
    if (&picker != &inpth1) inpth1.text = identity.storeFolder;
  }
}

void Form1::cmbUserNames_Click() {
  SelectWhere(cmbUserNames.text, &IdentityInfo::username, cmbUserNames);
}

void Form1::cmbUserIDs_Click() {
  SelectWhere(cmbUserIDs.text, &IdentityInfo::userId, cmbUserIDs);
}

void Form1::inpth1_Click() {
  for (IdentityInfo& identity : program_.catalogue.identities) {
    if (identity.storeFolder.ends_with('\0')) identity.storeFolder.pop_back();
  }
  SelectWhere(inpth1.text, &IdentityInfo::storeFolder, inpth1);
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
  const std::string folder = Text1.text;
  // Without a store there is nothing to refuse; the shell says that there is no such folder.
  if (folder.empty() || folder == kEmptyIdentityMarker) return OpenExplorer(folder);
  OpenExplorer(CheckStoreFolder(program_.platform.GetDrives(), Label6.caption, folder));
}

void Form1::cmdOpenWab_Click() {
  ClearStatus();
  const std::string folder = DirectoryFromFile(txtwabloc.text.Get());
  if (folder.empty()) return OpenExplorer(folder);
  OpenExplorer(CheckAddressBook(program_.platform.GetDrives(), folder));
}

void Form1::cmdRefresh_Click() {
  ClearStatus();
  IsOERuuning();
}

void Form1::cmdExit_Click() {
  windows_.UnloadAll();
}

}  // namespace quillbox
