// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/export_contacts_window.h"

#include "sample/address_book.h"
#include "support/host_tricks.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class ExportContactsTest : public SampleWindows {
 protected:
  ExportContactsForm& Open() {
    Start().menuBar.click("exportContacts");
    return windows->exportContacts;
  }
  /// Puts a book with `size` of its bytes on the disk and opens it with "From a File...".
  ExportContactsForm& OpenFile(std::size_t size) {
    const Bytes book = SampleAddressBook({.room = WabRoom::Least});
    onDisk.File("D/Old/ann.wab", {reinterpret_cast<const char*>(book.data()), std::min(size, book.size())});
    ExportContactsForm& form = Open();
    dialogs.openFileAnswers = {WinPath("D:\\Old\\ann.wab")};
    form.cmdFromFile.click();
    return form;
  }
  void ExportTo(const std::optional<WinPath>& target) {
    dialogs.saveFileAnswers = {target};
    windows->exportContacts.cmdExport.click();
  }
};

TEST_F(ExportContactsTest, TheAddressBookInUseIsShownWithAllOfItChecked) {
  ExportContactsForm& form = Open();
  EXPECT_FALSE(windows->form1.visible);
  EXPECT_THAT(form.lblFile.caption.Get(), ::testing::EndsWith("\\Ann Miller.wab"));
  const std::size_t people = form.lvContacts.RowCount();
  EXPECT_EQ(form.lblCount.caption, std::to_string(people) + " contacts, 3 groups");
  EXPECT_EQ(form.lblNotExported.caption, "Not exported: 1 deleted record");
  EXPECT_FALSE(form.lstFaults.visible || form.lblFaults.visible);
  EXPECT_EQ(form.lvContacts.CheckedRows().size(), people);
  EXPECT_EQ(form.lvContacts.Text(0, 0), "Jürgen Größler");
  EXPECT_EQ(form.lvContacts.Text(0, 1), "jojo@example.org, loans@library.example, jürgen.größler@home.example");
  EXPECT_EQ(form.lvContacts.Text(0, 2), "Bücherfreunde, Köln, Everyone");
  form.escape();
  EXPECT_TRUE(windows->form1.visible && !form.visible);
}

TEST_F(ExportContactsTest, TheCheckedContactsAreWrittenInTheChosenFormat) {
  ExportContactsForm& form = OpenFile(SIZE_MAX);
  form.cmdDeselectAll.click();
  form.cmdExport.click();
  EXPECT_EQ(form.sb1.panels[0], "No contacts are checked");
  form.lvContacts.check(1, true);
  ExportTo(std::nullopt);
  EXPECT_EQ(form.sb1.panels[0], "") << "cancelled";
  ExportTo(WinPath("D:\\Old\\ann.vcf"));
  EXPECT_THAT(onDisk.Read("D/Old/ann.vcf"), HasSubstr("\r\nFN:Ben Okafor\r\n"));
  EXPECT_EQ(form.sb1.panels[0], "1 of 4 contacts and 2 of 3 groups written to D:\\Old\\ann.vcf");
  const char* const proposed[] = {"ann.vcf", "ann.csv", "ann.csv", "ann.ldif"};
  form.cmdSelectAll.click();
  for (std::size_t format = 0; format < form.cmbFormat.items->size(); ++format) {
    form.cmbFormat.pick(format);
    ExportTo(WinPath("D:\\Old\\out"));
    EXPECT_EQ(dialogs.saveFileDialogs.back().name, proposed[format]);
    EXPECT_TRUE(dialogs.saveFileDialogs.back().askOverwrite);
    EXPECT_THAT(onDisk.Read("D/Old/out"), HasSubstr("Ben Okafor"));
  }
  EXPECT_THAT(onDisk.Read("D/Old/out"), StartsWith("version: 1\n"));
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("4 contacts and 2 of 3 groups written to D:\\Old\\out.\n\n"));
}

TEST_F(ExportContactsTest, WhatIsDamagedIsListedAndNotCalledDone) {
  ExportContactsForm& form = OpenFile(2'000);
  EXPECT_TRUE(form.lstFaults.visible && form.lblFaults.visible);
  EXPECT_THAT(form.lstFaults.items->front(), StartsWith("ann.wab, offset 0x"));
  ExportTo(WinPath("D:\\Old\\ann.vcf"));
  EXPECT_THAT(form.sb1.panels[0].Get(), ::testing::EndsWith("; not all of the address book could be read"));
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("what could not be read is not in the file."));

  dialogs.messages.clear();
  const std::string shown = form.lblFile.caption;
  onDisk.File("D/Old/empty.wab");
  dialogs.openFileAnswers = {std::nullopt, WinPath("D:\\Old\\empty.wab"), WinPath("D:\\Old\\gone.wab")};
  for (int time = 0; time < 3; ++time) form.cmdFromFile.click();
  EXPECT_THAT(dialogs.Texts(), ElementsAre(HasSubstr("empty.wab, offset 0x0: it is not an address book"),
                                           StartsWith("The address book was not read: D:\\Old\\gone.wab: ")));
  EXPECT_EQ(form.lblFile.caption, shown) << "the one before stays";
}

TEST_F(ExportContactsTest, WithoutAnAddressBookItSaysWhyAndAFileCanBeChosen) {
  Store().SetKeyValue(kAddressBookKey, "", "", ValueType::Sz);
  ExportContactsForm& form = Open();
  EXPECT_EQ(form.lblFile.caption, "None");
  EXPECT_EQ(form.lblNotExported.caption, "The registry names no address book file.");
  EXPECT_FALSE(form.cmdExport.enabled || form.cmdSelectAll.enabled);
  form.close();
  EXPECT_EQ(OpenFile(SIZE_MAX).lvContacts.RowCount(), 4U);
  EXPECT_TRUE(form.cmdExport.enabled);
  onDisk.File("D/Old/ann.vcf", "old");
  NEEDS(FailingCalls);
  const FileSizeLimit full(256);
  ExportTo(WinPath("D:\\Old\\ann.vcf"));
  EXPECT_THAT(dialogs.LastMessage(), StartsWith("No file was written. D:\\Old\\ann.vcf: "));
  EXPECT_EQ(form.sb1.panels[0], "Nothing was written");
  EXPECT_EQ(onDisk.Read("D/Old/ann.vcf"), "old");
}

}  // namespace
}  // namespace quillbox
