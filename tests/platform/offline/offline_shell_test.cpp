#include "platform/offline/offline_shell.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <chrono>
#include <thread>

#include "offline_fixture.h"
#include "platform/offline/host_file.h"
#include "support/file_size_limit.h"

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

TEST_F(OfflineShellTest, CopiesContentAndTime) {
  const std::string large(3'500'000, 'x');
  const auto source = disk.File("Mail/Large.dbx", large);
  const timespec times[2] = {{5, 0}, {1'000'000'000, 123'456'700}};
  utimensat(AT_FDCWD, source.c_str(), times, 0);
  EXPECT_TRUE(Copy("C:\\mail\\large.DBX", "C:\\bk\\Large.dbx"));
  EXPECT_EQ(disk.Read("bk/Large.dbx"), large);
  EXPECT_EQ(files.Stat(WinPath("C:\\bk\\large.dbx"))->modified, files.Stat(WinPath("C:\\Mail\\large.dbx"))->modified);
  ASSERT_GE(dialogs.progress.size(), 5u);
  EXPECT_THAT(dialogs.progress[4].text, HasSubstr("large.DBX  (3.3 of 3.3 MB)"));
  EXPECT_EQ(dialogs.progress[4].done, large.size());
  EXPECT_EQ(dialogs.openProgressDisplays, 1);
  shell.EndCommand();
  EXPECT_EQ(dialogs.openProgressDisplays, 0);

  EXPECT_TRUE(Copy("C:\\Mail\\Sent.dbx", "C:\\bk\\")) << "a folder takes the file under its own name";
  EXPECT_EQ(disk.Read("bk/Sent.dbx"), "sent");
}

TEST_F(OfflineShellTest, AsksBeforeItReplaces) {
  disk.File("bk/Inbox.dbx", "older!");
  dialogs.overwriteAnswers = {OverwriteAnswer::No, OverwriteAnswer::Yes};
  EXPECT_FALSE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk\\inbox.dbx"));
  EXPECT_EQ(disk.Read("bk/Inbox.dbx"), "older!");
  EXPECT_EQ(dialogs.overwriteQuestions.back().sourceSize, 5u);
  EXPECT_EQ(dialogs.overwriteQuestions.back().targetSize, 6u);
  EXPECT_TRUE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk\\inbox.dbx"));
  EXPECT_EQ(disk.Read("bk/Inbox.dbx"), "inbox");
  EXPECT_THAT(Backups(), ElementsAre("Inbox.dbx"));
  EXPECT_TRUE(Copy("C:\\Mail\\Sent.dbx", "C:\\bk\\inbox.dbx", true)) << "noConfirm asks nothing";
}

TEST_F(OfflineShellTest, YesToAllAndCancelHoldUntilTheCommandEnds) {
  disk.File("bk/Inbox.dbx", "1");
  disk.File("bk/Sent.dbx", "2");
  dialogs.overwriteAnswers = {OverwriteAnswer::YesToAll};
  EXPECT_TRUE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk"));
  EXPECT_TRUE(Copy("C:\\Mail\\Sent.dbx", "C:\\bk"));
  shell.EndCommand();
  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel};
  EXPECT_FALSE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk"));
  EXPECT_FALSE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk\\New.dbx")) << "later copies of the command are cancelled too";
  shell.EndCommand();
  EXPECT_TRUE(Copy("C:\\Mail\\Inbox.dbx", "C:\\bk\\New.dbx"));
}

TEST_F(OfflineShellTest, CancelWhileCopyingLeavesWhatWasThere) {
  disk.File("Mail/Large.dbx", std::string(3'000'000, 'x'));
  disk.File("bk/Large.dbx", "old");
  dialogs.onProgress = [](const ScriptedDialogs::ProgressShown& shown) { return shown.done < 2'000'000; };
  EXPECT_FALSE(Copy("C:\\Mail\\Large.dbx", "C:\\bk", true));
  EXPECT_FALSE(Copy("C:\\Mail\\Sent.dbx", "C:\\bk", true));
  EXPECT_EQ(disk.Read("bk/Large.dbx"), "old");
  EXPECT_THAT(Backups(), ElementsAre("Large.dbx"));
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(OfflineShellTest, EachFailureNamesTheFileAndTheReason) {
  disk.Folder("bk/Sent.dbx");
  const struct {
    const char *source, *target, *reason;
  } rows[] = {{"C:\\Mail\\Gone.dbx", "C:\\bk", "C:\\Mail\\Gone.dbx: the file cannot be found"},
              {"C:\\Mail", "C:\\bk", "C:\\Mail: it is a folder"},
              {"C:\\Mail\\Inbox.dbx", "C:\\none\\x", "C:\\none: there is no such folder"},
              {"C:\\Mail\\Inbox.dbx", "E:\\x", "E:\\: there is no such folder"},
              {"C:\\Mail\\Sent.dbx", "C:\\bk", "C:\\bk\\Sent.dbx: a folder of that name is in the way"},
              {"C:\\Mail\\Inbox.dbx", "C:\\bk\\AUX", "AUX is a device name"},
              {"C:\\Mail\\Inbox.dbx", "C:\\mail\\INBOX.dbx", "the source and the target are the same file"}};
  for (const auto& row : rows) {
    EXPECT_FALSE(Copy(row.source, row.target, true));
    EXPECT_THAT(dialogs.LastMessage(), HasSubstr(row.reason));
    EXPECT_THAT(dialogs.LastMessage(), HasSubstr("Cannot copy " + WinPath(row.source).Name()));
    EXPECT_EQ(dialogs.messages.back().title, "Error Copying File");
    EXPECT_EQ(dialogs.messages.back().icon, MessageIcon::Exclamation);
  }
  EXPECT_EQ(dialogs.messages.size(), std::size(rows));
  EXPECT_EQ(disk.Read("Mail/Inbox.dbx"), "inbox");
}

TEST_F(OfflineShellTest, AFullDiskLeavesTheEarlierBackup) {
  disk.File("Mail/Large.dbx", std::string(500'000, 'x'));
  disk.File("bk/Large.dbx", "earlier");
  {
    const FileSizeLimit full(100'000);
    EXPECT_FALSE(Copy("C:\\Mail\\Large.dbx", "C:\\bk", true));
  }
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("C:\\bk\\Large.dbx: File too large"));
  EXPECT_EQ(disk.Read("bk/Large.dbx"), "earlier");
  EXPECT_THAT(Backups(), ElementsAre("Large.dbx"));
}

TEST_F(OfflineShellTest, WhatAKilledCopyLeftIsRemovedByTheNextOne) {
  disk.File("bk/.quillbox-a1B2c3", "half a file");
  const auto inUse = disk.File("bk/.quillbox-d4E5f6", "another program's");
  const HostFd holder(open(inUse.c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(flock(holder.Get(), LOCK_EX), 0);
  disk.File("bk/.quillbox-notes.txt", "the person's own");
  EXPECT_TRUE(Copy("C:\\Mail\\Sent.dbx", "C:\\bk\\Sent.dbx"));
  EXPECT_FALSE(std::filesystem::exists(disk / "bk/.quillbox-a1B2c3"));
  EXPECT_TRUE(std::filesystem::exists(inUse));
  EXPECT_TRUE(std::filesystem::exists(disk / "bk/.quillbox-notes.txt"));
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
