// The main window's way to the address book and the reports.
#include "addressbook/address_book.h"
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
  GetInputPaths();
}

void Form1::MoveWAB_Click() {
  sb1.panels[1] = "";
  const std::string file = program_.store.RegistryGetKeyValue(CurrentUser(kAddressBookKey), "").AsText();
  if (NameFromFullPath(file).empty()) {
    program_.platform.GetDialogs().Show({.text = kNoFileToMove, .icon = MessageIcon::Exclamation});
    return;
  }
  const std::string folder = BrowseForFolder(program_.platform.GetDialogs());
  if (folder.empty()) return;
  const auto refusal = AddressBook(program_.platform, program_.store).MoveTo(folder);
  if (refusal) return TellRefusal(program_, *refusal);
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
  Dialogs& dialogs = program_.platform.GetDialogs();
  if (!program_.searchPerformed) dialogs.Show({.text = kSearchFirst});
  const WinPath folder(program_.backupFolder.Get());
  const auto file =
      dialogs.SaveFile({.title = {}, .folder = folder, .name = name, .filter = filter, .askOverwrite = true});
  if (!file) return;
  IdentityReportFacts facts = {
      .created = GeneralDate(program_.store, program_.platform.GetClock().Now()),
      .identities = program_.catalogue.identities,
      .defaultUsername = Label10.caption,
      .defaultUserId = Label9.caption,
      .addressBookFile = txtwabloc.text,
      .selectedFolder = inpth1.text,
      .fileType = windows_.form2.cboFileType.text,
      .foundFiles = {},
  };
  const ListView& found = windows_.form2.lvFiles;
  for (std::size_t row = 0; row < found.RowCount(); ++row) facts.foundFiles.push_back(found.Text(row, 0));
  WriteReport(program_.platform.GetFiles(), program_.platform.GetSystemFacts(), *file,
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
