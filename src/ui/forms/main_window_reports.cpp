// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's way to the address book and the reports.
#include "addressbook/address_book.h"
#include "core/refusal_message.h"
#include "reports/general_date.h"
#include "reports/identity_report.h"
#include "ui/forms/main_window.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kSearchFirst =
    "If you are wanting to save the info including the dbx file names and locations, peform a search first.";
constexpr const char* kNoFileToMove = "There is no Address Book file to move. No changes were made.";

}  // namespace

void Form1::chAddBk_Click() {
  sb1.panels[1] = "";
  Hide();
  windows_.form6.Open();
  session_.GetInputPaths();
}

void Form1::MoveWAB_Click() {
  sb1.panels[1] = "";
  Dialogs& dialogs = session_.platform.GetDialogs();
  if (NameFromFullPath(ReadAddressBookFile(session_.store).Text()).empty()) {
    dialogs.Show({.text = kNoFileToMove, .icon = MessageIcon::Exclamation});
    return;
  }
  const auto folder = BrowseForFolder(dialogs, WinPath("C:\\"));  // it stays on the disk
  if (!folder) return;
  const auto refusal = AddressBook(session_.platform, session_.store).MoveTo(*folder);
  if (refusal) return ShowRefusal(dialogs, *refusal);
  ShowCopies();
  sb1.panels[0] = "Move Complete";
}

void Form1::SaveAs_Click() {
  SaveReport("Outlook Express Identity Info.txt", "Text Files (*.txt) | *.txt", ReportFormat::Text, " Report Complete");
}

void Form1::SaveAsHTML_Click() {
  SaveReport("Outlook Express Identity Info.htm", "Text Files (*.htm) | *.htm", ReportFormat::Html, " File Complete");
}

void Form1::SaveReport(const char* name, const char* filter, ReportFormat format, const char* outcome) {
  sb1.panels[1] = "";
  Dialogs& dialogs = session_.platform.GetDialogs();
  if (!session_.search.performed) dialogs.Show({.text = kSearchFirst});
  const WinPath folder = session_.backupFolder.Get().value_or(WinPath());
  const auto file =
      dialogs.SaveFile({.title = {}, .folder = folder, .name = name, .filter = filter, .askOverwrite = true});
  if (!file) return;
  IdentityReportFacts facts =
      FactsOf(session_.Catalogue(), GeneralDate(session_.store, session_.platform.GetClock().Now()));
  facts.selectedFolder = session_.Selected() ? session_.Selected()->FolderText() : std::string();
  facts.fileType = session_.search.pattern;
  const FoundFiles& found = session_.search.found;
  for (std::size_t row = 0; row < found.Count(); ++row) facts.foundFiles.push_back(found.Name(row));
  WriteReport(session_.platform.GetFiles(), session_.platform.GetSystemFacts(), *file,
              MakeIdentityReport(facts, format));
  sb1.panels[0] = file->Text() + outcome;
}

void Form1::svMailMsgRules_Click() {
  windows_.form10.Open();
}

void Form1::svNewsRules_Click() {
  windows_.form11.Open();
}

}  // namespace quillbox
