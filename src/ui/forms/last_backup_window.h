// SPDX-License-Identifier: GPL-3.0-or-later
// "Last Backup": what the last backup of this run copied, left out and could not do. It can be checked against the
// sources and saved as text; nothing of it is added to the backup itself.
#pragma once

#include <vector>

#include "backup/backup_record.h"
#include "session/session.h"
#include "ui/form.h"
#include "ui/list_view.h"

namespace quillbox {

class ProgramWindows;

class LastBackupForm : public Form {
 public:
  explicit LastBackupForm(ProgramWindows& windows);

  // In tab order.
  Label lblBackup;
  Label lblFolder;
  ListView lvSteps;
  Button cmdCheck;
  Button cmdSave;
  Button cmdClose;
  StatusBar sb1;

  /// Shows the window, loaded afresh, in place of the main window.
  void Open();

  LayoutNode Layout() override;

 private:
  void Form_Load();
  void ShowLines(std::vector<BackupLine> lines);
  std::string Ended();
  void cmdCheck_Click();
  void cmdSave_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
  std::vector<BackupLine> lines_;
};

}  // namespace quillbox
