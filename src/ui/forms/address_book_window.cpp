// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/address_book_window.h"

#include <utility>

#include "core/refusal_message.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kSlotTip = "Click to select Address Book";
constexpr const char* kNewFileTip = "The path to the new Address Book (WAB) file will be shown here when changed.";
constexpr const char* kFilter = "Address Book (*.wab) | *.wab";
constexpr const char* kNoBookHere = "There is not a valid Address Book in this location";
constexpr const char* kEmptyLocation = "No changes were made, the location is empty";
constexpr const char* kNothingToSave = "No Address Book is set, so there is nothing to back up.";
constexpr const char* kNothingSaved = "No Address Book subkey has been backed up yet. No changes were made.";

}  // namespace

Form6::Form6(ProgramWindows& windows)
    : Form(windows.guard, "Form6", "Change Address Book"),
      Frame1(*this, "Frame1", "Single Address Book Change", "Make the change to the Address Book selected."),
      lblcurwablbl(*this, "lblcurwablbl", "Current Address Book:"),
      lblcurwabfile(*this, "lblcurwabfile", "", "This is the current default Address Book (WAB) file.."),
      lblPathWabLoc(*this, "lblPathWabLoc", "", "This is the path to the Address Book (WAB) file."),
      txtwabloc(*this, "txtwabloc"),
      lblNewAddBk(*this, "lblNewAddBk", "New Address Book:"),
      txtNewAddBk(*this, "txtNewAddBk", "", "Name of Address Book file."),
      cmdBrowse1(*this, "cmdBrowse1", "Browse", "Browse to new Address Book."),
      lblNewAddressBook(*this, "lblNewAddressBook", "", "New Address Book (WAB file will be shown here when changed."),
      lblPathNewWabLoc(*this, "lblPathNewWabLoc", "", kNewFileTip),
      cmdChangeWab(*this, "cmdChangeWab", "Make Change of Address Book",
                   "Click to select the above Address Book as default."),
      Frame3(*this, "Frame3", "Multiple Address Book Change"),
      Option1(*this, slots, "Option1", kNoneSelected, kSlotTip),
      Option2(*this, slots, "Option2", kNoneSelected, kSlotTip),
      Option3(*this, slots, "Option3", kNoneSelected, kSlotTip),
      Option4(*this, slots, "Option4", kNoneSelected, kSlotTip),
      Command1(*this, "Command1", "Add or Change an Address Book",
               "Click here to change the Address Book (WAB) files for quick selection."),
      Frame2(*this, "Frame2", "Backup and Restore the Address Book Subkey"),
      cmdmkbackup6(*this, "cmdmkbackup6", "Backup Address Book Subkey",
                   "This will backup (to the registry), the current Address Book subkey."),
      cmdRestore(*this, "cmdRestore", "Restore Address Book SubkeySubkey",
                 "This wll restore the Address Book to the save file and location."),
      txtRestore(*this, "txtRestore"),
      cmdClose(*this, "cmdClose", "Close", "Close this window."),
      sb1(*this, "sb1", 1),
      session_(windows.session),
      windows_(windows),
      book_(session_.platform, session_.store) {
  txtwabloc.readOnly = true;
  txtRestore.readOnly = true;
  txtwabloc.spokenName = "Path of the current address book";
  txtRestore.spokenName = "Restored address book";
  cmdClose.isCancel = true;
  cmdBrowse1.onClick = [this] { cmdBrowse1_Click(); };
  cmdChangeWab.onClick = [this] { cmdChangeWab_Click(); };
  const auto options = Options();
  for (std::size_t slot = 0; slot < options.size(); ++slot) {
    options[slot]->onClick = [this, slot] { Option_Click(slot); };
  }
  Command1.onClick = [this] { Command1_Click(); };
  cmdmkbackup6.onClick = [this] { cmdmkbackup6_Click(); };
  cmdRestore.onClick = [this] { cmdRestore_Click(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
  session_.slotsChanged.Connect([this] { ShowSlots(); });
}

LayoutNode Form6::Layout() {
  return Column({
      Group(Frame1, Column({
                        Grid(2, {1},
                             {Item(lblcurwablbl), Item(lblcurwabfile), Space(0), Item(lblPathWabLoc), Space(0),
                              Item(txtwabloc), Item(lblNewAddBk), Row({Item(txtNewAddBk, 1), Item(cmdBrowse1)}),
                              Space(0), Item(lblNewAddressBook), Space(0), Item(lblPathNewWabLoc)}),
                        Item(cmdChangeWab),
                    })),
      Group(Frame3,
            Column({Grid(2, {0, 1}, {Item(Option1), Item(Option2), Item(Option3), Item(Option4)}), Item(Command1)})),
      Group(Frame2, Column({Row({Item(cmdmkbackup6, 1), Item(cmdRestore, 1)}), Item(txtRestore)})),
      Space(),
      Row({Space(), Item(cmdClose)}),
      Item(sb1),
  });
}

void Form6::Open() {
  Show();
  Form_Activate();
}

void Form6::ShowSlots() {
  slots.Choose(nullptr);
  const auto options = Options();
  for (std::size_t slot = 0; slot < options.size(); ++slot) {
    options[slot]->caption = session_.Slots()[slot].value_or(kNoneSelected);
  }
}

void Form6::ShowCurrent(const WinPath& file) {
  lblcurwabfile.caption = NameFromFullPath(file.Text());
  lblPathWabLoc.caption = DirectoryFromFile(file.Text());
  txtNewAddBk.text = NameFromFullPath(file.Text());
}

void Form6::ShowNew(const WinPath& file) {
  lblNewAddressBook.caption = NameFromFullPath(file.Text());
  lblPathNewWabLoc.caption = DirectoryFromFile(file.Text());
}

/// Shows the address book that has become the one in use.
void Form6::ShowChanged(const std::string& outcome) {
  const WinPath file = book_.InUse();
  pending_.reset();
  txtwabloc.text = file.Text();
  ShowCurrent(file);
  ShowNew(file);
  sb1.panels[0] = outcome;
  session_.SetAddressBookFile(file);
}

void Form6::Tell(const char* text) {
  session_.platform.GetDialogs().Show({.text = text});
}

void Form6::Form_Activate() {
  const WinPath file = book_.InUse();
  txtwabloc.text = file.Text();
  ShowCurrent(file);
}

void Form6::Option_Click(std::size_t slot) {
  sb1.panels[0] = "";
  if (!session_.Slots()[slot]) return Tell(kNoBookHere);
  const auto file = book_.UseSlot(slot);
  if (!file) return Tell(kNoBookHere);
  if (!file->IsUsable()) return ShowRefusal(session_.platform.GetDialogs(), file->Refusal());
  ShowChanged("Change Complete");
}

void Form6::cmdBrowse1_Click() {
  Drives& drives = session_.platform.GetDrives();
  Dialogs& dialogs = session_.platform.GetDialogs();
  const DiskPath current = CheckAddressBook(drives, WinPath(DirectoryFromFile(book_.InUse().Text())));
  const auto chosen = dialogs.OpenFile(
      {.title = {}, .folder = current.IsUsable() ? current.Stored() : WinPath(), .name = {}, .filter = kFilter});
  if (!chosen) return;
  const DiskPath file(drives, *chosen);
  if (!file.IsUsable()) return ShowRefusal(dialogs, file.Refusal());
  pending_ = file.Stored();
  ShowCurrent(*pending_);
  ShowNew(*pending_);
  sb1.panels[0] = "Selection Made";
}

void Form6::cmdChangeWab_Click() {
  sb1.panels[0] = "";
  if (!pending_) return;
  if (txtNewAddBk.text->empty()) {
    txtNewAddBk.text = NameFromFullPath(book_.InUse().Text());
    return Tell(kEmptyLocation);
  }
  const WinPath file = *std::exchange(pending_, std::nullopt);
  book_.Use(file);
  txtwabloc.text = file.Text();
  sb1.panels[0] = "Change Complete";
  session_.SetAddressBookFile(file);
}

void Form6::Command1_Click() {
  Hide();
  windows_.form9.Open();
}

void Form6::cmdmkbackup6_Click() {
  sb1.panels[0] = "";
  if (!book_.SaveSetting()) return Tell(kNothingToSave);
  sb1.panels[0] = "Backup Complete";
}

void Form6::cmdRestore_Click() {
  sb1.panels[0] = "";
  const auto file = book_.RestoreSetting();
  txtRestore.text = file ? file->Stored().Text() : std::string();
  if (!file) return Tell(kNothingSaved);
  if (!file->IsUsable()) return ShowRefusal(session_.platform.GetDialogs(), file->Refusal());
  ShowChanged("Restore Complete");
}

void Form6::cmdClose_Click() {
  session_.IsOERuuning();
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
