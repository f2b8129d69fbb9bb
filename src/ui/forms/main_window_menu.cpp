// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's menu bar and the commands that only route to another window or to the system.
#include "ui/forms/main_window.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

/// The program's page, which the Help menu names and opens.
constexpr const char* kWebAddress = "https://quillbox.example/";

}  // namespace

enum class MenuState { On, Off };

struct Form1::MenuRow {
  const char* path;  ///< captions, " > " between them
  const char* name;
  void (Form1::*handler)();
  MenuState state = MenuState::On;
};

const Form1::MenuRow Form1::kMenu[] = {
    {"&File > OE Report > Save &As Text", "SaveAs", &Form1::SaveAs_Click},
    {"&File > OE Report > Save As HTML", "SaveAsHTML", &Form1::SaveAsHTML_Click},
    {"&File > Open Another Disk...", "openDisk", &Form1::openDisk_Click},
    {"&File > E&xit", "Exit", &Form1::cmdExit_Click},
    {"Change > Change Address Book", "chAddBk", &Form1::chAddBk_Click},
    {"Change > Move Address Book", "MoveWAB", &Form1::MoveWAB_Click},
    {"&Tools > Backup Files > Address Book", "addBookFile", &Form1::addBookFile_Click},
    {"&Tools > Backup Files > DBX Files", "dbxFiles", &Form1::dbxFiles_Click},
    {"&Tools > Backup Folder > Make A New Backup Folder", "crtbkfldr2", &Form1::crtbkfldr2_Click},
    {"&Tools > Backup Folder > Open Backup Folder", "opnbkfldr", &Form1::opnbkfldr_Click},
    {"&Tools > Backup Folder > Set Existing Folder As Backup", "brbkfldr", &Form1::brbkfldr_Click},
    {"&Tools > Backup Identities > Current Selected Identity", "Identity", &Form1::Identity_Click},
    {"&Tools > Backup Identities > All Identities", "allIdentities", &Form1::allIdentities_Click, MenuState::Off},
    {"&Tools > Backup Registry Entries > Address Book ", "regAddBook", &Form1::regAddBook_Click},
    {"&Tools > Backup Registry Entries > Blocked Senders List", "blkSend", &Form1::blkSend_Click},
    {"&Tools > Backup Registry Entries > Dont Show Dialogs", "dntshowdlg", &Form1::dntshowdlg_Click},
    {"&Tools > Backup Registry Entries > HKLM Outlook Express", "expLMOE", &Form1::expLMOE_Click},
    {"&Tools > Backup Registry Entries > Message Rules", "msgRules", &Form1::msgRules_Click},
    {"&Tools > Backup Registry Entries > Internet Accounts Manager", "regIAM", &Form1::regIAM_Click},
    {"&Tools > Backup Registry Entries > Signatures", "sigs", &Form1::sigs_Click},
    {"&Tools > Restore Identities > Individual Identity", "resCurSelIdent", &Form1::resCurSelIdent_Click},
    {"&Tools > Restore Identities > All Identities", "resAllIdent", &Form1::resAllIdent_Click, MenuState::Off},
    {"&Tools > Restore Registry Entries > Address Book", "resAddBook", &Form1::resAddBook_Click},
    {"&Tools > Restore Registry Entries > Block Senders List", "resblkswnd", &Form1::resblkswnd_Click},
    {"&Tools > Restore Registry Entries > Dont Show Dialogs", "resdontshow", &Form1::resdontshow_Click},
    {"&Tools > Restore Registry Entries > HKLM Outlook Express", "resHKLMOE", &Form1::resHKLMOE_Click},
    {"&Tools > Restore Registry Entries > Internet Accounts Manager", "resIAM", &Form1::resIAM_Click},
    {"&Tools > Restore Registry Entries > Message Rules", "resMsgRules", &Form1::resMsgRules_Click},
    {"&Tools > Restore Registry Entries > Signatures", "resSigs", &Form1::resSigs_Click},
    {"&Tools > Restore Files > Address Book", "resWAB", &Form1::resWAB_Click},
    {"&Tools > Restore Files > DBX Files", "resDBX", &Form1::resDBX_Click},
    {"&Tools > Quickbackup - Selected Identity", "qbk", &Form1::qbk_Click},
    {"&Tools > Backup All Identities", "bkAll", &Form1::bkAll_Click, MenuState::Off},
    {"&Tools > Save Mail Rules to File", "svMailMsgRules", &Form1::svMailMsgRules_Click},
    {"&Tools > Save News Rules to File", "svNewsRules", &Form1::svNewsRules_Click},
    {"&Tools > Registry Entries", "regEntry", &Form1::regEntry_Click},
    {"&Tools > Miscellaneous Settings", "msc", &Form1::msc_Click},
    {"&Tools > Last Backup", "lastBackup", &Form1::lastBackup_Click},
    {"&Tools > Check Backup...", "checkBackup", &Form1::checkBackup_Click},
    {"Replace > {USER_ID}", "repUSERID", &Form1::repUSERID_Click, MenuState::Off},
    {"Replace > {USER_ID} String", "usrIDString", &Form1::usrIDString_Click},
    {"Replace > Change Startup Identity", "chgStartIdent", &Form1::chgStartIdent_Click},
    {"Replace > UserName", "chgIdentName", &Form1::chgIdentName_Click},
    {"Create > Create New Identity", "crtnewID", &Form1::crtnewID_Click},
    {"Create > Clone Identity", "CloneIdentity", &Form1::CloneIdentity_Click},
    {"Remove > Remove Identity", "remIdent", &Form1::remIdent_Click},
    {"Search", "Search", &Form1::Search_Click},
    {"Export > Mail...", "exportMail", &Form1::exportMail_Click},
    {"Export > Contacts...", "exportContacts", &Form1::exportContacts_Click},
    {"&Help > Manual", "manual", &Form1::manual_Click},
    {"&Help > Not Available Yet", "Notyet", &Form1::Notyet_Click},
    {"&Help > See: %WEB%", "mnuURL", &Form1::mnuURL_Click},
};

namespace {

std::vector<std::string> SplitPath(std::string path) {
  constexpr std::string_view kBetween = " > ";
  constexpr std::string_view kWeb = "%WEB%";
  if (const std::size_t at = path.find(kWeb); at != std::string::npos) path.replace(at, kWeb.size(), kWebAddress);
  std::vector<std::string> captions;
  std::size_t start = 0;
  for (std::size_t end; (end = path.find(kBetween, start)) != std::string::npos; start = end + kBetween.size()) {
    captions.push_back(path.substr(start, end - start));
  }
  captions.push_back(path.substr(start));
  return captions;
}

}  // namespace

void Form1::BuildMenu() {
  for (const MenuRow& row : kMenu) {
    MenuItem item{.path = SplitPath(row.path), .name = row.name, .enabled = row.state == MenuState::On, .onClick = {}};
    item.onClick = [this, handler = row.handler] { (this->*handler)(); };
    menuBar.Add(std::move(item));
  }
}

void Form1::openDisk_Click() {
  windows_.OpenAnotherDisk();
}

void Form1::cmdSearch_Click() {
  OpenSearch();
}

void Form1::Search_Click() {
  cmdSearch_Click();
}

void Form1::dbxFiles_Click() {
  OpenSearch();
}

void Form1::crtbkfldr2_Click() {
  sb1.panels[1] = "";
  windows_.form3.OpenFrom(*this);
}

void Form1::brbkfldr_Click() {
  sb1.panels[1] = "";
  const auto folder = BrowseForFolder(session_.platform.GetDialogs());
  if (folder && session_.ChooseBackupFolder(folder)) session_.LookAt(session_.backupFolder.Get());
}

void Form1::opnbkfldr_Click() {
  sb1.panels[1] = "";
  if (session_.backupFolder.Probe() == probe::kMissing) {
    session_.platform.GetDialogs().Show({.text = "Backup Folder Has Not Been Set"});
    return;
  }
  session_.platform.GetShell().Explore(WinPath(session_.backupFolder.Text()), "");
}

void Form1::qbk_Click() {
  cmdQuickBackup_Click();
}

void Form1::regEntry_Click() {
  windows_.form13.Open();
}

void Form1::msc_Click() {
  windows_.form12.Open();
}

void Form1::lastBackup_Click() {
  windows_.lastBackup.Open();
}

void Form1::checkBackup_Click() {
  windows_.checkBackup.Open();
}

void Form1::exportMail_Click() {
  sb1.panels[1] = "";
  windows_.exportMail.Open();
}

void Form1::exportContacts_Click() {
  sb1.panels[1] = "";
  windows_.exportContacts.Open();
}

void Form1::manual_Click() {
  sb1.panels[1] = "";
  session_.platform.GetShell().OpenManual();
}

void Form1::mnuURL_Click() {
  sb1.panels[1] = "";
  session_.platform.GetShell().OpenUrl(kWebAddress);
}

}  // namespace quillbox
