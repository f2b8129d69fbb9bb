// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/export_mail_window.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "backup/backup_folder.h"
#include "core/disk_path.h"
#include "export/export_progress.h"
#include "export/export_report.h"
#include "export/mail_name.h"
#include "reports/general_date.h"
#include "text/error.h"
#include "text/message_text.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

using namespace std::chrono_literals;

/// Counting gives the window back after so long.
constexpr auto kCountedAtOnce = 20ms;
constexpr const char* kNoFolder = "No folder is checked, so there is nothing to export.";
constexpr const char* kNoTarget = "Please choose the folder to export to.";
constexpr const char* kNoIdentity = "No identity has mail here. \"From a Folder...\" takes any folder with .dbx files.";

enum Cell { kFolder, kMessages, kSize, kNote };

}  // namespace

ExportMailForm::ExportMailForm(ProgramWindows& windows)
    : Form(windows.guard, "ExportMail", "Export Mail"),
      lblIdentity(*this, "lblIdentity", "Mail of"),
      cmbIdentity(*this, "cmbIdentity", "", "The identity whose mail is exported."),
      cmdFromFolder(*this, "cmdFromFolder", "From a Folder...",
                    "Takes the message stores of any folder, such as a backup."),
      lblSource(*this, "lblSource"),
      lvFolders(*this, "lvFolders", {"Folder", "Messages", "Size", "Note"},
                [this](std::size_t row, std::size_t column) { return CellOf(row, column); }),
      lblTotal(*this, "lblTotal"),
      cmdSelectAll(*this, "cmdSelectAll", "Select All", "Checks all folders."),
      cmdDeselectAll(*this, "cmdDeselectAll", "Deselect All", "Unchecks all folders."),
      fraFormat(*this, "fraFormat", "Format"),
      optMbox(*this, formats, "optMbox", "Mailbox files, as Thunderbird has them",
              "For Thunderbird and most other mail programs."),
      optFiles(*this, formats, "optFiles", "One file for each message (.eml)",
               "For keeping, and for programs that take single messages."),
      optMaildir(*this, formats, "optMaildir", "Maildir", "For mail servers, mutt and others."),
      chkRecover(*this, "chkRecover", "Recover deleted and lost messages, into folders of their own",
                 "Searches the stores for messages that their index does not lead to."),
      chkMerge(*this, "chkMerge", "Merge copies of a folder into it, without doubles",
               "Copies are found beside the folder, in the backup folder and in the recycle bin."),
      lblTarget(*this, "lblTarget", "Export to"),
      txtTarget(*this, "txtTarget", "", "The folder that the mail is written to."),
      cmdBrowse(*this, "cmdBrowse", "Browse...", "Chooses the folder to export to."),
      cmdExport(*this, "cmdExport", "Export", "Exports the checked folders."),
      cmdOpenTarget(*this, "cmdOpenTarget", "Open Export Folder", "Shows the exported mail in the file manager."),
      cmdClose(*this, "cmdClose", "Close", "Close this window."),
      sb1(*this, "sb1", 1),
      session_(windows.session),
      windows_(windows) {
  formats.Choose(&optMbox);
  lvFolders.spokenName = "Mail folders";
  cmdExport.isDefault = true;
  cmdClose.isCancel = true;
  cmdOpenTarget.enabled = false;
  cmbIdentity.onClick = [this] { cmbIdentity_Click(); };
  cmdFromFolder.onClick = [this] { cmdFromFolder_Click(); };
  cmdSelectAll.onClick = [this] { lvFolders.SetAllChecked(true); };
  cmdDeselectAll.onClick = [this] { lvFolders.SetAllChecked(false); };
  chkMerge.onClick = [this] { chkMerge_Click(); };
  cmdBrowse.onClick = [this] { cmdBrowse_Click(); };
  cmdExport.onClick = [this] { cmdExport_Click(); };
  cmdOpenTarget.onClick = [this] { cmdOpenTarget_Click(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode ExportMailForm::Layout() {
  return Column({
      Row({Item(lblIdentity), Item(cmbIdentity, 1), Item(cmdFromFolder)}),
      Item(lblSource),
      Item(lvFolders, 1),
      Row({Item(lblTotal, 1), Item(cmdSelectAll), Item(cmdDeselectAll)}),
      Group(fraFormat, Column({Item(optMbox), Item(optFiles), Item(optMaildir)})),
      Item(chkRecover),
      Item(chkMerge),
      Row({Item(lblTarget), Item(txtTarget, 1), Item(cmdBrowse)}),
      Row({Item(cmdExport), Item(cmdOpenTarget), Space(), Item(cmdClose)}),
      Item(sb1),
  });
}

void ExportMailForm::Open() {
  Form_Load();
  windows_.ReplaceMainWindow(*this);
}

void ExportMailForm::Form_Load() {
  sb1.panels[0] = "";
  cmdOpenTarget.enabled = false;
  ListIdentities();
  const auto& selected = session_.Selected();
  const auto isSelected = [&](const IdentityInfo& identity) { return selected && identity.userId == selected->userId; };
  const auto found = std::find_if(identities_.begin(), identities_.end(), isSelected);
  if (identities_.empty()) return ShowNone(kNoIdentity);
  const IdentityInfo& shown = found == identities_.end() ? identities_.front() : *found;
  cmbIdentity.text = MailName(shown, identities_);
  ShowIdentity(shown);
}

void ExportMailForm::ShowNone(const std::string& why) {
  lvFolders.SetRowCount(0);
  folders_.reset();
  lblSource.caption = why;
  lblTotal.caption = "";
}

void ExportMailForm::ListIdentities() {
  identities_.clear();
  for (const IdentityInfo& identity : session_.Catalogue().identities) {
    if (identity.storeFolder) identities_.push_back(identity);
  }
  cmbIdentity.Clear();
  for (const IdentityInfo& identity : identities_) cmbIdentity.Add(MailName(identity, identities_));
  cmbIdentity.text = "";
}

void ExportMailForm::ShowIdentity(const IdentityInfo& identity) {
  FileSystem& files = session_.platform.GetFiles();
  const DiskPath folder = CheckStoreFolder(session_.platform.GetDrives(), identity.userId, *identity.storeFolder);
  if (!folder.IsUsable()) return ShowNone(folder.Refusal().Sentence());
  MailPlace place{MailName(identity, identities_), folder.Path(), RecycleBinsBeside(files, folder.Path())};
  if (const auto backup = session_.backupFolder.Get()) place.copies.push_back(backup->Join(identity.username));
  ShowPlace(std::move(place));
}

void ExportMailForm::ShowPlace(MailPlace place) {
  lblSource.caption = OneLine(place.folder.Text());
  folders_ = std::make_shared<FoundFolders>(session_.platform.GetFiles(), std::move(place), Page());
  folders_->Step();
  outcomes_.assign(folders_->All().size(), {});
  lvFolders.SetRowCount(folders_->All().size());
  CheckFolders();
  ShowTotal();
  session_.platform.GetDialogs().Meanwhile([this, counted = std::weak_ptr(folders_)] {
    const auto folders = counted.lock();
    return folders && CountSome(*folders);
  });
}

bool ExportMailForm::CountSome(FoundFolders& folders) {
  const auto end = std::chrono::steady_clock::now() + kCountedAtOnce;
  bool more = true;
  while (more && std::chrono::steady_clock::now() < end) more = folders.Step();
  lvFolders.RefreshTexts();
  ShowTotal();
  return more;
}

void ExportMailForm::FinishCounting() {
  while (folders_->Step()) {
  }
  lvFolders.RefreshTexts();
  ShowTotal();
}

void ExportMailForm::ShowTotal() {
  std::uint64_t messages = 0;
  std::uint64_t size = 0;
  bool counted = true;
  for (const FoundFolder& folder : folders_->All()) {
    messages += folder.messages;
    size += folder.size;
    counted = counted && folder.isCounted;
  }
  const std::string fault = folders_->ListFault().empty() ? "" : " - " + OneLine(folders_->ListFault());
  lblTotal.caption = std::to_string(folders_->All().size()) + " folders, " + std::to_string(messages) + " messages, " +
                     SizeText(size) + (counted ? "" : " (counting)") + fault;
}

void ExportMailForm::CheckFolders() {
  lvFolders.SetChecked(UsualChoice(*folders_, chkMerge.checked));
}

std::string ExportMailForm::CellOf(std::size_t row, std::size_t column) const {
  const FoundFolder& folder = folders_->All()[row];
  switch (column) {
    case kFolder:
      return std::string(folder.depth * 4, ' ') + OneLine(folder.folder.name);
    case kMessages:
      return folder.isCounted ? std::to_string(folder.messages) : "...";
    case kSize:
      return folder.store ? SizeText(folder.size) : "";
    default: {
      if (!outcomes_[row].empty()) return OneLine(outcomes_[row]);
      const std::string copy = folder.copyOf ? "copy of " + folders_->All()[*folder.copyOf].folder.name : "";
      const std::string where = folder.isElsewhere ? folder.store->Text() : "";
      std::string note;
      for (const std::string& part : {folder.fault, copy, where}) {
        if (!part.empty()) note += (note.empty() ? "" : ", ") + part;
      }
      return OneLine(note);
    }
  }
}

MailFormat ExportMailForm::Format() const {
  if (optFiles.IsChosen()) return MailFormat::Files;
  return optMaildir.IsChosen() ? MailFormat::Maildir : MailFormat::Mbox;
}

CodePage ExportMailForm::Page() {
  return CodePage(session_.platform.GetSystemFacts().CodePageNumber());
}

void ExportMailForm::Tell(const std::string& text, MessageIcon icon) {
  session_.platform.GetDialogs().Show({.text = text, .icon = icon});
}

void ExportMailForm::cmbIdentity_Click() {
  sb1.panels[0] = "";
  const auto index = cmbIdentity.Index();
  if (index && *index < identities_.size()) ShowIdentity(identities_[*index]);
}

void ExportMailForm::cmdFromFolder_Click() {
  const auto folder = BrowseForFolder(session_.platform.GetDialogs());
  if (!folder) return;
  sb1.panels[0] = "";
  cmbIdentity.text = "";
  const std::string name = folder->Name();
  ShowPlace({name.empty() ? "Mail" : name, *folder, {}});
}

void ExportMailForm::chkMerge_Click() {
  if (!folders_) return;
  std::vector<std::size_t> rows;
  for (std::size_t row = 0; row < folders_->All().size(); ++row) {
    const bool isCopy = folders_->All()[row].copyOf.has_value();
    if (isCopy ? chkMerge.checked.Get() : lvFolders.IsChecked(row)) rows.push_back(row);
  }
  lvFolders.SetChecked(rows);
}

void ExportMailForm::cmdBrowse_Click() {
  if (const auto folder = BrowseForFolder(session_.platform.GetDialogs())) txtTarget.text = folder->Text();
}

void ExportMailForm::cmdExport_Click() {
  if (!folders_ || lvFolders.CheckedRows().empty()) return Tell(kNoFolder, MessageIcon::Exclamation);
  const WinPath target(Trim(txtTarget.text.Get()));
  if (target.Empty()) return Tell(kNoTarget, MessageIcon::Exclamation);
  sb1.panels[0] = "";
  ExportResult result;
  {
    const BusyScope busy(*this, cmdExport);
    const auto progress = session_.platform.GetDialogs().ShowProgress("Exporting...");
    FinishCounting();
    result = ExportMail(session_.platform.GetFiles(), *folders_, Page(),
                        {.chosen = lvFolders.CheckedRows(),
                         .format = Format(),
                         .recover = chkRecover.checked,
                         .mergeCopies = chkMerge.checked,
                         .target = target},
                        *progress);
  }
  ShowResult(result);
}

void ExportMailForm::ShowResult(const ExportResult& result) {
  std::fill(outcomes_.begin(), outcomes_.end(), std::string());
  for (const FolderResult& folder : result.folders) outcomes_[folder.at] = OutcomeOf(folder);
  lvFolders.RefreshTexts();
  constexpr std::array<const char*, 3> kStatuses = {"All mail was exported", "NOT all mail was exported",
                                                    "The export was cancelled"};
  sb1.panels[0] = kStatuses[static_cast<std::size_t>(result.End())];
  const std::string saved = result.fault.empty() ? SaveResult(result) : "";
  cmdOpenTarget.enabled = result.fault.empty();
  Tell(SummaryOf(result, Trim(txtTarget.text.Get())) + saved,
       result.End() == ExportEnd::Complete ? MessageIcon::Information : MessageIcon::Exclamation);
}

/// Saves the report, and says where it is.
std::string ExportMailForm::SaveResult(const ExportResult& result) {
  const FileTime now = session_.platform.GetClock().Now();
  const WinPath target(Trim(txtTarget.text.Get()));
  const MailPlace& place = folders_->Place();
  const std::string text =
      ReportText(result, {place.name, place.folder.Text(), target.Text(), GeneralDate(session_.store, now)});
  try {
    const WinPath file = SaveReport(session_.platform.GetFiles(), target, now, text);
    return "\n\nWhat became of each folder is in " + OneLine(file.Text()) + ".";
  } catch (const Error& error) {
    return "\n\nThe report was not saved: " + Describe(error) + ".";
  }
}

void ExportMailForm::cmdOpenTarget_Click() {
  session_.platform.GetShell().Explore(WinPath(Trim(txtTarget.text.Get())), "");
}

void ExportMailForm::cmdClose_Click() {
  ShowNone("");
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
