// "Select or Create a Backup Folder": walk the drives, pick a folder or make one, and have it be the backup folder.
#pragma once

#include <string>

#include "ui/folder_controls.h"
#include "ui/form.h"
#include "ui/forms/program.h"

namespace quillbox {

class ProgramWindows;

class Form3 : public Form {
 public:
  Form3(Program& program, ProgramWindows& windows);

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

  /// Runs the load check the first time that the window is needed, shown or not.
  void EnsureLoaded();
  /// Shows this window in place of `opener`, which is shown again when this one closes.
  void OpenFrom(Form& opener);

  LayoutNode Layout() override;

 private:
  void Form_Load();
  void SetDir(const WinPath& folder);
  void MoveDir(const WinPath& folder);
  void Drive1_Change();
  void Dir1_Change();
  void cmdMkFolder_Click();
  void cmdSetPath_Click();
  void cmdClse_Click();

  Program& program_;
  ProgramWindows& windows_;
  Form* opener_ = nullptr;
  bool loaded_ = false;
};

}  // namespace quillbox
