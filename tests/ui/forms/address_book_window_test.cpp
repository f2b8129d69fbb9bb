// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/address_book_window.h"

#include "support/sample_windows.h"

namespace quillbox {
namespace {

using ::testing::ElementsAre;

constexpr const char* kNotValid = "There is not a valid Address Book in this location";

class Form6Test : public SampleWindows {
 protected:
  void SetUp() override {
    MakeDisk();
    for (const char* name : {"a.wab", "b.wab", "c.wab", "d.wab", "e.wab", "notes.txt"}) {
      onDisk.File(std::string("D/Books/") + name, name);
    }
  }
  Form6& OpenForm6() {
    Start().menuBar.click("chAddBk");
    return windows->form6;
  }
  Form9& OpenForm9InBooks() {
    OpenForm6().Command1.click();
    dialogs.folderAnswers = {WinPath("D:\\Books")};
    windows->form9.cmdBrowse1.click();
    return windows->form9;
  }
  static void Select(Form9& form, std::initializer_list<const char*> names) {
    std::vector<std::size_t> lines;
    for (const char* name : names) {
      const auto& items = form.lstFiles9.items.Get();
      lines.push_back(static_cast<std::size_t>(std::find(items.begin(), items.end(), name) - items.begin()));
    }
    form.lstFiles9.choose(lines);
  }
  std::string Value(const char* name) { return Read(kAddressBookKey, name).AsText(); }
  std::vector<std::string> Slots() { return {Value("WAB0"), Value("WAB1"), Value("WAB2"), Value("WAB3")}; }
  std::vector<std::string> Captions() {
    const Form6& form = windows->form6;
    return {form.Option1.caption, form.Option2.caption, form.Option3.caption, form.Option4.caption};
  }
};

TEST_F(Form6Test, ABrowsedFileIsUsedOnlyWhenThePersonSaysSo) {
  Form6& form = OpenForm6();
  const std::string first = Value("");
  EXPECT_EQ(form.lblcurwabfile.caption, "Ann Miller.wab");
  EXPECT_EQ(form.lblPathWabLoc.caption.Get() + "Ann Miller.wab", first);
  form.cmdChangeWab.click();
  EXPECT_EQ(Value(""), first);

  dialogs.openFileAnswers = {std::nullopt, WinPath("D:\\Books\\b.wab")};
  form.cmdBrowse1.click();
  form.cmdBrowse1.click();
  EXPECT_EQ(dialogs.openFileDialogs[1].folder.Text() + "Ann Miller.wab", first);
  EXPECT_EQ(dialogs.openFileDialogs[1].filter, "Address Book (*.wab) | *.wab");
  EXPECT_EQ(form.sb1.panels[0], "Selection Made");
  EXPECT_EQ(form.txtNewAddBk.text, "b.wab");
  EXPECT_EQ(form.lblPathNewWabLoc.caption, "D:\\Books\\");
  EXPECT_EQ(Value(""), first);

  form.txtNewAddBk.type("");
  form.cmdChangeWab.click();
  EXPECT_EQ(dialogs.LastMessage(), "No changes were made, the location is empty");
  EXPECT_EQ(form.txtNewAddBk.text, "Ann Miller.wab");
  form.cmdChangeWab.click();
  EXPECT_EQ(Value(""), "D:\\Books\\b.wab");
  EXPECT_EQ(form.sb1.panels[0], "Change Complete");
  EXPECT_EQ(windows->form1.txtwabloc.text, "D:\\Books\\b.wab");
  Store().SetKeyValue(kAddressBookKey, "", first, ValueType::Sz);
  form.cmdChangeWab.click();
  EXPECT_EQ(Value(""), first) << "an applied choice is not pending any more";
  form.close();
  EXPECT_TRUE(windows->form1.visible && !form.visible);
}

TEST_F(Form6Test, FourFilesAreRememberedAndSwitchedTo) {
  Form9& picker = OpenForm9InBooks();
  EXPECT_THAT(picker.lstFiles9.items.Get(), ElementsAre("a.wab", "b.wab", "c.wab", "d.wab", "e.wab"));
  Select(picker, {"a.wab", "c.wab"});
  picker.cmdSelWABs.click();
  const auto filled = Slots();
  EXPECT_THAT(filled, ElementsAre("D:\\Books\\a.wab", "D:\\Books\\c.wab", kNoneSelected, kNoneSelected));
  EXPECT_THAT(Captions(), ElementsAre("a.wab", "c.wab", kNoneSelected, kNoneSelected));
  Select(picker, {"a.wab", "b.wab", "c.wab", "d.wab", "e.wab"});
  picker.cmdSelWABs.click();
  EXPECT_THAT(dialogs.LastMessage(), testing::StartsWith("You have selected more than four"));
  EXPECT_TRUE(picker.lstFiles9.selected->empty());
  EXPECT_EQ(Slots(), filled);

  picker.close();
  Form6& form = windows->form6;
  EXPECT_TRUE(form.visible && !picker.visible);
  std::filesystem::remove(sample.driveD / "Books/c.wab");
  form.Option2.click();
  EXPECT_EQ(Value(""), filled[1]) << "a missing file is switched to all the same";
  EXPECT_EQ(form.lblcurwabfile.caption, "c.wab");
  EXPECT_EQ(form.sb1.panels[0], "Change Complete");
  EXPECT_EQ(windows->form1.txtwabloc.text, filled[1]);
  for (OptionButton* empty : {&form.Option3, &form.Option4}) {
    dialogs.messages.clear();
    empty->click();
    EXPECT_EQ(dialogs.LastMessage(), kNotValid);
    EXPECT_EQ(form.sb1.panels[0], "");
    EXPECT_EQ(Value(""), filled[1]);
  }
  form.Option1.click();
  EXPECT_EQ(Value(""), filled[0]);

  OpenDisk();
  windows->form1.Open();
  EXPECT_THAT(Captions(), ElementsAre("a.wab", "c.wab", kNoneSelected, kNoneSelected)) << "at the next start";
}

TEST_F(Form6Test, AFolderWithoutFilesEmptiesAllSlots) {
  Form9& picker = OpenForm9InBooks();
  Select(picker, {"a.wab"});
  picker.cmdSelWABs.click();
  dialogs.folderAnswers = {std::nullopt, WinPath("D:\\Backup")};
  picker.cmdBrowse1.click();
  EXPECT_EQ(picker.txtOutPath3.text, "D:\\Books");
  picker.cmdBrowse1.click();
  EXPECT_TRUE(picker.lstFiles9.items->empty());
  dialogs.messageAnswers = {MessageAnswer::No, MessageAnswer::Yes};
  picker.cmdSelWABs.click();
  EXPECT_EQ(Value("WAB0"), "D:\\Books\\a.wab");
  EXPECT_EQ(dialogs.LastMessage(), "No address book is selected. Empty all four slots?");
  picker.cmdSelWABs.click();
  EXPECT_THAT(Slots(), ::testing::Each(kNoneSelected));
  picker.cmdSelWABs.click();
  EXPECT_EQ(dialogs.messages.size(), 2U) << "nothing to lose any more";
}

TEST_F(Form6Test, TheSettingIsSavedAndRestored) {
  Form6& form = OpenForm6();
  EXPECT_THAT(Slots(), ::testing::Each("None Selected")) << "made at the start";
  const std::string first = Value("");
  form.cmdRestore.click();
  EXPECT_EQ(Value(""), first) << "nothing saved yet, and nothing lost";
  form.cmdmkbackup6.click();
  EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
  store->SetKeyValue(kAddressBookKey, "", "D:\\Books\\a.wab", ValueType::Sz);
  form.cmdRestore.click();
  EXPECT_EQ(Value(""), first);
  EXPECT_EQ(form.txtRestore.text, first);
  EXPECT_EQ(form.sb1.panels[0], "Restore Complete");
  store->SetKeyValue(kAddressBookKey, "", "", ValueType::Sz);
  form.cmdmkbackup6.click();
  EXPECT_THAT(dialogs.LastMessage(), testing::StartsWith("No Address Book is set"));
}

TEST_F(Form6Test, TheMoveCommandAsksForAFolderAndNeedsAFile) {
  const MenuBar& menu = Start().menuBar;
  const std::string first = Value("");
  dialogs.folderAnswers = {std::nullopt, WinPath("D:\\")};
  menu.click("MoveWAB");
  EXPECT_EQ(Value(""), first);
  menu.click("MoveWAB");
  EXPECT_EQ(Value(""), "D:\\Ann Miller.wab");
  EXPECT_TRUE(std::filesystem::exists(sample.driveD / "Ann Miller.wab"));
  EXPECT_EQ(windows->form1.sb1.panels[0], "Move Complete");
  EXPECT_EQ(windows->form1.txtwabloc.text, first) << "until the identities are loaded again";

  store->SetKeyValue(kAddressBookKey, "", "book.wab", ValueType::Sz);
  menu.click("MoveWAB");
  EXPECT_EQ(Value(""), "book.wab");
  ASSERT_EQ(dialogs.folderDialogs.size(), 2U);
  EXPECT_EQ(dialogs.folderDialogs[0].folder, WinPath("C:\\")) << "the file stays on the disk";
}

}  // namespace
}  // namespace quillbox
