#include "platform/offline/offline_shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "offline_fixture.h"

namespace quillbox {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct OfflineShellTest : CopyFixture {
  OfflineShellTest() {
    disk.File("Mail/Inbox.dbx", "inbox");
    disk.File("Mail/Sent.dbx", "sent");
  }
  bool Copy(const char* source, const char* target, bool noConfirm = false) {
    shell.CopyFile(
        {.source = WinPath(source), .target = WinPath(target), .noConfirm = noConfirm, .part = CopyPart::OnlyFile});
    return shell.FinishCopies().back().end == CopyEnd::Copied;
  }
  OfflineShell shell{files, facts, dialogs, log, disk / "opener"};
};

TEST_F(OfflineShellTest, CopiesLargeFilesUnderADisplayOfTheProgress) {
  const std::string large(3'500'000, 'x');
  disk.File("Mail/Large.dbx", large);
  EXPECT_TRUE(Copy("C:\\mail\\large.DBX", "C:\\bk\\Large.dbx"));
  EXPECT_EQ(disk.Read("bk/Large.dbx"), large);
  ASSERT_GE(dialogs.progress.size(), 5u);
  EXPECT_THAT(dialogs.progress[4].text, HasSubstr("large.DBX  (3.3 of 3.3 MB)"));
  EXPECT_EQ(dialogs.progress[4].done, large.size());
  EXPECT_EQ(dialogs.openProgressDisplays, 1);
  shell.EndCommand();
  EXPECT_EQ(dialogs.openProgressDisplays, 0);
}

TEST_F(OfflineShellTest, AsksBeforeItReplacesUntilTheCommandEnds) {
  disk.File("bk/Inbox.dbx", "older!");
  disk.File("bk/Sent.dbx", "2");
  dialogs.overwriteAnswers = {OverwriteAnswer::No, OverwriteAnswer::YesToAll};
  EXPECT_FALSE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk\\inbox.dbx"));
  EXPECT_EQ(disk.Read("bk/Inbox.dbx"), "older!");
  EXPECT_EQ(dialogs.overwriteQuestions.back().sourceSize, 5u);
  EXPECT_EQ(dialogs.overwriteQuestions.back().targetSize, 6u);
  EXPECT_TRUE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk\\inbox.dbx"));
  EXPECT_TRUE(Copy("C:\\Mail\\Sent.dbx", "C:\\bk\\")) << "a folder takes the file under its own name";
  EXPECT_EQ(disk.Read("bk/Inbox.dbx") + disk.Read("bk/Sent.dbx"), "inboxsent");
  shell.EndCommand();
  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel};
  EXPECT_FALSE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk"));
  EXPECT_FALSE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk\\New.dbx")) << "later copies of the command are cancelled too";
  shell.EndCommand();
  EXPECT_TRUE(Copy("C:\\Mail\\Sent.dbx", "C:\\bk\\inbox.dbx", true)) << "noConfirm asks nothing";
  EXPECT_THAT(Backups(), ElementsAre("Inbox.dbx", "Sent.dbx"));
}

TEST_F(OfflineShellTest, EachFailureNamesTheFileAndTheReason) {
  disk.Folder("bk/Sent.dbx");
  disk.File("Other/Link.dbx", "hostile");
  const TempFolder outside;
  std::filesystem::create_symlink(outside.File("bashrc", "secret"), disk / "Mail/Link.dbx");
  std::filesystem::create_directory_symlink(outside.Path(), disk / "out");
  const struct {
    const char *source, *target, *reason;
  } rows[] = {{"C:\\Mail\\Gone.dbx", "C:\\bk", "C:\\Mail\\Gone.dbx: the file cannot be found"},
              {"C:\\Mail", "C:\\bk", "C:\\Mail: it is a folder, not a file"},
              {"C:\\Mail\\Inbox.dbx", "C:\\none\\x", "C:\\none: there is no such folder"},
              {"C:\\Mail\\Inbox.dbx", "E:\\x", "E:\\: there is no such folder"},
              {"C:\\Mail\\Sent.dbx", "C:\\bk", "C:\\bk\\Sent.dbx: a folder of that name is in the way"},
              {"C:\\Mail\\Inbox.dbx", "C:\\bk\\AUX", "C:\\bk\\AUX: no file can have that name: AUX is a device name"},
              {"C:\\Mail\\Inbox.dbx", "C:\\mail\\INBOX.dbx",
               "C:\\mail\\INBOX.dbx: the source and the target are the same file"},
              {"C:\\Mail\\Link.dbx", "C:\\bk\\Copy.dbx", "C:\\Mail\\Link.dbx: it leads out of the disk"},
              {"C:\\out\\bashrc", "C:\\bk\\Copy.dbx", "C:\\out\\bashrc: it leads out of the disk"},
              {"C:\\Mail\\Sent.dbx", "C:\\Mail\\Link.dbx", "C:\\Mail\\Link.dbx: it leads out of the disk"},
              {"C:\\Mail\\Sent.dbx", "C:\\out\\new", "C:\\out\\new: it leads out of the disk"},
              {"C:\\Other\\Link.dbx", "C:\\Mail", "C:\\Mail\\Link.dbx: it leads out of the disk"}};
  for (const auto& row : rows) {
    EXPECT_FALSE(Copy(row.source, row.target));
    EXPECT_EQ(dialogs.LastMessage(), "Cannot copy " + WinPath(row.source).Name() + ".\n\n" + row.reason + ".");
  }
  EXPECT_EQ(dialogs.messages.back().title, "Error Copying File");
  EXPECT_EQ(dialogs.messages.size(), std::size(rows));
  EXPECT_EQ(disk.Read("Mail/Inbox.dbx"), "inbox");
  EXPECT_EQ(outside.Read("bashrc"), "secret");
  EXPECT_FALSE(std::filesystem::exists(disk / "bk/Copy.dbx"));
}

TEST_F(OfflineShellTest, AFileThatChangesMeanwhileIsCopiedAgainOrNotAtAll) {
  const auto source = disk.File("Mail/Inbox.dbx", std::string(2'000'000, 'a'));
  int changes = 1;
  dialogs.onProgress = [&](const ScriptedDialogs::ProgressShown& shown) {
    if (shown.done > 0 && changes > 0) {
      --changes;
      std::ofstream(source, std::ios::app) << "more";
    }
    return true;
  };
  EXPECT_TRUE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk"));
  EXPECT_EQ(disk.Read("bk/Inbox.dbx"), std::string(2'000'000, 'a') + "more");

  changes = 1000;
  EXPECT_FALSE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk", true));
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("C:\\Mail\\Inbox.dbx: it changes while it is copied"));
  EXPECT_EQ(disk.Read("bk/Inbox.dbx"), std::string(2'000'000, 'a') + "more");
  EXPECT_THAT(Backups(), ElementsAre("Inbox.dbx"));
}

TEST_F(OfflineShellTest, ExploresOnlyFoldersAndNeverThroughAShell) {
  for (const char* missing : {"None Selected", "", "C:\\Mail\\Inbox.dbx", "Q:\\x"}) {
    shell.Explore(WinPath(missing), "");
    EXPECT_EQ(dialogs.LastMessage(), std::string("The path '") + missing + "' does not exist or is not a directory.");
  }
  shell.Explore(WinPath("C:\\a\n\nb"), "");
  EXPECT_EQ(dialogs.LastMessage(), "The path 'C:\\a\u240A\u240Ab' does not exist or is not a directory.");
  disk.Folder("$(touch x); it's");
  shell.Explore(WinPath("C:\\$(touch x); it's"), "");
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr((disk / "$(touch x); it's").string())) << "there is no file manager";

  const auto opener = disk.File("opener", "#!/bin/sh\nprintf '%s' \"$#$1\" > " + (disk / "out.new").string() + "\nmv " +
                                              (disk / "out.new").string() + " " + (disk / "out").string() + "\n");
  std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
  const std::size_t messages = dialogs.messages.size();
  shell.Explore(WinPath("c:\\$(TOUCH x); it's\\"), "/n,/e,/select x");
  for (int i = 0; i < 500 && disk.Read("out").empty(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_EQ(disk.Read("out"), "1" + (disk / "$(touch x); it's").string());
  shell.OpenUrl("file:///etc/passwd");
  EXPECT_EQ(dialogs.messages.size(), messages + 1);
}

}  // namespace
}  // namespace quillbox
