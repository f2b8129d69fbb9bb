#include "ui/forms/select_address_books_window.h"

#include "core/file_helpers.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kTooMany =
    "You have selected more than four WAB files. The last ones selected will not be added.";

}  // namespace

Form9::Form9(Program& program, ProgramWindows& windows)
    : Form(program.guard, "Form9", "Select Address Books (.WAB)"),
      lblSelect9(*this, "lblSelect9", "Select Up To Four WAB Files To Switch Between."),
      txtOutPath3(*this, "txtOutPath3", "", "WAB folder."),
      cmdBrowse1(*this, "cmdBrowse1", "Browse", "Browse to folder containing WAB files. "),
      lstFiles9(*this, "lstFiles9", "Click to select then press the Select WABs button to make changes."),
      cmdSelWABs(*this, "cmdSelWABs", "Select WABs", "Click here to select the WAB files."),
      cndClose9(*this, "cndClose9", "Close", "Close this window."),
      program_(program),
      windows_(windows),
      book_(program.platform, program.store) {
  txtOutPath3.readOnly = true;  // the list shows this folder
  cmdSelWABs.isDefault = true;
  cndClose9.isCancel = true;
  cmdBrowse1.onClick = [this] { cmdBrowse1_Click(); };
  cmdSelWABs.onClick = [this] { cmdSelWABs_Click(); };
  cndClose9.onClick = [this] { cndClose9_Click(); };
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
  txtOutPath3.text = DirectoryFromFile(book_.InUse());
  lstFiles9.items = std::vector<std::string>{};
  if (!txtOutPath3.text->empty()) getem(CheckAddressBook(program_.platform.GetDrives(), txtOutPath3.text));
}

void Form9::getem(const DiskPath& folder) {
  if (!folder.IsUsable()) return TellRefusal(program_, folder.Refusal());
  std::vector<std::string> names = FileList(program_.platform.GetFiles(), folder.Path().Join("*.wab").Text());
  std::erase(names, "");
  lstFiles9.items = std::move(names);
}

void Form9::cmdBrowse1_Click() {
  const std::string folder = BrowseForFolder(program_.platform.GetDialogs());
  if (folder.empty()) return;
  const DiskPath chosen(program_.platform.GetDrives(), folder);
  if (chosen.IsUsable()) txtOutPath3.text = folder;
  getem(chosen);
}

void Form9::cmdSelWABs_Click() {
  const std::vector<std::size_t>& selected = lstFiles9.selected;
  if (selected.size() > kSlotCount) {
    program_.platform.GetDialogs().Show({.text = kTooMany});
    return deselect();
  }
  SlotFiles files;
  std::array<std::string, kSlotCount> captions = AddressBookSlots().captions;
  for (std::size_t slot = 0; slot < selected.size(); ++slot) {
    captions[slot] = lstFiles9.items->at(selected[slot]);
    files[slot] = WithBackslash(txtOutPath3.text) + captions[slot];
  }
  book_.FillSlots(files);
  windows_.form6.ShowSlots(captions);
}

void Form9::cndClose9_Click() {
  Hide();
  windows_.form1.IsOERuuning();
  windows_.form6.Open();
}

}  // namespace quillbox
