// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/check_backup_window.h"

#include <array>
#include <utility>

#include "backup/backup_folder.h"
#include "export/export_progress.h"
#include "inspection/inspect_backup.h"
#include "inspection/inspection_text.h"
#include "reports/general_date.h"
#include "text/error.h"
#include "text/message_text.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kNoFolder = "Please choose the folder of the backup to check.";
constexpr const char* kNotChecked = "The backup has not been checked yet.";
/// In the order of InspectionEnd.
constexpr std::array<const char*, 5> kStatuses = {"The backup is whole", "The backup is NOT whole",
                                                  "Not all of the backup could be looked at",
                                                  "There is no backup in this folder", "The check was cancelled"};

}  // namespace

CheckBackupForm::CheckBackupForm(ProgramWindows& windows)
    : Form(windows.guard, "CheckBackup", "Check Backup"),
      lblFolder(*this, "lblFolder", "Backup"),
      txtFolder(*this, "txtFolder", "", "The folder of the backup: all of it, or the one of an identity."),
      cmdBrowse(*this, "cmdBrowse", "Browse...", "Chooses the folder of the backup."),
      chkDisk(*this, "chkDisk", "Compare with the disk that is open",
              "Also compares each file with what the disk has now. Mail that came since then makes a difference."),
      lvFiles(
          *this, "lvFiles", {"File", "Kind", "Size", "Result"},
          [this](std::size_t row, std::size_t column) { return CellOf(row, column); }, ListView::Checks::None),
      lblResult(*this, "lblResult"),
      cmdCheck(*this, "cmdCheck", "Check", "Reads every file of the backup. Nothing is changed."),
      cmdSave(*this, "cmdSave", "Save", "Saves the result as a text file."),
      cmdClose(*this, "cmdClose", "Close", "Close this window."),
      sb1(*this, "sb1", 1),
      session_(windows.session),
      windows_(windows) {
  lvFiles.spokenName = "Files of the backup";
  lblResult.wraps = true;
  cmdCheck.isDefault = true;
  cmdClose.isCancel = true;
  txtFolder.onChange = [this] { ShowNone(); };
  cmdBrowse.onClick = [this] { cmdBrowse_Click(); };
  cmdCheck.onClick = [this] { cmdCheck_Click(); };
  cmdSave.onClick = [this] { cmdSave_Click(); };
  cmdClose.onClick = [this] { windows_.ReturnToMainWindow(*this); };
}

LayoutNode CheckBackupForm::Layout() {
  return Column({
      Row({Item(lblFolder), Item(txtFolder, 1), Item(cmdBrowse)}),
      Item(chkDisk),
      Item(lvFiles, 1),
      Item(lblResult),
      Row({Item(cmdCheck), Item(cmdSave), Space(), Item(cmdClose)}),
      Item(sb1),
  });
}

void CheckBackupForm::Open() {
  const auto folder = session_.backupFolder.Get();
  txtFolder.text = folder ? folder->Text() : std::string();
  ShowNone();
  windows_.ReplaceMainWindow(*this);
}

void CheckBackupForm::ShowNone() {
  result_.reset();
  lines_.clear();
  lvFiles.SetRowCount(0);
  lblResult.caption = kNotChecked;
  sb1.panels[0] = "";
  cmdSave.enabled = false;
}

std::string CheckBackupForm::CellOf(std::size_t row, std::size_t column) const {
  const Line& line = lines_[row];
  const std::string* const cells[] = {&line.file, &line.kind, &line.size, &line.result};
  return OneLine(*cells[column]);
}

void CheckBackupForm::cmdBrowse_Click() {
  const auto folder = BrowseForFolder(session_.platform.GetDialogs(), WinPath(Trim(txtFolder.text.Get())));
  if (!folder) return;
  txtFolder.text = folder->Text();
  ShowNone();
}

void CheckBackupForm::cmdCheck_Click() {
  Platform& platform = session_.platform;
  const WinPath folder(Trim(txtFolder.text.Get()));
  ShowNone();
  if (folder.Empty()) {
    platform.GetDialogs().Show({.text = kNoFolder, .icon = MessageIcon::Exclamation});
    return;
  }
  const ComparedDisk disk{platform, session_.store, session_.Catalogue()};
  try {
    const BusyScope busy(*this, cmdCheck);
    const auto progress = platform.GetDialogs().ShowProgress("Checking...");
    result_ = InspectBackup(platform.GetFiles(), CodePage(platform.GetSystemFacts().CodePageNumber()),
                            {.folder = folder, .against = chkDisk.checked ? &disk : nullptr}, *progress);
  } catch (const Error& error) {
    platform.GetDialogs().Show({.text = Describe(error), .icon = MessageIcon::Exclamation});
    return;
  }
  ended_ = platform.GetClock().Now();
  ShowResult();
}

void CheckBackupForm::ShowResult() {
  for (const NotThere& part : AllNotThere(*result_)) {
    lines_.push_back({part.name, "", "", part.verdict + (part.why.empty() ? "" : ": " + part.why)});
  }
  for (const bool isGood : {false, true}) {
    for (const InspectedFile& file : result_->files) {
      if (file.IsGood() != isGood) continue;
      lines_.push_back({NameIn(*result_, file.path), KindText(file.kind), SizeText(file.size), StateText(file)});
    }
  }
  lvFiles.SetRowCount(lines_.size());
  lblResult.caption = SummaryOf(*result_);
  sb1.panels[0] = kStatuses.at(static_cast<std::size_t>(result_->End()));
  cmdSave.enabled = true;
}

void CheckBackupForm::cmdSave_Click() {
  const auto file = session_.platform.GetDialogs().SaveFile({.title = {},
                                                             .folder = {},
                                                             .name = "Check of the Backup.txt",
                                                             .filter = "Text Files (*.txt) | *.txt",
                                                             .askOverwrite = true});
  if (!file) return;
  session_.platform.GetFiles().WriteFile(*file, ReportText(*result_, GeneralDate(session_.store, ended_)));
  sb1.panels[0] = "Saved as " + file->Text();
}

}  // namespace quillbox
