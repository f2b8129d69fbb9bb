// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/backup_folder_window.h"

#include <utility>

#include "core/file_helpers.h"
#include "platform/status_text.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

const WinPath kFirstFolder("C:\\");

}  // namespace

Form3::Form3(ProgramWindows& windows)
    : Form(windows.guard, "Form3", "Select or Create a Backup Folder"),
      Label1(*this, "Label1", "1) Select Drive "),
      Label2(*this, "Label2", "2a) Double Click Folder In Folder List To Select It."),
      Label3(*this, "Label3", "2b) Press Create Folder and type in path and name of folder to create"),
      Label4(*this, "Label4",
             "3) Press Set Folder to make this the backup folder. Path and Folder name will appear in Backup Folder "
             "line."),
      Label5(*this, "Label5", "4) Press Close when finished"),
      Label7(*this, "Label7", "Select Drive"),
      Drive1(*this, "Drive1", "", "Select a drive."),
      lblSelFolder(*this, "lblSelFolder", "Folder List"),
      Dir1(*this, "Dir1",
           "Navigate to location to create folder or select a previously created folder as backup folder."),
      lblFilesNFolder(*this, "lblFilesNFolder", "Files in folder:"),
      File1(*this, "File1", "Shows files in current folder."),
      lblbkPth(*this, "lblbkPth", "Backup Folder"),
      txtbkPth(*this, "txtbkPth", kNoneSelected, "Path and name of folder."),
      cmdMkFolder(*this, "cmdMkFolder", "Create New Backup Folder", "Click to create a new folder."),
      cmdSetPath(*this, "cmdSetPath", "Set Selected  Folder As Backup",
                 "Click here to make the current folder selected as backup folder."),
      cmdClse(*this, "cmdClse", "Close", "Close this window."),
      session_(windows.session),
      windows_(windows) {
  cmdSetPath.isDefault = true;
  cmdClse.isCancel = true;
  Drive1.onClick = [this] { Drive1_Change(); };
  Dir1.onOpen = [this] {
    SetDir(Dir1.FolderAt(Dir1.selected->value()));
    Dir1_Change();
  };
  txtbkPth.onChange = [this] { session_.LookAt(PathOrNone(txtbkPth.text)); };
  session_.folderInViewChanged.Connect([this] { txtbkPth.text = TextOrNone(session_.FolderInView()); });
  cmdMkFolder.onClick = [this] { cmdMkFolder_Click(); };
  cmdSetPath.onClick = [this] { cmdSetPath_Click(); };
  cmdClse.onClick = [this] { cmdClse_Click(); };
}

LayoutNode Form3::Layout() {
  return Column({
      Item(Label1),
      Item(Label2),
      Item(Label3),
      Item(Label4),
      Item(Label5),
      Row({Column({Item(Label7), Item(Drive1), Item(lblSelFolder), Item(Dir1, 1)}, 1),
           Column({Item(lblFilesNFolder), Item(File1, 1)}, 1)},
          1),
      Item(lblbkPth),
      Item(txtbkPth),
      Row({Item(cmdMkFolder, 1), Item(cmdSetPath, 1), Item(cmdClse, 1)}),
  });
}

void Form3::OpenFrom(Form& opener) {
  opener_ = &opener;
  std::exchange(loaded_, true) ? Refresh() : Form_Load();
  opener.Hide();
  Show();
}

void Form3::Form_Load() {
  Drive1.Fill(session_.platform.GetDrives());
  Drive1.ShowDriveOf(kFirstFolder);
  const std::optional<WinPath> folder = session_.FolderInView();
  if (!folder || !DirExists(session_.platform.GetFiles(), *folder)) return;
  SetDir(*folder);
  File1.SetPath(session_.platform.GetFiles(), Dir1.Path());
  Drive1.ShowDriveOf(Dir1.Path());
}

/// Shows what is on the drives now, in the folder where the window was left.
void Form3::Refresh() {
  Drive1.Fill(session_.platform.GetDrives());
  if (Dir1.Path().Empty()) return;
  Dir1.Refresh(session_.platform.GetFiles());
  File1.SetPath(session_.platform.GetFiles(), Dir1.Path());
}

void Form3::SetDir(const WinPath& folder) {
  Dir1.SetPath(session_.platform.GetFiles(), session_.platform.GetDrives(), folder);
}

void Form3::Drive1_Change() {
  SetDir(WinPath(Drive1.text));
  Dir1_Change();
}

void Form3::Dir1_Change() {
  File1.SetPath(session_.platform.GetFiles(), Dir1.Path());
  session_.LookAt(Dir1.Path());
}

void Form3::cmdMkFolder_Click() {
  const auto answer = session_.platform.GetDialogs().Input("Enter folder name", kProgramName, "");
  if (!answer || answer->empty()) return;
  // No separator is put between: at C:\Backups the answer "\Mail" makes C:\Backups\Mail.
  const WinPath folder(File1.Path().Text() + *answer);
  session_.LookAt(folder);
  const Status made = session_.platform.GetFiles().MakeDirectory(folder);
  if (made != Status::Success) {
    session_.platform.GetLog().Write(folder.Text() + ": the folder was not made because " + StatusReason(made));
  }
  Dir1.Refresh(session_.platform.GetFiles());
}

void Form3::cmdSetPath_Click() {
  session_.ChooseBackupFolder(PathOrNone(txtbkPth.text));
}

void Form3::cmdClse_Click() {
  session_.IsOERuuning();
  Form& opener = opener_ ? *opener_ : static_cast<Form&>(windows_.form1);
  opener.Show();
  Hide();
}

}  // namespace quillbox
