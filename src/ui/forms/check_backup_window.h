// SPDX-License-Identifier: GPL-3.0-or-later
// "Check Backup": whether every file of a backup is whole, whichever run made it, and on request whether it equals the
// disk that is open.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspection/inspection.h"
#include "session/session.h"
#include "ui/form.h"
#include "ui/list_view.h"

namespace quillbox {

class ProgramWindows;

class CheckBackupForm : public Form {
 public:
  explicit CheckBackupForm(ProgramWindows& windows);

  // In tab order.
  Label lblFolder;
  TextBox txtFolder;
  Button cmdBrowse;
  CheckBox chkDisk;
  ListView lvFiles;
  Label lblResult;
  Button cmdCheck;
  Button cmdSave;
  Button cmdClose;
  StatusBar sb1;

  /// Shows the window in place of the main window, with the backup folder.
  void Open();

  LayoutNode Layout() override;

 private:
  /// A row: what is missing, what is not whole or equal, and then what is.
  struct Line {
    std::string file, kind, size, result;
  };

  void ShowNone();
  void ShowResult();
  std::string CellOf(std::size_t row, std::size_t column) const;

  void cmdBrowse_Click();
  void cmdCheck_Click();
  void cmdSave_Click();

  Session& session_;
  ProgramWindows& windows_;
  std::optional<Inspection> result_;
  std::uint64_t ended_ = 0;  ///< FILETIME of the check
  std::vector<Line> lines_;
};

}  // namespace quillbox
