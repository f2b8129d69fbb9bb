// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/search_window.h"

#include <algorithm>

#include "core/copy_tally.h"
#include "core/refusal_message.h"
#include "text/message_text.h"
#include "ui/forms/identity_picker.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

struct FileType {
  const char* pattern;
  const char* description;
};
constexpr FileType kFileTypes[] = {
    {"*.dbx", "Outlook Express 5+"},
    {"*.mbx", "Outlook Express 4 Message Store"},
    {"*.idx", "Outlook Express 4 Message Index"},
    {"*.wab", "Address Book"},
    {"*.wa~", "Address Book Backup"},
};

constexpr const char* kNothingFound = "0";
constexpr const char* kOverwriteQuestion =
    "Restoring DBX files will overwrite those that currently exist in Outlook Express's message stores folder. Do you "
    "wish to overwrite these files?";
constexpr const char* kNoStoreFolder =
    "There is no message store folder to restore the files to. Please select another Identity.";
constexpr std::size_t kRootLength = 3;  // "C:\"

}  // namespace

Form2::Form2(ProgramWindows& windows)
    : Form(windows.guard, "Form2", "Search"),
      Label1(*this, "Label1", "Search for Outlook Express Files"),
      lblcrtbkfirst(*this, "lblcrtbkfirst", "1)  Create a backup folder if you have not already done so."),
      cmdbkfldr2(*this, "cmdbkfldr2", "Create Back  Up Folder", "Click here to create a backup folder to store files."),
      txtbackupPath(*this, "txtbackupPath"),
      lblSrchFirst(*this, "lblSrchFirst", "2)  Perform a search by press the Search button."),
      lblSelFileType(*this, "lblSelFileType", "Select File Type"),
      cboFileType(*this, "cboFileType", kFileTypes[0].pattern, "Select an OE file type to search."),
      Label13(*this, "Label13", kFileTypes[0].description),
      lblSelDrive(*this, "lblSelDrive", "Select Drive"),
      cboDrives(*this, "cboDrives", "", "Select a hard drive to search"),
      cmdSearch(*this, "cmdSearch", "Search", "Click to search for OE file type selected."),
      srchBackup(*this, "srchBackup", "Search Backup Folder", "Click here to search the backup folder."),
      lvFiles(*this, "lvFiles", {"File Name", "Path"},
              [this](std::size_t row, std::size_t column) {
                return column == 0 ? session_.search.found.Name(row) : session_.search.found.Folder(row);
              }),
      Label2(*this, "Label2", "Found:"),
      Label3(*this, "Label3", kNothingFound, "Number of Identities"),
      cndSelectAll(*this, "cndSelectAll", "Select All", "Click to select all files listed in search window."),
      cmdDeselectAll(*this, "cmdDeselectAll", "Deselect All", "Click to uncheck all files listed in search window."),
      lblbktxt(*this, "lblbktxt", "3)  Check the boxes for the files you wish to back up then press ==>"),
      cmdCopyFiles(*this, "cmdCopyFiles", "Back Up Files", "Click here once you have selected the files to backup."),
      lbladdtext(*this, "lbladdtext",
                 "NOTE: Backup similar files to separate folders. i.e. Inbox.dbx files from two Identities will "
                 "attempt to overwrite if saved in same folder. "),
      Frame1(*this, "Frame1", "Restore DBX Files"),
      resDBXFiles(*this, "resDBXFiles", "Restore DBX Files To Selected Identity Below",
                  "Click here to restore DBX files selected from backup folder."),
      cmbResIdentity(*this, "cmbResIdentity"),
      lblResUsername(*this, "lblResUsername", "Username: "),
      lblusrname(*this, "lblusrname"),
      IdentyPth(*this, "IdentyPth"),
      cmdCloseForm2(*this, "cmdCloseForm2", "Close", "Close this window."),
      sb2(*this, "sb2", 2),
      session_(windows.session),
      windows_(windows) {
  cboFileType.editable = true;
  lvFiles.spokenName = "Files found";
  cmbResIdentity.spokenName = "Identity to restore to";
  IdentyPth.spokenName = "Folder to restore to";
  cmdSearch.isDefault = true;
  cmdCloseForm2.isCancel = true;
  cmdSearch.onClick = [this] { cmdSearch_Click(); };
  srchBackup.onClick = [this] { srchBackup_Click(); };
  cmdCopyFiles.onClick = [this] { cmdCopyFiles_Click(); };
  resDBXFiles.onClick = [this] { resDBXFiles_Click(); };
  cndSelectAll.onClick = [this] { cndSelectAll_Click(); };
  cmdDeselectAll.onClick = [this] { cmdDeselectAll_Click(); };
  cboFileType.onClick = [this] { cboFileType_Click(); };
  cboFileType.onChange = [this] { cboFileType_Click(); };
  cmbResIdentity.onClick = [this] { cmbResIdentity_Click(); };
  cmdbkfldr2.onClick = [this] { cmdbkfldr2_Click(); };
  cmdCloseForm2.onClick = [this] { cmdCloseForm2_Click(); };
  lvFiles.onDblClick = [this] { lvFiles_DblClick(); };
  session_.backupFolderChanged.Connect([this] { txtbackupPath.caption = TextOrNone(session_.ShownBackupFolder()); });
}

LayoutNode Form2::Layout() {
  return Column({
      Item(Label1),
      Row({Item(lblcrtbkfirst), Item(cmdbkfldr2), Item(txtbackupPath, 1)}),
      Item(lblSrchFirst),
      Row({Grid(3, {1, 2},
                {Item(lblSelFileType), Item(cboFileType), Item(Label13), Item(lblSelDrive), Item(cboDrives), Space()},
                1),
           Column({Item(cmdSearch), Item(srchBackup)})}),
      Item(lvFiles, 1),
      Row({Item(Label2), Item(Label3, 1), Item(cndSelectAll), Item(cmdDeselectAll)}),
      Row({Item(lblbktxt, 1), Item(cmdCopyFiles)}),
      Item(lbladdtext),
      Group(Frame1, Column({
                        Row({Item(resDBXFiles), Space()}),
                        Row({Item(cmbResIdentity, 1), Item(lblResUsername), Item(lblusrname, 1)}),
                        Item(IdentyPth),
                    })),
      Row({Space(), Item(cmdCloseForm2)}),
      Item(sb2),
  });
}

void Form2::FillFileTypes() {
  std::vector<std::string> patterns;
  for (const FileType& type : kFileTypes) patterns.emplace_back(type.pattern);
  cboFileType.items = std::move(patterns);
}

void Form2::gdrive() {
  drives_ = ListDrives(session_.platform.GetDrives());
  cboDrives.items = drives_.items;
  cboDrives.text = drives_.items.empty() ? std::string() : drives_.items.front();
  EnableSearch();
}

/// Offers a drive that was attached since the list was filled. The one that was chosen stays so.
void Form2::ShowNewDrives() {
  if (ListDrives(session_.platform.GetDrives()).items == drives_.items) return;
  const std::string chosen = cboDrives.text;
  gdrive();
  cboDrives.text = chosen;
}

void Form2::EnableSearch() {
  cmdSearch.enabled = !Trim(cboFileType.text.Get()).empty();
}

void Form2::ShowNoSearches() {
  Label3.caption = "0 Searches";
}

void Form2::Form_Load() {
  session_.GetInputPaths();
  Load();
}

void Form2::Load() {
  loaded_ = true;
  txtbackupPath.caption = session_.backupFolder.Text();
  cmbResIdentity.Clear();
  ShowIdentities();
  gdrive();
}

/// Offers the identities that there are now. The one that was chosen stays so while it is there.
void Form2::ShowIdentities() {
  if (cmbResIdentity.items == UserIds(session_.Catalogue())) return;
  const std::string chosen = cmbResIdentity.text;
  ListAndShowUserIds(cmbResIdentity, session_.Catalogue());
  if (session_.Catalogue().Find(chosen)) cmbResIdentity.text = chosen;
  cmbResIdentity_Click();
}

void Form2::Open() {
  if (!loaded_) Form_Load();
  txtbackupPath.caption = session_.backupFolder.Text();
  ShowIdentities();
  ShowNewDrives();
  Show();
}

void Form2::close() {
  RunHandler("Form_Unload", [this] {
    windows_.ReturnToMainWindow(*this);
    Unload();
  });
}

/// Back to what the window was before it was first loaded.
void Form2::Unload() {
  loaded_ = false;
  lvFiles.SetRowCount(0);
  session_.search.found.Clear();
  Label3.caption = kNothingFound;
  cboFileType.text = kFileTypes[0].pattern;
  session_.search.pattern = cboFileType.text;
  Label13.caption = kFileTypes[0].description;
  ClearStatus();
}

void Form2::ClearStatus() {
  for (auto& panel : sb2.panels) panel = "";
}

void Form2::SearchIn(const std::vector<WinPath>& roots) {
  session_.search.performed = true;
  ClearStatus();
  lvFiles.SetRowCount(0);
  session_.search.found.Clear();
  SearchReport report;
  {
    const auto progress = session_.platform.GetDialogs().ShowProgress("Searching...");
    for (const WinPath& root : roots) {
      if (!report.cancelled) GetFiles(root, cboFileType.text, report, *progress);
    }
  }
  for (const std::string& folder : report.unread) session_.platform.GetLog().Write("not searched: " + folder);
  if (!report.unread.empty()) sb2.panels[1] = "Folders not read: " + std::to_string(report.unread.size());
  sb2.panels[0] = report.cancelled ? "Search Cancelled" : "Search Complete";
}

void Form2::GetFiles(const WinPath& path, const std::string& pattern, SearchReport& report, Progress& progress) {
  windows_.form1.Hide();
  const HourglassScope hourglass(*this);
  SearchFiles(session_.platform.GetFiles(), path, pattern, session_.search.found, report,
              [&](const std::string& folder, std::size_t found) {
                return progress.Update(std::to_string(found) + " found, now in " + folder, 0, 0);
              });
  lvFiles.SetRowCount(session_.search.found.Count());
  Label3.caption = std::to_string(session_.search.found.Count());
}

void Form2::cmdSearch_Click() {
  const PleaseWaitScope pleaseWait(cmdSearch);
  const std::string drive = cboDrives.text;
  const bool all = drive.find(kAllDrives) != std::string::npos;
  SearchIn(all ? drives_.roots : std::vector{WinPath(drive.substr(0, kRootLength))});
}

void Form2::srchBackup_Click() {
  SearchIn({WinPath(session_.backupFolder.Text())});
}

/// Copies the checked files into `folder`, whose files of the same names the shell asks about.
void Form2::CopyChecked(const WinPath& folder) {
  const auto rows = lvFiles.CheckedRows();
  Shell& shell = session_.platform.GetShell();
  for (const std::size_t row : rows) {
    const std::string& name = session_.search.found.Name(row);
    shell.CopyFile({.source = WinPath(session_.search.found.Folder(row)).Join(name),
                    .target = folder.Join(name),
                    .part = rows.size() == 1 ? CopyPart::OnlyFile : CopyPart::OneOfSeveral});
  }
  sb2.panels[1] = rows.empty() ? "No files were checked" : CopyTally(shell.FinishCopies()).CountText();
}

void Form2::cmdCopyFiles_Click() {
  ClearStatus();
  const auto folder = session_.backupFolder.Guard(FolderMessage::WithFullStop);
  if (!folder) return;
  const BusyScope busy(*this, cmdCopyFiles);
  CopyChecked(*folder);
  session_.KeepBackup({.command = "Back Up Files",
                       .ended = session_.platform.GetClock().Now(),
                       .folder = *folder,
                       .copies = session_.platform.GetShell().FinishCopies(),
                       .exports = {},
                       .leftOut = {},
                       .endedEarly = {}});
  sb2.panels[0] = "Copy Complete";
}

void Form2::resDBXFiles_Click() {
  const Message question{.text = kOverwriteQuestion, .buttons = MessageButtons::YesNo};
  if (session_.platform.GetDialogs().Show(question) != MessageAnswer::Yes) return;
  ClearStatus();
  if (!session_.backupFolder.Guard(FolderMessage::WithFullStop)) return;
  if (lvFiles.CheckedRows().empty()) {
    sb2.panels[0] = "No Items Restored";
    return;
  }
  if (Trim(IdentyPth.text.Get()).empty() || IdentyPth.text == kEmptyIdentityMarker) {
    session_.platform.GetDialogs().Show({.text = kNoStoreFolder, .icon = MessageIcon::Exclamation});
    return;
  }
  const DiskPath target = RestoreTarget();
  if (!target.IsUsable()) return ShowRefusal(session_.platform.GetDialogs(), target.Refusal());
  const BusyScope busy(*this, resDBXFiles);
  if (!MakeFolder(session_.platform.GetFiles(), target.Path())) {
    session_.platform.GetDialogs().Show(
        {.text = "The folder \"" + OneLine(target.Path().Text()) + "\" cannot be made, so nothing was restored.",
         .icon = MessageIcon::Exclamation});
    return;
  }
  ShowNewDrives();
  CopyChecked(target.Path());
  sb2.panels[0] = "Restore Complete";
}

/// The folder shown: what the registry names for the chosen identity, or what the person typed over it.
DiskPath Form2::RestoreTarget() {
  Drives& drives = session_.platform.GetDrives();
  const IdentityInfo* identity = session_.Catalogue().Find(cmbResIdentity.text);
  if (identity && identity->FolderText() == IdentyPth.text.Get()) {
    return CheckStoreFolder(drives, identity->userId, WinPath(IdentyPth.text));
  }
  return {drives, WinPath(IdentyPth.text)};
}

void Form2::cndSelectAll_Click() {
  ClearStatus();
  lvFiles.SetAllChecked(true);
}

void Form2::cmdDeselectAll_Click() {
  lvFiles.SetAllChecked(false);
}

void Form2::cboFileType_Click() {
  session_.search.pattern = cboFileType.text;
  for (const FileType& type : kFileTypes) {
    if (cboFileType.text == type.pattern) Label13.caption = type.description;
  }
  EnableSearch();
}

void Form2::cmbResIdentity_Click() {
  const IdentityInfo* chosen = session_.Catalogue().Find(cmbResIdentity.text);
  lblusrname.caption = chosen ? chosen->username : std::string();
  IdentyPth.text = chosen ? chosen->FolderText() : std::string();
}

void Form2::cmdbkfldr2_Click() {
  ClearStatus();
  windows_.form3.OpenFrom(*this);
}

void Form2::cmdCloseForm2_Click() {
  windows_.ReturnToMainWindow(*this);
}

void Form2::lvFiles_DblClick() {
  const std::size_t row = lvFiles.selected->value();
  windows_.form1.OpenExplorer2(WinPath(session_.search.found.Folder(row)), session_.search.found.Name(row));
}

}  // namespace quillbox
