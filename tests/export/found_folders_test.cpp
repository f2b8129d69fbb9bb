// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/found_folders.h"

#include "export/export_test.h"

namespace quillbox {
namespace {

class FoundFoldersTest : public ExportTest {
 protected:
  /// "  Inbox 120 Inbox.dbx", a line a folder.
  static std::vector<std::string> Lines(const FoundFolders& folders) {
    std::vector<std::string> lines;
    for (const FoundFolder& found : folders.All()) {
      std::string line = std::string(found.depth * 2, ' ') + found.folder.name + " " + std::to_string(found.messages);
      if (found.store) line += " " + found.store->Name();
      if (found.copyOf) line += ", copy of " + folders.All()[*found.copyOf].folder.name;
      if (!found.fault.empty()) line += " (" + found.fault + ")";
      lines.push_back(line);
    }
    return lines;
  }
};

TEST_F(FoundFoldersTest, AreTheTreeOfTheFolderListWithTheMessagesInEachStore) {
  PutSample();
  std::filesystem::rename(onDisk / "D/Stores/Choir.dbx", onDisk / "D/Stores/away");
  std::filesystem::rename(onDisk / "D/Stores/away", onDisk / "D/Stores/CHOIR.DBX");
  std::filesystem::remove(onDisk / "D/Stores/Drafts.dbx");
  FoundFolders folders(Files(), {"Ann", WinPath("D:\\Stores"), {}}, CodePage());
  EXPECT_TRUE(folders.Step());
  EXPECT_EQ(folders.All().size(), 8U);
  EXPECT_FALSE(folders.All()[0].isCounted) << "the list is there before the numbers";
  EXPECT_EQ(folders.All()[0].size, std::filesystem::file_size(onDisk / "D/Stores/Inbox.dbx"));
  std::size_t steps = 1;
  while (folders.Step()) ++steps;
  EXPECT_EQ(steps, 8U);
  EXPECT_THAT(Lines(folders),
              ElementsAre("Inbox 120 Inbox.dbx", "Outbox 0 Outbox.dbx", "Sent Items 60 Sent Items.dbx",
                          "Deleted Items 25 Deleted Items.dbx", "Drafts 0 (the file Drafts.dbx is not there)",
                          "Choir 30 CHOIR.DBX", "news.example.net 0", "  comp.lang.c++ 45 comp.lang.c++.dbx"));
  EXPECT_EQ(folders.ListFault(), "");
}

TEST_F(FoundFoldersTest, AreTheStoresThemselvesWhereTheListIsLost) {
  PutSample();
  const std::string list = Content(onDisk / "D/Stores/Folders.dbx");
  struct Row {
    std::string content;
    const char* fault;
  };
  for (const Row& row : {Row{"", "Folders.dbx is not a list of folders"},
                         {list.substr(0, list.size() / 2), "Folders.dbx, offset 0x"},
                         {Text(MessageStore({})), "Folders.dbx is not a list of folders"},
                         {Text(FolderListFile({})), "Folders.dbx is empty"}}) {
    onDisk.File("D/Stores/Folders.dbx", row.content);
    const FoundFolders folders = Found();
    EXPECT_THAT(folders.ListFault(), StartsWith(row.fault));
    EXPECT_THAT(Lines(folders), AllOf(Contains("Inbox 120 Inbox.dbx"), Contains("Choir 30 Choir.dbx")));
  }
  std::filesystem::remove(onDisk / "D/Stores/Folders.dbx");
  const FoundFolders folders = Found();
  EXPECT_EQ(folders.ListFault(), "Folders.dbx is not there");
  EXPECT_EQ(folders.All().size(), 7U);
  EXPECT_TRUE(FoundFolders(Found()).All()[0].isCounted);
}

TEST_F(FoundFoldersTest, HaveTheirCopiesBesideThemAndInOtherFolders) {
  PutSample();
  const std::string bytes = Text(MessageStore(Mail(MailTopic::Inbox, 2)));
  for (const char* file : {"D/Stores/Inbox (1).dbx", "D/Stores/Old stuff.dbx", "D/Stores/Choir.bak",
                           "D/Backup/Ann/INBOX.dbx", "D/RECYCLER/S-1-5/Dd1.dbx", "D/RECYCLER/S-1-5/Dd2.txt"}) {
    onDisk.File(file, bytes);
  }
  std::vector<WinPath> places = RecycleBinsBeside(Files(), WinPath("D:\\Stores"));
  EXPECT_THAT(places, ElementsAre(WinPath("D:\\RECYCLER"), WinPath("D:\\RECYCLER\\S-1-5")));
  places.emplace_back("D:\\Backup\\Ann");
  std::vector<std::string> lines = Lines(Found(places));
  lines.erase(lines.begin(), lines.begin() + 8);
  EXPECT_THAT(lines, ElementsAre("Choir 2 Choir.bak, copy of Choir", "Inbox (1) 2 Inbox (1).dbx, copy of Inbox",
                                 "Old stuff 2 Old stuff.dbx", "Dd1 (copy) 2 Dd1.dbx",
                                 "INBOX (copy) 2 INBOX.dbx, copy of Inbox"));
}

TEST_F(FoundFoldersTest, SayWhatCannotBeCounted) {
  Put("Good.dbx", Mail(MailTopic::Inbox, 2));
  onDisk.File("D/Stores/Text.dbx", "not a store at all");
  onDisk.File("D/Stores/Empty.dbx");
  onDisk.File("D/Stores/Half.dbx", Text(MessageStore(Mail(MailTopic::Inbox, 200))).substr(0, 100'000));
  onDisk.Folder("D/Stores/Folder.dbx");
  std::string promises = Text(MessageStore(Mail(MailTopic::Inbox, 2)));
  promises[0xC4] = 5;
  onDisk.File("D/Stores/Lost.dbx", promises);
  if (WhyNot(Trick::Pipes).empty()) MakePipe(onDisk / "D/Stores/Pipe.dbx");
  const std::vector<std::string> lines = Lines(Found());
  EXPECT_THAT(lines, AllOf(Contains("Good 2 Good.dbx"), Contains(StartsWith("Text 0 Text.dbx (offset 0x0: ")),
                           Contains(StartsWith("Empty 0 Empty.dbx (offset 0x0: ")),
                           Contains("Lost 2 Lost.dbx (the header promises 5 messages, the store's index leads to 2)"),
                           Contains(AllOf(StartsWith("Half "), HasSubstr("(offset 0x")))));
  if (WhyNot(Trick::Pipes).empty()) {
    EXPECT_THAT(lines, Contains("Pipe 0 Pipe.dbx (it is not an ordinary file)"));
  }
}

}  // namespace
}  // namespace quillbox
