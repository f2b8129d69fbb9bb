// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/export_report.h"
#include "export/export_test.h"
#include "export/message_set.h"

namespace quillbox {
namespace {

class ExportFaultsTest : public ExportTest {
 protected:
  static std::vector<std::string> AllNumbers(const ExportResult& result) {
    std::vector<std::string> lines;
    for (const FolderResult& folder : result.folders) lines.push_back(Numbers(folder));
    return lines;
  }
  /// The report's lines without what differs from run to run.
  std::string Report(const ExportResult& result) {
    return ReportText(result, {"Ann", "D:\\Stores", "D:\\Out", "1/2/2005 3:04:05 PM"});
  }
};

TEST_F(ExportFaultsTest, DeletedMessagesGoToAFolderOfTheirOwnWhenAsked) {
  std::vector<DbxMessage> mail = Mail(MailTopic::Inbox, 5);
  mail[1].deleted = mail[3].deleted = true;
  Put("Inbox.dbx", mail);
  ExportResult result = Export({.format = MailFormat::Files});
  EXPECT_EQ(result.End(), ExportEnd::Complete);
  EXPECT_THAT(
      SummaryOf(result, "D:\\Out"),
      EndsWith("2 messages that were deleted or lost can be recovered: choose to recover them, and export again.\n\n"
               "Something is wrong with the list of folders (Folders.dbx is not there), so some may be missing, or "
               "not where they were."));
  EXPECT_THAT(Names(Out() / "Ann"), ElementsAre("Inbox"));
  for (const int times : {2, 0}) {
    result = Export({.format = MailFormat::Files, .recover = true});
    EXPECT_EQ(result.folders[0].recovered.readBack, static_cast<unsigned>(times));
    EXPECT_EQ(OutcomeOf(result.folders[0]),
              times == 2 ? "0 written, 3 there before, 2 recovered" : "0 written, 3 there before");
  }
  EXPECT_THAT(Names(Out() / "Ann"), ElementsAre("Inbox", "Recovered from Inbox"));
  std::vector<std::string> recovered;
  for (const std::string& name : Names(Out() / "Ann/Recovered from Inbox")) {
    recovered.push_back(Content(Out() / "Ann/Recovered from Inbox" / PathOf(name)));
  }
  EXPECT_THAT(recovered, UnorderedElementsAre(mail[1].text, mail[3].text));
}

TEST_F(ExportFaultsTest, EveryMessageOfADamagedStoreHasAnEndAndAPlaceInTheReport) {
  std::vector<DbxMessage> mail = Mail(MailTopic::Inbox, 4);
  mail[0].text += std::string(2000, 'x') + "\r\n";
  Bytes damaged = MessageStore(mail);
  const auto at = [&](std::string_view text) {
    return static_cast<std::size_t>(std::search(damaged.begin(), damaged.end(), text.begin(), text.end()) -
                                    damaged.begin());
  };
  // The second segment of the first message loses its own offset, and the third message its first one.
  const std::size_t first = at(mail[0].text.substr(0, 500)) - 16;
  const std::size_t third = at(mail[2].text.substr(0, 100)) - 16;
  damaged[damaged[first + 12] + damaged[first + 13] * 256u + damaged[first + 14] * 65536u] ^= 0x40;
  damaged[third] ^= 0x40;
  Put("Inbox.dbx", damaged);
  const ExportResult result = Export({.format = MailFormat::Files});
  EXPECT_EQ(result.End(), ExportEnd::Incomplete);
  const FolderResult& folder = result.folders[0];
  EXPECT_EQ(Numbers(folder), "Inbox: ? in the list, 4 in the index, 2 written, 0 before, 2 read back");
  EXPECT_EQ(folder.Of(MessageEnd::Partly), 1U);
  EXPECT_EQ(folder.Of(MessageEnd::Unreadable), 1U);
  EXPECT_EQ(OutcomeOf(folder),
            "NOT COMPLETE, 2 of 4, 1 recovered: 1 message is there in part only, 1 message cannot be read");
  const std::string part = Names(Out() / "Ann/Recovered from Inbox").at(0);
  EXPECT_EQ(Content(Out() / "Ann/Recovered from Inbox" / PathOf(part)), mail[0].text.substr(0, 512));
  const std::string report = Report(result);
  EXPECT_THAT(report, StartsWith("\xEF\xBB\xBFMail of Ann, exported 1/2/2005 3:04:05 PM\r\n"
                                 "From D:\\Stores to D:\\Out\r\n\r\n"
                                 "NOT all mail was exported: 1 folder is not complete.\r\n"
                                 "2 of 4 messages are in D:\\Out. 1 is there in part only, 1 cannot be read.\r\n"));
  EXPECT_THAT(report, HasSubstr("\r\nInbox: NOT COMPLETE\r\n"
                                "  in the index 4, written 2, there before 0, read back 2\r\n"
                                "  In D:\\Out\\Ann\\Inbox\r\n"));
  EXPECT_THAT(report, HasSubstr("\"Supper on Saturday?\" is in part only: offset 0x"));
  EXPECT_THAT(report, HasSubstr("\"Your book is due\" is unreadable: offset 0x"));
}

TEST_F(ExportFaultsTest, ANumberThatDiffersIsNotHidden) {
  PutSample();
  std::vector<DbxMessage> mail = Mail(MailTopic::Choir, 29);
  Put("Choir.dbx", mail);
  std::filesystem::remove(onDisk / "D/Stores/Drafts.dbx");
  const ExportResult result = Export({.format = MailFormat::Maildir});
  EXPECT_EQ(result.End(), ExportEnd::Incomplete);
  EXPECT_EQ(OutcomeOf(result.folders[5]),
            "NOT COMPLETE, 29 of 30: Folders.dbx counts 30 messages, the store's index leads to 29");
  EXPECT_EQ(OutcomeOf(result.folders[4]),
            "NOT WRITTEN: D:\\Stores\\Drafts.dbx: there is no such file (while exporting messages)");
  EXPECT_TRUE(result.folders[0].IsComplete());
}

TEST_F(ExportFaultsTest, WhatCannotBeReadDoesNotStopTheOthers) {
  Put("Good.dbx", Mail(MailTopic::Inbox, 2));
  onDisk.File("D/Stores/Text.dbx", "not a store at all");
  const bool hasPipe = WhyNot(Trick::Pipes).empty();
  if (hasPipe) MakePipe(onDisk / "D/Stores/Pipe.dbx");
  const ExportResult result = Export({.format = MailFormat::Files});
  EXPECT_EQ(result.End(), ExportEnd::Incomplete);
  EXPECT_EQ(OutcomeOf(result.folders[0]), "2 written");
  for (std::size_t at = 1; at < result.folders.size(); ++at) {
    EXPECT_THAT(OutcomeOf(result.folders[at]), StartsWith("NOT WRITTEN: D:\\Stores\\"));
  }
  EXPECT_EQ(result.folders.size(), hasPipe ? 3U : 2U);
  EXPECT_THAT(Names(Out() / "Ann"), ElementsAre("Good"));
}

TEST_F(ExportFaultsTest, CopiesOfAFolderAreMergedWithoutDoublesWhenAsked) {
  const std::vector<DbxMessage> mail = Mail(MailTopic::Inbox, 6);
  const std::span all(mail);
  Put("Inbox.dbx", all.first(4));
  Put("Inbox (1).dbx", all.subspan(2, 3));
  onDisk.File("D/Backup/Inbox.dbx", Text(MessageStore(all.subspan(3, 3))));
  onDisk.File("D/Backup/Inbox.bak", "damaged");
  const std::vector<WinPath> copies = {WinPath("D:\\Backup")};
  ExportResult result = Export({.format = MailFormat::Files, .mergeCopies = true}, copies);
  ASSERT_EQ(result.folders.size(), 1U);
  EXPECT_EQ(Numbers(result.folders[0]), "Inbox: ? in the list, 10 in the index, 6 written, 4 before, 6 read back");
  EXPECT_EQ(OutcomeOf(result.folders[0]),
            "NOT COMPLETE, 10 of 10: D:\\Backup\\Inbox.bak was not read: it is not a store of messages");
  EXPECT_EQ(Names(Out() / "Ann/Inbox").size(), 6U);
  std::filesystem::remove_all(Out());
  result = Export({.format = MailFormat::Files}, copies);
  EXPECT_THAT(AllNumbers(result),
              ElementsAre("Inbox: ? in the list, 4 in the index, 4 written, 0 before, 4 read back",
                          "Inbox (1): ? in the list, 3 in the index, 3 written, 0 before, 3 read back",
                          "Inbox (copy): ? in the list, 0 in the index, 0 written, 0 before, 0 read back",
                          "Inbox (copy): ? in the list, 3 in the index, 3 written, 0 before, 3 read back"));
  EXPECT_THAT(Names(Out() / "Ann"), ElementsAre("Inbox", "Inbox (1)", "Inbox (copy) (2)"));
}

TEST_F(ExportFaultsTest, WhatOthersHaveAtTheTargetStaysAsItIs) {
  Put("Inbox.dbx", Mail(MailTopic::Inbox, 2));
  onDisk.File("D/Out/Ann.sbd/Inbox", "Dear diary, nothing here is mail.\n");
  EXPECT_THAT(OutcomeOf(Export().folders[0]),
              StartsWith("NOT WRITTEN: D:\\Out\\Ann.sbd\\Inbox: there is a file of this name that is not a mailbox"));
  EXPECT_EQ(Content(Out() / "Ann.sbd/Inbox"), "Dear diary, nothing here is mail.\n");
  // Mailbox files of other programs end in their own ways, and stay what they were to the last byte.
  for (const std::string end : {"", "\n", "\n\n", "\r\n", "\r\n\r\n"}) {
    const std::string old = "From - Wed Mar 17 10:11:12 2004\nSubject: old\n\nbody" + end;
    onDisk.File("D/Out/Ann.sbd/Inbox", old);
    const ExportResult result = Export();
    EXPECT_EQ(OutcomeOf(result.folders[0]), "2 written");
    const std::string now = Content(Out() / "Ann.sbd/Inbox");
    EXPECT_THAT(now, StartsWith(old));
    EXPECT_NE(now.find("\n\nFrom "), now.find("\n\r\nFrom ")) << now.substr(0, 200);
  }
  // Another program files a message while the export runs.
  const std::string before = Content(Out() / "Ann.sbd/Inbox");
  Put("Inbox.dbx", Mail(MailTopic::Inbox, 3));
  progress.onUpdate = [&] {
    std::ofstream(Out() / "Ann.sbd/Inbox", std::ios::app | std::ios::binary) << "x";
    return true;
  };
  EXPECT_THAT(OutcomeOf(Export({.shownEvery = {}}).folders[0]), HasSubstr("another program has changed it meanwhile"));
  EXPECT_THAT(Content(Out() / "Ann.sbd/Inbox"), StartsWith(before + "x"));
  EXPECT_EQ(Names(Out() / "Ann.sbd"), std::vector<std::string>{"Inbox"});
}

TEST_F(ExportFaultsTest, FoldersOfImpossibleNamesAndOfOneNameKeepApart) {
  std::vector<DbxFolder> folders = {{.id = 0, .name = "Outlook Express", .tree = 4},
                                    {.id = 1, .parent = 0, .name = "Local Folders", .tree = 3}};
  const char* const names[] = {"a/b:c", "A/B:C", "CON", "..", "x.eml", "Sent", "Sent Items", "n.sbd"};
  for (std::uint32_t i = 0; i < std::size(names); ++i) {
    const std::string file = "s" + std::to_string(i) + ".dbx";
    folders.push_back({.id = 10 + i,
                       .parent = 1,
                       .name = names[i],
                       .file = file,
                       .messages = 1,
                       .special = i == 6 ? 3u : 0u,
                       .tree = 3});
    Put(file, std::vector{Mail(MailTopic::Choir, i + 1).back()});
  }
  Put("Folders.dbx", FolderListFile(folders));
  for (const MailFormat format : {MailFormat::Mbox, MailFormat::Files, MailFormat::Maildir}) {
    std::filesystem::remove_all(Out());
    EXPECT_EQ(Export({.format = format}).End(), ExportEnd::Complete);
    if (format == MailFormat::Files) {
      EXPECT_THAT(Names(Out() / "Ann"),
                  ElementsAre("A_B_C (2)", "Folder", "Sent", "Sent Items", "_CON", "a_b_c", "n.sbd", "x.eml_"));
    }
    if (format == MailFormat::Mbox) {
      EXPECT_THAT(Names(Out() / "Ann.sbd"),
                  ElementsAre("A_B_C (2)", "Folder", "Sent", "Sent (2)", "_CON", "a_b_c", "n.sbd_", "x.eml"));
    }
  }
}

TEST_F(ExportFaultsTest, TheFolderThatIsReadIsNotWrittenTo) {
  Put("Inbox.dbx", Mail(MailTopic::Inbox, 1));
  for (const char* target : {"D:\\Stores", "d:\\stores\\Below", "Relative"}) {
    const ExportResult result = Export({.target = WinPath(target)});
    EXPECT_EQ(result.End(), ExportEnd::Incomplete);
    EXPECT_THAT(SummaryOf(result, target), StartsWith("nothing can be exported to " + std::string(target) + ": "));
  }
  EXPECT_THAT(Names(onDisk / "D/Stores"), ElementsAre("Inbox.dbx"));
}

TEST_F(ExportFaultsTest, TimesOfFilesAreThoseOfTheMessages) {
  Put("Inbox.dbx", Mail(MailTopic::Inbox, 1));
  Export({.format = MailFormat::Files});
  const auto file = Files().Find(WinPath("D:\\Out\\Ann\\Inbox\\*.eml"))->Next();
  ASSERT_TRUE(file);
  EXPECT_EQ(file->modified / 10'000'000, Mail(MailTopic::Inbox, 1)[0].sent / 10'000'000);
}

TEST(MessageSetTest, KnowsEachOfManyMessagesOnce) {
  MessageSet set;
  const auto message = [](std::uint64_t number) { return MessageIdentity{{}, 1, {number % 7, number}}; };
  EXPECT_FALSE(set.Has(message(0)));
  for (std::uint64_t number = 0; number < 5000; ++number) EXPECT_TRUE(set.Add(message(number)));
  for (std::uint64_t number = 0; number < 5000; ++number) EXPECT_FALSE(set.Add(message(number)));
  EXPECT_FALSE(set.Has(message(5000)));
  EXPECT_EQ(set.Count(), 5000U);
}

}  // namespace
}  // namespace quillbox
