// SPDX-License-Identifier: GPL-3.0-or-later
// "Search": finds Outlook Express files of one type on the drives or in the backup folder, and copies those that the
// person checks into the backup folder or into an identity's message store folder.
#pragma once

#include <string>
#include <vector>

#include "backup/drives.h"
#include "backup/file_search.h"
#include "core/disk_path.h"
#include "session/session.h"
#include "ui/form.h"
#include "ui/list_view.h"

namespace quillbox {

class ProgramWindows;

class Form2 : public Form {
 public:
  explicit Form2(ProgramWindows& windows);

  // In tab order.
  Label Label1;
  Label lblcrtbkfirst;
  Button cmdbkfldr2;
  Label txtbackupPath;
  Label lblSrchFirst;
  Label lblSelFileType;
  ComboBox cboFileType;
  Label Label13;
  Label lblSelDrive;
  ComboBox cboDrives;
  Button cmdSearch;
  Button srchBackup;
  ListView lvFiles;
  Label Label2;
  Label Label3;
  Button cndSelectAll;
  Button cmdDeselectAll;
  Label lblbktxt;
  Button cmdCopyFiles;
  Label lbladdtext;
  Frame Frame1;
  Button resDBXFiles;
  ComboBox cmbResIdentity;
  Label lblResUsername;
  Label lblusrname;
  TextBox IdentyPth;
  Button cmdCloseForm2;
  StatusBar sb2;

  /// Fills the list of file types.
  void FillFileTypes();
  /// What the window says before the first search.
  void ShowNoSearches();
  /// Fills the list of drives and chooses the first.
  void gdrive();
  /// Fills the window. The main window's paths have just been loaded.
  void Load();
  /// Shows the window, loaded afresh when it is new or was closed by its title bar.
  void Open();

  LayoutNode Layout() override;
  void close() override;

 private:
  void Form_Load();
  void Unload();
  void EnableSearch();
  void ShowIdentities();
  void ShowNewDrives();
  void ClearStatus();
  void SearchIn(const std::vector<WinPath>& roots);
  void GetFiles(const WinPath& path, const std::string& pattern, SearchReport& report, Progress& progress);
  void CopyChecked(const WinPath& folder);
  DiskPath RestoreTarget();

  void cmdSearch_Click();
  void srchBackup_Click();
  void cmdCopyFiles_Click();
  void resDBXFiles_Click();
  void cndSelectAll_Click();
  void cmdDeselectAll_Click();
  void cboFileType_Click();
  void cmbResIdentity_Click();
  void cmdbkfldr2_Click();
  void cmdCloseForm2_Click();
  void lvFiles_DblClick();

  Session& session_;
  ProgramWindows& windows_;
  DriveList drives_;
  bool loaded_ = false;
};

}  // namespace quillbox
