#include "support/faulty_copy_io.h"
#include "support/file_size_limit.h"
#include "support/sample_ids.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kIamKey = "Software\\Microsoft\\Internet Account Manager\\Accounts";
constexpr const char* kWabKey = "Software\\Microsoft\\WAB";

class CompleteBackupTest : public SampleWindows {
 protected:
  using Files = std::map<std::string, std::string>;

  void SetUp() override {
    MakeDisk();
    form = &Start();
  }
  const IdentityInfo& Identity(const std::string& username) {
    return *std::find_if(Identities().begin(), Identities().end(),
                         [&](const IdentityInfo& identity) { return identity.username == username; });
  }
  std::filesystem::path StoreOf(const std::string& username) { return OnHost(Identity(username).FolderText()); }
  /// Names and bytes of a store's files, those which no backup takes left out.
  static Files FilesIn(const std::filesystem::path& folder) {
    Files files;
    for (const std::string& name : Names(folder)) {
      if (IsStoreFileToCopy(name, Pop3Uidl::Skip) && name.ends_with(".dbx")) files[name] = Content(folder / name);
    }
    return files;
  }
  void CancelAddressBookRestore() { dialogs.openFileAnswers = {std::nullopt}; }

  Form1* form = nullptr;
};

TEST_F(CompleteBackupTest, AllIdentitiesGetAFolderEachAndEmptyOnesNone) {
  platform->processes.commandLines.clear();
  form->cmdbkupall.click();
  EXPECT_EQ(form->sb1.panels[0], "Backup Complete");
  EXPECT_EQ(form->sb1.panels[1], std::string("2 Identities Backed Up; ") + kLeftOut);
  EXPECT_EQ(form->cmdbkupall.caption, "Backup All Identities Now");
  EXPECT_EQ(form->pointer, Pointer::Normal);
  EXPECT_EQ(Names(BackupFolderOnHost()), (std::vector<std::string>{"Büro", "Main Identity"}));
  for (const std::string username : {"Büro", "Main Identity"}) {
    std::vector<std::string> expected{"Ann Miller.wab",  "HKLMOutlookExpress.reg", "IAM.reg",
                                      username + ".reg", "SignaturesWinXP.reg",    "WAB.reg"};
    for (const auto& [name, content] : FilesIn(StoreOf(username))) expected.push_back(name);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(Names(BackupFolderOnHost() / username), expected);
    EXPECT_THAT(Content(BackupFolderOnHost() / username / "SignaturesWinXP.reg"), StartsWith("regf"));
  }
  EXPECT_EQ(platform->processes.commandLines.size(), 8u);
  EXPECT_EQ(platform->GetDrives().CurrentDirectory().Text(), kBackup);
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(CompleteBackupTest, WhatItSavedComesBackAsItWas) {
  const RegistrySnapshot identities = Snapshot(kIdentitiesKey);
  const RegistrySnapshot accounts = Snapshot(kIamKey);
  const RegistrySnapshot addressBook = Snapshot(kWabKey);
  const auto book = OnHost(form->txtwabloc.text);
  const std::string bookContent = Content(book);
  std::map<std::filesystem::path, Files> stores;
  for (const char* username : {"Main Identity", "Büro"}) stores[StoreOf(username)] = FilesIn(StoreOf(username));
  platform->processes.commandLines.clear();

  form->cmdComplete.click();
  EXPECT_EQ(form->sb1.panels[1], std::string("2 Identities Backed Up; ") + kLeftOut);
  EXPECT_EQ(Names(BackupFolderOnHost()),
            (std::vector<std::string>{"AddressBook.reg", "AllIdentities.reg", "Ann Miller.wab", "Büro", "IAM.reg",
                                      "Main Identity"}));
  EXPECT_THAT(Names(BackupFolderOnHost() / "Büro"), AllOf(Contains("Pop3uidl.dbx"), Not(Contains("IAM.reg"))));
  EXPECT_EQ(platform->processes.commandLines.front(),
            "regedit /s /e:A \"AllIdentities.reg\"  \"HKEY_CURRENT_USER\\Identities\\\"");

  const std::string keptFolder = windows->session.backupFolder.Text();
  for (const IdentityInfo& identity : Identities()) Store().DeleteKey(CurrentUser(IdentityKey(identity.userId)));
  for (const char* key : {kIamKey, kWabKey}) Store().DeleteKey(CurrentUser(key));
  for (const auto& [folder, files] : stores) std::filesystem::remove_all(folder);
  std::filesystem::remove(book);
  platform->EndCommand();
  OpenDisk();
  form = &windows->form1;
  form->Open();
  EXPECT_EQ(form->Label2.caption, "0");

  dialogs.openFileAnswers = {WinPath("D:\\Backup\\Ann Miller.wab")};
  dialogs.onProgress = [&](const auto& /*shown*/) {
    EXPECT_EQ(form->cmdRestore.caption, "Please Wait");
    EXPECT_EQ(form->pointer, Pointer::Hourglass);
    return true;
  };
  form->cmdRestore.click();
  EXPECT_EQ(form->cmdRestore.caption, "Complete Restore");
  EXPECT_EQ(form->pointer, Pointer::Normal);
  EXPECT_EQ(form->sb1.panels[0], "Restore Complete");
  EXPECT_EQ(form->sb1.panels[1], "");
  EXPECT_EQ(form->Label2.caption, "3");
  EXPECT_EQ(Snapshot(kIdentitiesKey), identities);
  EXPECT_EQ(Snapshot(kIamKey), accounts);
  EXPECT_EQ(Snapshot(kWabKey), addressBook);
  EXPECT_EQ(Content(book), bookContent);
  for (const auto& [folder, files] : stores) {
    EXPECT_EQ(FilesIn(folder), files);
    EXPECT_FALSE(std::filesystem::exists(folder / "Pop3uidl.dbx"));
  }
  EXPECT_EQ(windows->session.backupFolder.Text(), keptFolder);
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(CompleteBackupTest, WithoutABackupFolderEachStepSaysSo) {
  windows->session.backupFolder.Reset();
  form->cmdComplete.click();
  const std::string folder = "Please select a backup folder or create one from the Tools menu";
  EXPECT_EQ(dialogs.Texts(),
            (std::vector<std::string>{folder + ".", folder + " ", folder + ".", folder + ".", folder + "."}));
  dialogs.messages.clear();
  CancelAddressBookRestore();
  form->cmdRestore.click();
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_EQ(dialogs.LastMessage(), folder + ".");
  EXPECT_EQ(form->sb1.panels[0], "Address Book Import Complete");
}

TEST_F(CompleteBackupTest, ABackupFolderThatIsGoneIsToldOnce) {
  std::filesystem::remove_all(BackupFolderOnHost());
  form->cmdbkupall.click();
  EXPECT_EQ(form->sb1.panels[1], "");
  form->cmdComplete.click();
  ASSERT_EQ(dialogs.messages.size(), 2u);
  for (const Message& message : dialogs.messages) {
    EXPECT_THAT(message.text, HasSubstr("D:\\Backup: the folder does not exist"));
  }
  EXPECT_EQ(form->cmdbkupall.caption, "Backup All Identities Now");

  // A folder that holds no backup: three files are missing, and one message names them.
  std::filesystem::create_directories(BackupFolderOnHost());
  CancelAddressBookRestore();
  form->cmdRestore.click();
  ASSERT_EQ(dialogs.messages.size(), 3u);
  EXPECT_THAT(dialogs.LastMessage(),
              AllOf(HasSubstr("AllIdentities.reg"), HasSubstr("IAM.reg"), HasSubstr("AddressBook.reg")));
}

TEST_F(CompleteBackupTest, AnIdentityWhoseFolderCannotBeMadeIsNamedAndNotCounted) {
  SetUsername(Identity("Main Identity").userId, "..\\..\\x");
  windows->session.GetInputPaths();
  form->cmdbkupall.click();
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("The backup of \"..\\..\\x\" was not made"));
  EXPECT_EQ(form->sb1.panels[1], "1 Identities Backed Up");
  EXPECT_EQ(Names(BackupFolderOnHost()), std::vector<std::string>{"Büro"});
  EXPECT_FALSE(std::filesystem::exists(temp / "disk/x"));
}

TEST_F(CompleteBackupTest, OnlyStoresWithAKnownPlaceAreRestored) {
  form->cmdComplete.click();
  temp.File("disk/D/Backup/Guest/Inbox.dbx", "a store");
  temp.File("disk/D/Backup/Unknown/Inbox.dbx", "of nobody here");
  std::filesystem::remove(BackupFolderOnHost() / "AllIdentities.reg");
  SetUsername(Identity("Main Identity").userId, "..");
  std::filesystem::remove(StoreOf("Büro") / "Inbox.dbx");
  form->chkOverwrite.click();
  dialogs.messages.clear();
  CancelAddressBookRestore();
  form->cmdRestore.click();
  ASSERT_EQ(dialogs.messages.size(), 2u) << "the skipped identities, and the file that is missing";
  EXPECT_THAT(dialogs.messages[0].text, AllOf(HasSubstr("\"Guest\" " + kGuest + ": it was never started"),
                                              HasSubstr("\"..\" " + kMain + ": no folder can have its name")));
  EXPECT_THAT(Names(StoreOf("Büro")), Contains("Inbox.dbx"));
  EXPECT_EQ(Names(BackupFolderOnHost() / "Guest"), std::vector<std::string>{"Inbox.dbx"});
  EXPECT_EQ(form->sb1.panels[0], "Restore Complete");
}

TEST_F(CompleteBackupTest, IdentitiesOfOneNameShareAFolderAndLoseNothingUnasked) {
  for (const char* username : {"Main Identity", "Büro"}) SetUsername(Identity(username).userId, "Twin");
  windows->session.GetInputPaths();
  form->chkOverwrite.click();
  form->cmdbkupall.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("Several identities are named \"Twin\""));
  EXPECT_EQ(Names(BackupFolderOnHost()), std::vector<std::string>{"Twin"});
  EXPECT_EQ(form->sb1.panels[1], std::string("2 Identities Backed Up; ") + kLeftOut);

  const auto messages = OnHost(Identities()[0].FolderText());
  const Files before = FilesIn(messages);
  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel, OverwriteAnswer::Cancel};
  CancelAddressBookRestore();
  form->cmdRestore.click();
  EXPECT_EQ(FilesIn(messages)["Inbox.dbx"], before.at("Inbox.dbx"));
  EXPECT_THAT(dialogs.messages[dialogs.messages.size() - 2].text, HasSubstr("nothing says whose files"));
}

TEST_F(CompleteBackupTest, CancelOfAQuestionEndsItsStepOnly) {
  form->cmdComplete.click();
  std::filesystem::remove(BackupFolderOnHost() / "Main Identity/Inbox.dbx");
  form->chkOverwrite.click();
  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel};  // the address book file
  form->cmdComplete.click();
  EXPECT_EQ(FilesIn(BackupFolderOnHost() / "Main Identity").count("Inbox.dbx"), 1u);
  EXPECT_EQ(form->sb1.panels[0], "Backup Complete");
  EXPECT_THAT(form->sb1.panels[1].Get(),
              AllOf(StartsWith("2 Identities Backed Up; "), HasSubstr(" files copied: cancelled; ")));

  // Cancelled: the files of the first identity, then the address book file. The second identity is asked about again.
  form->chkOverwrite.click();
  std::filesystem::remove(BackupFolderOnHost() / "Büro/Inbox.dbx");
  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel, OverwriteAnswer::Cancel, OverwriteAnswer::YesToAll};
  form->cmdbkupall.click();
  EXPECT_EQ(FilesIn(BackupFolderOnHost() / "Büro").count("Inbox.dbx"), 1u);
}

TEST_F(CompleteBackupTest, TheTallyOfAllItsStepsFollowsThePrescribedCount) {
  auto io = std::make_unique<FaultyCopyIo>();
  io->createError = EROFS;
  platform->CopyWith(std::move(io));
  dialogs.messageAnswers = {MessageAnswer::Yes};
  form->cmdComplete.click();
  EXPECT_EQ(dialogs.messages.size(), 1u) << "one question for the address book and all stores";
  EXPECT_EQ(form->sb1.panels[0], "Backup Complete");
  EXPECT_THAT(form->sb1.panels[1].Get(),
              AllOf(StartsWith("2 Identities Backed Up; 0 of "), HasSubstr(" files copied: the disk is read-only; ")));
}

TEST_F(CompleteBackupTest, AFullDiskLeavesTheEarlierBackupAndTheStores) {
  form->cmdComplete.click();
  form->chkOverwrite.click();
  const Files saved = FilesIn(BackupFolderOnHost() / "Büro");
  const std::string signatures = Content(BackupFolderOnHost() / "Büro/SignaturesWinXP.reg");
  const auto messages = StoreOf("Büro");
  const Files before = FilesIn(messages);
  CancelAddressBookRestore();
  {
    const FileSizeLimit full(1024);
    dialogs.overwriteAnswers = {OverwriteAnswer::No};  // the address book file
    // The first file that is too large, here and in the restore.
    dialogs.messageAnswers = {MessageAnswer::Yes, MessageAnswer::No};
    form->cmdComplete.click();
    EXPECT_THAT(dialogs.LastMessage(), AllOf(StartsWith("Not everything was done:"), HasSubstr("AllIdentities.reg"),
                                             HasSubstr("SignaturesWinXP.reg")));
    form->cmdRestore.click();
  }
  EXPECT_EQ(FilesIn(BackupFolderOnHost() / "Büro"), saved);
  EXPECT_EQ(Content(BackupFolderOnHost() / "Büro/SignaturesWinXP.reg"), signatures);
  EXPECT_EQ(FilesIn(messages), before);
  EXPECT_EQ(form->sb1.panels[0], "Restore Complete");
  EXPECT_THAT(form->sb1.panels[1].Get(), EndsWith(" files copied: File too large"));
}

}  // namespace
}  // namespace quillbox
