// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/select_address_books_window.h"

#include <algorithm>

#include "core/file_helpers.h"
#include "core/refusal_message.h"
#include "text/unicode.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kEmptySlots = "No address book is selected. Empty all four slots?";
constexpr const char* kTooMany =
    "You have selected more than four WAB files. The last ones selected will not be added.";

}  // namespace

Form9::Form9(ProgramWindows& windows)
    : Form(windows.guard, "Form9", "Select Address Books (.WAB)"),
      lblSelect9(*this, "lblSelect9", "Select Up To Four WAB Files To Switch Between."),
      txtOutPath3(*this, "txtOutPath3", "", "WAB folder."),
      cmdBrowse1(*this, "cmdBrowse1", "Browse", "Browse to folder containing WAB files. "),
      lstFiles9(*this, "lstFiles9", "Click to select then press the Select WABs button to make changes."),
      cmdSelWABs(*this, "cmdSelWABs", "Select WABs", "Click here to select the WAB files."),
      cndClose9(*this, "cndClose9", "Close", "Close this window."),
      session_(windows.session),
      windows_(windows),
      book_(session_.platform, session_.store) {
  txtOutPath3.readOnly = true;  // the list shows this folder
  txtOutPath3.spokenName = "Folder of the address books";
  lstFiles9.spokenName = "Address books in the folder";
  cndClose9.isCancel = true;
  cmdBrowse1.onClick = [this] { cmdBrowse1_Click(); };
  cmdSelWABs.onClick = [this] { cmdSelWABs_Click(); };
  cndClose9.onClick = [this] { cndClose9_Click(); };
  session_.slotsLoaded.Connect([this] { txtOutPath3.text = session_.AddressBookFolder().Text(); });
}

LayoutNode Form9::Layout() {
  return Column({
      Item(lblSelect9),
      Row({Item(txtOutPath3, 1), Item(cmdBrowse1)}),
      Item(lstFiles9, 1),
      Row({Item(cmdSelWABs, 1), Item(cndClose9, 1)}),
  });
}

void Form9::Open() {
  Show();
  Form_Activate();
}

void Form9::Form_Activate() {
  const WinPath folder(DirectoryFromFile(book_.InUse().Text()));
  txtOutPath3.text = folder.Text();
  lstFiles9.items = std::vector<std::string>{};
  if (!folder.Empty()) getem(CheckAddressBook(session_.platform.GetDrives(), folder));
}

void Form9::getem(const DiskPath& folder) {
  if (!folder.IsUsable()) return ShowRefusal(session_.platform.GetDialogs(), folder.Refusal());
  std::vector<std::string> names = FileList(session_.platform.GetFiles(), folder.Path().Join("*.wab"));
  std::erase(names, "");
  std::sort(names.begin(), names.end(),
            [](const std::string& a, const std::string& b) { return UpperCase(a) < UpperCase(b); });
  lstFiles9.items = std::move(names);
}

void Form9::cmdBrowse1_Click() {
  const auto folder = BrowseForFolder(session_.platform.GetDialogs(), WinPath("C:\\"));
  if (!folder) return;
  const DiskPath chosen(session_.platform.GetDrives(), *folder);
  if (chosen.IsUsable()) txtOutPath3.text = folder->Text();
  getem(chosen);
}

/// Asks where there is something to lose.
bool Form9::MayEmptySlots() {
  if (session_.Slots() == SlotNames()) return true;
  return session_.platform.GetDialogs().Show({.text = kEmptySlots,
                                              .buttons = MessageButtons::YesNo,
                                              .icon = MessageIcon::Question,
                                              .noIsDefault = true}) == MessageAnswer::Yes;
}

void Form9::cmdSelWABs_Click() {
  const std::vector<std::size_t>& selected = lstFiles9.selected;
  if (selected.size() > kSlotCount) {
    session_.platform.GetDialogs().Show({.text = kTooMany});
    return deselect();
  }
  if (selected.empty() && !MayEmptySlots()) return;
  SlotFiles files;
  SlotNames names;
  for (std::size_t slot = 0; slot < selected.size(); ++slot) {
    names[slot] = lstFiles9.items->at(selected[slot]);
    files[slot] = WinPath(txtOutPath3.text).Join(*names[slot]);
  }
  book_.FillSlots(files);
  session_.SetSlots(names);
}

void Form9::cndClose9_Click() {
  Hide();
  session_.IsOERuuning();
  windows_.form6.Open();
}

}  // namespace quillbox
