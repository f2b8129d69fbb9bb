// SPDX-License-Identifier: GPL-3.0-or-later
// What the shell does: the copies of a command, also on disks with faults, and the file manager.
#include "platform/hosted/hosted_shell.h"

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "offline_fixture.h"
#include "platform/hosted/opener.h"
#include "support/faulty_copy_io.h"
#include "support/host_tricks.h"
#include "support/read_only_folder.h"
#include "support/scripted_dialogs.h"

namespace quillbox {
namespace {

/// A disk with messages in C:\Mail, an empty folder C:\bk for their backups, and what a shell needs.
struct CopyFixture : testing::Test, OfflineFixture {
  CopyFixture() { disk.Folder("bk"); }
  std::vector<std::string> Backups() const { return Names(disk / "bk"); }
  RegistryFacts facts;
  ScriptedDialogs dialogs;
};

constexpr std::uint64_t kInboxSize = 10'000;

/// That many bytes, of which none is a zero.
std::string Pattern(char first = 'A') {
  std::string text;
  for (std::uint64_t i = 0; i < kInboxSize; ++i) text += static_cast<char>(first + i % 23);
  return text;
}

/// A flush that takes that many milliseconds.
std::function<int(std::uint64_t)> Taking(int milliseconds) {
  return [milliseconds](std::uint64_t /*size*/) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    return 0;
  };
}

struct CopyCommandTest : CopyFixture {
  CopyCommandTest() {
    disk.File("Mail/Inbox.dbx", Pattern());
    disk.File("Mail/Sent.dbx", "sent");
    disk.File("Mail/Drafts.dbx", "drafts");
  }
  void Copy(const char* name) {
    shell.CopyFile({.source = WinPath("C:\\Mail").Join(name), .target = WinPath("C:\\bk"), .noConfirm = true});
  }
  /// "Inbox.dbx Copied", "Sent.dbx Failed: the disk is full" of every copy of the command, which ends.
  std::vector<std::string> EndCommand() {
    constexpr const char* kEnds[] = {"Copied", "KeptDamaged", "LeftOut", "NotReplaced", "Cancelled", "Failed"};
    std::vector<std::string> ends;
    for (const CopyResult& result : shell.FinishCopies()) {
      const std::string more = result.keptAs + result.reason;
      ends.push_back(result.source.Name() + " " + kEnds[static_cast<int>(result.end)] + (more.empty() ? "" : ": ") +
                     more);
    }
    shell.EndCommand();
    return ends;
  }
  std::vector<std::string> CopyAll() {
    for (const char* name : {"Inbox.dbx", "Sent.dbx", "Drafts.dbx"}) Copy(name);
    return EndCommand();
  }

  FaultyCopyIo& io = *new FaultyCopyIo;
  HostedShell shell{files, facts, dialogs, log, "", std::unique_ptr<CopyIo>(&io)};
};

TEST_F(CopyCommandTest, WhatCanBeReadIsKeptBesideTheGoodCopyAfterOneQuestion) {
  disk.File("bk/Inbox.dbx", "a good copy");
  io.unreadable = {{"Inbox.dbx", {{0x1234, 1}, {0x1500, 0x300}, {9'990, 10}}}, {"Sent.dbx", {{2, 1}}}};
  disk.File("Mail/Sent.dbx", Pattern());
  dialogs.messageAnswers = {MessageAnswer::Yes};
  EXPECT_THAT(CopyAll(), ElementsAre("Inbox.dbx KeptDamaged: Inbox (damaged).dbx",
                                     "Sent.dbx KeptDamaged: Sent (damaged).dbx", "Drafts.dbx Copied"));
  EXPECT_THAT(dialogs.LastMessage(), AllOf(HasSubstr("C:\\Mail\\Inbox.dbx cannot be read in full"),
                                           HasSubstr("at offset 0x1200"), HasSubstr("\"Inbox (damaged).dbx\"")));
  ASSERT_TRUE(dialogs.messages.back().words);
  EXPECT_EQ(dialogs.messages.back().buttons, MessageButtons::YesNoCancel);

  // A sector of 512 bytes for every bad place in it.
  std::string expected = Pattern();
  expected.replace(0x1200, 0x200, std::string(0x200, '\0'));
  expected.replace(0x1400, 0x400, std::string(0x400, '\0'));
  expected.replace(0x2600, 272, std::string(272, '\0'));
  EXPECT_EQ(disk.Read("bk/Inbox (damaged).dbx"), expected);
  EXPECT_EQ(disk.Read("bk/Inbox (damaged).txt"),
            "Inbox (damaged).dbx is a damaged copy of C:\\Mail\\Inbox.dbx.\r\n"
            "1808 of its 10000 bytes could not be read and are zeros in the copy:\r\n"
            "\r\n"
            "Offset, length in bytes\r\n"
            "0x00001200, 1536\r\n"
            "0x00002600, 272\r\n");
  EXPECT_EQ(disk.Read("bk/Inbox.dbx"), "a good copy");
  EXPECT_THAT(Backups(), ElementsAre("Drafts.dbx", "Inbox (damaged).dbx", "Inbox (damaged).txt", "Inbox.dbx",
                                     "Sent (damaged).dbx", "Sent (damaged).txt"));
  EXPECT_THAT(log.Text(), HasSubstr("C:\\bk\\Inbox (damaged).dbx; 1808 of 10000 bytes are missing"));
}

TEST_F(CopyCommandTest, ADamagedCopyReplacesNoneThatIsDifferent) {
  io.unreadable["Inbox.dbx"] = {{0, 1}};
  const auto keep = [&] {
    dialogs.messageAnswers = {MessageAnswer::Yes};
    Copy("Inbox.dbx");
    return EndCommand().at(0);
  };
  EXPECT_EQ(keep(), "Inbox.dbx KeptDamaged: Inbox (damaged).dbx");
  EXPECT_EQ(keep(), "Inbox.dbx KeptDamaged: Inbox (damaged).dbx") << "the same bytes are kept once";
  disk.File("Mail/Inbox.dbx", Pattern('B'));
  EXPECT_EQ(keep(), "Inbox.dbx KeptDamaged: Inbox (damaged 2).dbx");
  disk.File("Mail/Inbox.dbx", Pattern('C'));
  disk.File("bk/INBOX (Damaged 3).TXT", "the person's own");
  EXPECT_EQ(keep(), "Inbox.dbx KeptDamaged: Inbox (damaged 4).dbx");
  EXPECT_EQ(disk.Read("bk/Inbox (damaged).dbx").substr(512), Pattern().substr(512));
  EXPECT_EQ(disk.Read("bk/INBOX (Damaged 3).TXT"), "the person's own");
  EXPECT_EQ(Backups().size(), 7u);
}

TEST_F(CopyCommandTest, DamagedFilesAreLeftOutOrTheCommandCancelled) {
  io.unreadable = {{"Inbox.dbx", {{5000, 1}}}, {"Sent.dbx", {{0, 1}}}};
  dialogs.messageAnswers = {MessageAnswer::No};
  EXPECT_THAT(CopyAll(), ElementsAre("Inbox.dbx LeftOut", "Sent.dbx LeftOut", "Drafts.dbx Copied"));
  EXPECT_THAT(Backups(), ElementsAre("Drafts.dbx"));

  std::filesystem::remove(disk / "bk/Drafts.dbx");
  dialogs.messageAnswers = {MessageAnswer::Cancel};
  EXPECT_THAT(CopyAll(), ElementsAre("Inbox.dbx Cancelled: cancelled", "Sent.dbx Cancelled: cancelled",
                                     "Drafts.dbx Cancelled: cancelled"));

  // Nothing at all of this file can be read, and zeros alone are worth nothing.
  dialogs.messageAnswers = {MessageAnswer::Yes};
  Copy("Sent.dbx");
  EXPECT_THAT(EndCommand(), ElementsAre("Sent.dbx LeftOut"));
  EXPECT_THAT(Backups(), ElementsAre());
}

TEST_F(CopyCommandTest, CancelIsHeardBetweenTheRetries) {
  io.unreadable["Inbox.dbx"] = {{0, 8192}};
  dialogs.messageAnswers = {MessageAnswer::Yes};
  dialogs.onProgress = [](const ScriptedDialogs::ProgressShown& shown) { return shown.done < 1024; };
  Copy("Inbox.dbx");
  EXPECT_THAT(EndCommand(), ElementsAre("Inbox.dbx Cancelled: cancelled"));
  EXPECT_EQ(dialogs.progress.back().done, 1024u);
  EXPECT_THAT(Backups(), ElementsAre());
}

TEST_F(CopyCommandTest, AFullDamagedPlaceLeavesNeitherCopyNorList) {
  io.unreadable["Inbox.dbx"] = {{0, 1}};
  io.onFlush = [](std::uint64_t size) { return size == kInboxSize ? ENOSPC : 0; };
  dialogs.messageAnswers = {MessageAnswer::Yes, MessageAnswer::Yes};
  Copy("Inbox.dbx");
  EXPECT_THAT(EndCommand(), ElementsAre("Inbox.dbx Failed: the disk is full"));
  EXPECT_THAT(Backups(), ElementsAre());
}

TEST_F(CopyCommandTest, APlaceThatTakesNothingIsOneQuestion) {
  const struct {
    int createError, writeError;
    const char* reason;
  } rows[] = {{0, ENOSPC, "the disk is full"},
              {0, QuotaErrno(), "the space that you may use on the disk is full"},
              {EROFS, 0, "the disk is read-only"}};
  for (const auto& row : rows) {
    if (row.createError == 0 && row.writeError == 0) continue;
    io.createError = row.createError;
    io.writeError = row.writeError;
    const std::string because = std::string(": ") + row.reason;
    dialogs.messageAnswers = {MessageAnswer::No};
    EXPECT_THAT(CopyAll(), ElementsAre("Inbox.dbx Failed" + because, "Sent.dbx Cancelled" + because,
                                       "Drafts.dbx Cancelled" + because));
    EXPECT_EQ(dialogs.LastMessage(), "Cannot copy Inbox.dbx.\n\nC:\\bk\\Inbox.dbx" + because +
                                         ".\n\nDo you want to stop copying, or to go on with the other files?");
    EXPECT_THAT(Backups(), ElementsAre());
  }
  // Somebody who went on after a missing file is asked again when the disk is full, and not about the next file.
  io.createError = io.writeError = 0;
  Copy("Sent.dbx");
  dialogs.messageAnswers = {MessageAnswer::Yes, MessageAnswer::Yes};
  Copy("Gone.dbx");
  io.writeError = ENOSPC;
  for (const char* name : {"Inbox.dbx", "Lost.dbx", "Drafts.dbx"}) Copy(name);
  EXPECT_THAT(
      EndCommand(),
      ElementsAre("Sent.dbx Copied", "Gone.dbx Failed: the file cannot be found", "Inbox.dbx Failed: the disk is full",
                  "Lost.dbx Failed: the file cannot be found", "Drafts.dbx Failed: the disk is full"));
  EXPECT_THAT(log.Text(), HasSubstr("C:\\Mail\\Drafts.dbx: C:\\bk\\Drafts.dbx: the disk is full"));
}

TEST_F(CopyCommandTest, AFolderWithoutTheRightToWriteIsNamed) {
  NEEDS(Modes);
  const ReadOnlyFolder readOnly(disk, "bk");
  dialogs.messageAnswers = {MessageAnswer::No};
  EXPECT_EQ(CopyAll().at(0), "Inbox.dbx Failed: you may not write to the folder");
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("C:\\bk: you may not write to the folder."));
}

TEST_F(CopyCommandTest, AFlushThatFailsIsToldForItsOwnFileWhileTheNextIsCopied) {
  disk.File("bk/Inbox.dbx", "earlier");
  std::promise<void> nextIsRead;
  io.onFlush = [&, waited = nextIsRead.get_future().share()](std::uint64_t size) {
    if (size != kInboxSize) return 0;
    waited.wait();
    return EIO;
  };
  dialogs.onProgress = [&](const ScriptedDialogs::ProgressShown& shown) {
    if (shown.text.starts_with("Sent.dbx") && shown.done == 4) nextIsRead.set_value();
    return true;
  };
  dialogs.messageAnswers = {MessageAnswer::Yes};
  EXPECT_THAT(CopyAll(), ElementsAre("Inbox.dbx Failed: Input/output error", "Sent.dbx Copied", "Drafts.dbx Copied"));
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("C:\\bk\\Inbox.dbx: Input/output error"));
  EXPECT_EQ(disk.Read("bk/Inbox.dbx"), "earlier");
  EXPECT_THAT(Backups(), ElementsAre("Drafts.dbx", "Inbox.dbx", "Sent.dbx"));
}

TEST_F(CopyCommandTest, ANameAppearsAfterTheFlushAndNoMoreThanTwoFilesAreOnTheirWay) {
  std::atomic<int> open{0}, most{0}, named{0};
  io.onFlush = [&](std::uint64_t size) {
    most = std::max(most.load(), ++open);
    Taking(20)(size);
    if (size == kInboxSize && std::filesystem::exists(disk / "bk/Inbox.dbx")) ++named;
    --open;
    return 0;
  };
  disk.File("Mail/Old.dbx", "old");
  for (const char* name : {"Inbox.dbx", "Sent.dbx", "Drafts.dbx", "Old.dbx"}) Copy(name);
  EXPECT_THAT(EndCommand(), ElementsAre("Inbox.dbx Copied", "Sent.dbx Copied", "Drafts.dbx Copied", "Old.dbx Copied"));
  EXPECT_EQ(named, 0);
  EXPECT_LE(most, 2);
}

TEST_F(CopyCommandTest, ADiskThatIsFullOfFilesOnTheirWayIsTriedAgain) {
  std::atomic<bool> full{false};
  std::promise<void> tried;
  io.onFlush = [&](std::uint64_t size) {
    if (size == kInboxSize) tried.get_future().wait();
    full = false;
    return 0;
  };
  io.onWrite = [&] {
    const bool isFull = full;
    if (isFull) tried.set_value();
    return isFull ? ENOSPC : 0;
  };
  Copy("Inbox.dbx");
  full = true;
  Copy("Sent.dbx");
  EXPECT_THAT(EndCommand(), ElementsAre("Inbox.dbx Copied", "Sent.dbx Copied"));
  EXPECT_EQ(disk.Read("bk/Sent.dbx"), "sent");
}

TEST_F(CopyCommandTest, AFileOnItsWayCountsAsThere) {
  disk.File("Other/INBOX.dbx", "another one");
  io.onFlush = Taking(100);
  Copy("Inbox.dbx");
  dialogs.overwriteAnswers = {OverwriteAnswer::No};
  shell.CopyFile({.source = WinPath("C:\\Other\\INBOX.dbx"), .target = WinPath("c:\\BK\\INBOX.dbx")});
  shell.CopyFile({.source = WinPath("C:\\bk\\Inbox.dbx"), .target = WinPath("C:\\bk\\Second.dbx")});
  EXPECT_THAT(EndCommand(), ElementsAre("Inbox.dbx Copied", "INBOX.dbx NotReplaced", "Inbox.dbx Copied"));
  EXPECT_EQ(disk.Read("bk/Second.dbx"), Pattern());
}

TEST_F(CopyCommandTest, CancelLeavesFinishedFilesAndWhatWasThere) {
  disk.File("bk/Sent.dbx", "earlier");
  io.onFlush = Taking(120);
  dialogs.onProgress = [](const ScriptedDialogs::ProgressShown& shown) { return !shown.text.starts_with("Sent.dbx"); };
  EXPECT_THAT(CopyAll(),
              ElementsAre("Inbox.dbx Copied", "Sent.dbx Cancelled: cancelled", "Drafts.dbx Cancelled: cancelled"));
  EXPECT_THAT(Backups(), ElementsAre("Inbox.dbx", "Sent.dbx"));
  EXPECT_EQ(disk.Read("bk/Inbox.dbx"), Pattern());
  EXPECT_EQ(disk.Read("bk/Sent.dbx"), "earlier");
}

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
  HostedShell shell{files, facts, dialogs, log, (disk / "opener").string()};
  Opener pages{dialogs, log, (disk / "opener").string()};
};

TEST_F(OfflineShellTest, CopiesLargeFilesUnderADisplayOfTheProgress) {
  const std::string large(3'500'000, 'x');
  disk.File("Mail/Large.dbx", large);
  dialogs.onProgress = [&](const auto&) { return dialogs.openProgressDisplays == 1; };
  EXPECT_TRUE(Copy("C:\\mail\\large.DBX", "C:\\bk\\Large.dbx"));
  EXPECT_EQ(disk.Read("bk/Large.dbx"), large);
  ASSERT_GE(dialogs.progress.size(), 5u);
  EXPECT_THAT(dialogs.progress[4].text, HasSubstr("large.DBX  (3.3 of 3.3 MB)"));
  EXPECT_EQ(dialogs.progress[4].done, large.size());
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
  NEEDS(Links);
  disk.Folder("bk/Sent.dbx");
  disk.File("Other/Link.dbx", "hostile");
  const TempFolder outside;
  std::filesystem::create_symlink(outside.File("bashrc", "secret"), disk / "Mail/Link.dbx");
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
              {"C:\\Mail\\Sent.dbx", "C:\\Mail\\Link.dbx", "C:\\Mail\\Link.dbx: it leads out of the disk"},
              {"C:\\Other\\Link.dbx", "C:\\Mail", "C:\\Mail\\Link.dbx: it leads out of the disk"}};
  for (const auto& row : rows) {
    EXPECT_FALSE(Copy(row.source, row.target));
    EXPECT_EQ(dialogs.LastMessage(), "Cannot copy " + WinPath(row.source).Name() + ".\n\n" + row.reason + ".");
  }
  EXPECT_EQ(dialogs.messages.back().title, "Error Copying File");
  EXPECT_EQ(dialogs.messages.size(), std::size(rows));
  EXPECT_EQ(disk.Read("Mail/Inbox.dbx"), "inbox");
  EXPECT_EQ(outside.Read("bashrc"), "secret");
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
  NEEDS(Scripts);
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

  const HostPath page(disk.File("manual.html", "").string());
  pages.OpenManual(page);
  for (int i = 0; i < 500 && !disk.Read("out").ends_with(".html"); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(disk.Read("out"), "1" + page.Text());
  EXPECT_EQ(dialogs.messages.size(), messages + 1);

  disk.File("opener", "#!/bin/sh\nexit 3\n");
  shell.Explore(WinPath("C:\\Mail"), "");
  EXPECT_EQ(dialogs.LastMessage(),
            "No file manager could be started. On this computer the folder is:\n\n" + (disk / "Mail").string());
  shell.OpenUrl("https://example.com/");
  EXPECT_EQ(dialogs.LastMessage(), "No browser could be started. The page is:\n\nhttps://example.com/");
  pages.OpenManual(page);
  EXPECT_EQ(dialogs.LastMessage(), "No browser could be started. On this computer the manual is:\n\n" + page.Text());
  disk.File("opener", "#!/bin/sh\nsleep 1.3\nexit 3\n");
  shell.Explore(WinPath("C:\\Mail"), "");
  EXPECT_EQ(dialogs.messages.size(), messages + 4) << "a browser that was open for a while has opened the page";
}

TEST_F(OfflineShellTest, AManualThatIsNotInstalledIsReportedWithItsPath) {
  disk.Folder("usr/bin");
  const HostPath programs((disk / "usr/bin").string());
  const HostPath installed = ManualOf(programs);
  EXPECT_EQ(installed.Name(), "manual.html");
  pages.OpenManual(installed);
  EXPECT_EQ(dialogs.LastMessage(),
            "The manual is not where this installation of Quillbox has it:\n\n" + installed.Text());
  disk.File("usr/bin/docs/manual.html", "");
  EXPECT_EQ(ManualOf(programs), programs / "docs" / "manual.html") << "as it was built, and on Windows";
}

}  // namespace
}  // namespace quillbox
