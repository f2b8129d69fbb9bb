// SPDX-License-Identifier: GPL-3.0-or-later
// "Select or Create a Backup Folder": walk the drives, pick a folder or make one, and have it be the backup folder.
#pragma once

#include "session/session.h"
#include "ui/folder_controls.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class Form3 : public Form {
 public:
  explicit Form3(ProgramWindows& windows);

  // In tab order.
  Label Label1;
  Label Label2;
  Label Label3;
  Label Label4;
  Label Label5;
  Label Label7;
  DriveListBox Drive1;
  Label lblSelFolder;
  DirListBox Dir1;
  Label lblFilesNFolder;
  FileListBox File1;
  Label lblbkPth;
  TextBox txtbkPth;
  Button cmdMkFolder;
  Button cmdSetPath;
  Button cmdClse;

  /// Shows this window in place of `opener`, which is shown again when this one closes.
  void OpenFrom(Form& opener);

  LayoutNode Layout() override;

 private:
  void Form_Load();
  void Refresh();
  void SetDir(const WinPath& folder);
  void Drive1_Change();
  void Dir1_Change();
  void cmdMkFolder_Click();
  void cmdSetPath_Click();
  void cmdClse_Click();

  Session& session_;
  ProgramWindows& windows_;
  Form* opener_ = nullptr;
  bool loaded_ = false;
};

}  // namespace quillbox
