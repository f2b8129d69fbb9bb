// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/last_backup_window.h"

#include <utility>

#include "backup/backup_check.h"
#include "reports/general_date.h"
#include "text/message_text.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kNoBackup = "No backup was made since the program was started.";

/// The cells of a row, from left to right.
std::string CellOf(const BackupLine& line, std::size_t column) {
  const std::string* const cells[] = {&line.what, &line.size, &line.outcome, &line.from};
  return OneLine(*cells[column]);
}

}  // namespace

LastBackupForm::LastBackupForm(ProgramWindows& windows)
    : Form(windows.guard, "LastBackup", "Last Backup"),
      lblBackup(*this, "lblBackup"),
      lblFolder(*this, "lblFolder"),
      lvSteps(
          *this, "lvSteps", {"What", "Size", "Result", "From"},
          [this](std::size_t row, std::size_t column) { return CellOf(lines_[row], column); }, ListView::Checks::None),
      cmdCheck(*this, "cmdCheck", "Check", "Reads the copies and their sources again and compares them."),
      cmdSave(*this, "cmdSave", "Save", "Saves this list as a text file."),
      cmdClose(*this, "cmdClose", "Close", "Close this window."),
      sb1(*this, "sb1", 1),
      session_(windows.session),
      windows_(windows) {
  lvSteps.spokenName = "What the last backup did";
  cmdClose.isDefault = true;
  cmdClose.isCancel = true;
  cmdCheck.onClick = [this] { cmdCheck_Click(); };
  cmdSave.onClick = [this] { cmdSave_Click(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode LastBackupForm::Layout() {
  return Column({
      Item(lblBackup),
      Item(lblFolder),
      Item(lvSteps, 1),
      Row({Item(cmdCheck), Item(cmdSave), Space(), Item(cmdClose)}),
      Item(sb1),
  });
}

void LastBackupForm::Open() {
  Form_Load();
  windows_.ReplaceMainWindow(*this);
}

void LastBackupForm::Form_Load() {
  const auto& record = session_.LastBackup();
  for (Button* button : {&cmdCheck, &cmdSave}) button->enabled = record.has_value();
  lblBackup.caption = record ? record->command + ", " + Ended() : kNoBackup;
  lblFolder.caption = record ? "Backup folder: " + record->folder.Text() : std::string();
  sb1.panels[0] = record ? SummaryOf(*record) : std::string();
  ShowLines(record ? LinesOf(*record) : std::vector<BackupLine>());
}

void LastBackupForm::ShowLines(std::vector<BackupLine> lines) {
  lines_ = std::move(lines);
  lvSteps.SetRowCount(lines_.size());
}

std::string LastBackupForm::Ended() {
  return GeneralDate(session_.store, session_.LastBackup()->ended);
}

void LastBackupForm::cmdCheck_Click() {
  const BusyScope busy(*this, cmdCheck);
  const auto progress = session_.platform.GetDialogs().ShowProgress("Checking...");
  BackupCheck check = CheckBackup(session_.platform.GetFiles(), *session_.LastBackup(), *progress);
  ShowLines(std::move(check.lines));
  sb1.panels[0] = check.Summary();
}

void LastBackupForm::cmdSave_Click() {
  Dialogs& dialogs = session_.platform.GetDialogs();
  const auto file = dialogs.SaveFile({.title = {},
                                      .folder = {},
                                      .name = "Last Backup.txt",
                                      .filter = "Text Files (*.txt) | *.txt",
                                      .askOverwrite = true});
  if (!file) return;
  session_.platform.GetFiles().WriteFile(*file, TextOf(*session_.LastBackup(), Ended(), lines_));
  sb1.panels[0] = "Saved as " + file->Text();
}

void LastBackupForm::cmdClose_Click() {
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
