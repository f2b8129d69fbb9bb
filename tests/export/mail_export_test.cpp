// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/mail_export.h"

#include "export/export_report.h"
#include "export/export_test.h"
#include "platform/hosted/hosted_files.h"

namespace quillbox {
namespace {

constexpr MailFormat kFormats[] = {MailFormat::Mbox, MailFormat::Files, MailFormat::Maildir};

class EachFormat : public ExportTest, public testing::WithParamInterface<MailFormat> {
 protected:
  ExportRequest In() const { return {.format = GetParam()}; }
};
std::string NameOfFormat(const testing::TestParamInfo<MailFormat>& info) {
  constexpr const char* kNames[] = {"Mbox", "Files", "Maildir"};
  return kNames[static_cast<std::size_t>(info.param)];
}
INSTANTIATE_TEST_SUITE_P(, EachFormat, testing::ValuesIn(kFormats), NameOfFormat);

/// A disk that changes a letter of what is written, as bad memory does.
class ChangingFiles final : public HostedFiles {
 public:
  using HostedFiles::HostedFiles;
  std::unique_ptr<FileWriter> StartFile(const WinPath& path) override {
    return std::make_unique<File>(HostedFiles::StartFile(path));
  }
  std::unique_ptr<FolderWriter> StartFolder(const WinPath& path) override {
    return std::make_unique<Folder>(HostedFiles::StartFolder(path));
  }

 private:
  static std::string Changed(std::string_view bytes) {
    std::string changed(bytes);
    const std::size_t at = changed.find("xxxx");
    if (at != std::string::npos) changed[at] = 'y';
    return changed;
  }
  struct File final : FileWriter {
    explicit File(std::unique_ptr<FileWriter> file) : to(std::move(file)) {}
    void Write(std::string_view bytes) override { to->Write(Changed(bytes)); }
    std::size_t ReadAt(std::uint64_t offset, std::span<char> buffer) override { return to->ReadAt(offset, buffer); }
    void Commit() override { to->Commit(); }
    std::unique_ptr<FileWriter> to;
  };
  struct Folder final : FolderWriter {
    explicit Folder(std::unique_ptr<FolderWriter> folder) : to(std::move(folder)) {}
    std::vector<HostFileName> NamesThere() override { return to->NamesThere(); }
    std::unique_ptr<FileReader> OpenThere(const HostFileName& name) override { return to->OpenThere(name); }
    bool Takes(const HostFileName& name) override { return to->Takes(name); }
    void StartFile(const HostFileName& name) override { to->StartFile(name); }
    void Write(std::string_view bytes) override { to->Write(Changed(bytes)); }
    void EndFile(std::optional<std::uint64_t> modified) override { to->EndFile(modified); }
    std::unique_ptr<FileReader> Open(const HostFileName& name) override { return to->Open(name); }
    void Commit() override { to->Commit(); }
    std::unique_ptr<FolderWriter> to;
  };
};

TEST_P(EachFormat, LeavesNothingThatDoesNotComeBackAsItWasWritten) {
  std::vector<DbxMessage> mail = Mail(MailTopic::Inbox, 3);
  mail[1].text += "xxxx\r\n";
  Put("Inbox.dbx", mail);
  ChangingFiles files(dynamic_cast<HostedFiles&>(Files()).OnDrives());
  ExportRequest request = In();
  request.chosen = {0};
  request.target = WinPath("D:\\Out");
  const ExportResult result = ExportMail(files, Found(), CodePage(), request, progress);
  EXPECT_THAT(result.folders[0].fault, HasSubstr("only 2 of 3 messages are as they were written"));
  EXPECT_EQ(result.End(), ExportEnd::Incomplete);
  EXPECT_EQ(Everything().size(), 0U);
}

TEST_P(EachFormat, SaysThatAStoreChangedWhileItWasRead) {
  Put("Inbox.dbx", Mail(MailTopic::Inbox, 3));
  progress.onUpdate = [&] {
    std::filesystem::last_write_time(onDisk / "D/Stores/Inbox.dbx", std::filesystem::file_time_type::clock::now());
    return true;
  };
  const ExportResult result = Export({.format = GetParam(), .shownEvery = {}});
  EXPECT_EQ(OutcomeOf(result.folders[0]),
            "NOT COMPLETE, 3 of 3: another program changed D:\\Stores\\Inbox.dbx while it was read");
}

TEST_P(EachFormat, GivesOtherReadersTheSameBytesInTheSameTree) {
  NEEDS(Scripts);
  PutSample();
  const ExportResult result = Export(In());
  EXPECT_EQ(result.End(), ExportEnd::Complete) << SummaryOf(result, "D:\\Out");
  EXPECT_EQ(Numbers(result.folders[0]),
            "Inbox: 120 in the list, 120 in the index, 120 written, 0 before, 120 read back");
  EXPECT_EQ(result.folders.back().name, "news.example.net > comp.lang.c++");
  const bool isMbox = GetParam() == MailFormat::Mbox;
  const bool isFiles = GetParam() == MailFormat::Files;
  struct Row {
    std::string folder;
    MailTopic topic;
    std::size_t count;
  };
  const Row rows[] = {
      {"Ann/Inbox", MailTopic::Inbox, 120},
      {isFiles ? "Ann/Sent Items" : "Ann/Sent", MailTopic::Sent, 60},
      {isFiles ? "Ann/Deleted Items" : "Ann/Trash", MailTopic::Deleted, 25},
      {"Ann/Drafts", MailTopic::Drafts, 4},
      {"Ann/Choir", MailTopic::Choir, 30},
      {GetParam() == MailFormat::Maildir ? "Ann/news_example_net/comp_lang_c++" : "Ann/news.example.net/comp.lang.c++",
       MailTopic::News, 45}};
  std::multimap<std::string, std::string> expected, found;
  for (const Row& row : rows) {
    for (const DbxMessage& message : Mail(row.topic, row.count)) {
      expected.emplace(row.folder + "|" + message.subject + "|" +
                           (isFiles || !message.read ? ""
                            : isMbox                 ? "OR"
                                                     : "S"),
                       message.text);
    }
  }
  for (ReadMessage& message : ReadAll(GetParam())) {
    // Every message of a mailbox file is old ("O").
    if (isMbox && message.flags == "O") message.flags = "";
    found.emplace(message.folder + "|" + message.subject + "|" + message.flags, message.bytes);
  }
  const auto sorted = [](const auto& map) {
    std::vector<std::pair<std::string, std::string>> all(map.begin(), map.end());
    std::sort(all.begin(), all.end());
    return all;
  };
  ASSERT_EQ(found.size(), 284U);
  EXPECT_TRUE(sorted(found) == sorted(expected)) << found.begin()->first << "\n" << expected.begin()->first;
}

TEST_P(EachFormat, AddsOnlyWhatIsNewAndTakesNothingAway) {
  NEEDS(Scripts);
  const std::vector<DbxMessage> mail = Mail(MailTopic::Inbox, 12);
  Put("Inbox.dbx", std::span(mail).first(10));
  Put("Old.dbx", Mail(MailTopic::Choir, 3));
  Export(In());
  const auto first = Everything();
  ExportResult again = Export(In());
  EXPECT_EQ(again.End(), ExportEnd::Complete);
  EXPECT_EQ(Numbers(again.folders[0]), "Inbox: ? in the list, 10 in the index, 0 written, 10 before, 0 read back");
  auto all = Everything();
  for (auto* map : {&all}) std::erase_if(*map, [](const auto& entry) { return entry.second == "folder"; });
  auto before = first;
  std::erase_if(before, [](const auto& entry) { return entry.second == "folder"; });
  EXPECT_EQ(all, before) << "nothing new, so nothing is touched";

  // The user has read one, deleted one, and filed another there; two have come, and one is there twice.
  std::vector<DbxMessage> more(mail.begin() + 1, mail.end());
  more.push_back(mail[11]);
  for (DbxMessage& message : more) message.flags |= 0x20;
  Put("Inbox.dbx", more);
  again = Export(In());
  EXPECT_EQ(Numbers(again.folders[0]), "Inbox: ? in the list, 12 in the index, 3 written, 9 before, 3 read back");
  const auto found = ReadAll(GetParam());
  EXPECT_EQ(std::count_if(found.begin(), found.end(), [](const auto& m) { return m.folder == "Ann/Inbox"; }), 13);
  EXPECT_EQ(std::count_if(found.begin(), found.end(), [&](const auto& m) { return m.bytes == mail[0].text; }), 1);
  EXPECT_EQ(Numbers(Export(In()).folders[0]),
            "Inbox: ? in the list, 12 in the index, 0 written, 12 before, 0 read back");
}

TEST_P(EachFormat, NeverSaysCompleteOfAStoreThatIsCutOff) {
  const std::vector<DbxMessage> mail = Mail(MailTopic::Inbox, 60);
  const Bytes whole = MessageStore(mail);
  for (const std::size_t length : {0u, 3u, 0x100u, 0x24BCu, 0x2800u, 0x4000u, 0x9000u, 0x12345u, 0x16000u,
                                   static_cast<unsigned>(whole.size() - 1)}) {
    SCOPED_TRACE(length);
    std::filesystem::remove_all(Out());
    Put("Inbox.dbx", Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
    const ExportResult result = Export({.format = GetParam(), .recover = true});
    EXPECT_EQ(result.End(), ExportEnd::Incomplete);
    const FolderResult& folder = result.folders.front();
    std::uint64_t ends = 0;
    for (std::size_t end = 0; end < kMessageEnds; ++end) ends += folder.Of(static_cast<MessageEnd>(end));
    EXPECT_EQ(ends, folder.InIndex()) << "each message has an end";
    EXPECT_EQ(folder.box.written + folder.recovered.written, folder.box.readBack + folder.recovered.readBack);
    EXPECT_THAT(SummaryOf(result, "D:\\Out"), StartsWith("NOT all mail was exported"));
    if (folder.fault.empty()) {
      EXPECT_EQ(folder.stores.front().account.Total(), length);
    }
  }
}

TEST_P(EachFormat, LeavesNothingOfAFolderThatDoesNotFit) {
  NEEDS(FailingCalls);
  DbxMessage large = Mail(MailTopic::Inbox, 1).front();
  large.text += std::string(50'000, 'x') + "\r\n";
  Put("Small.dbx", std::span(&large, 0));
  Put("Large.dbx", std::span(&large, 1));
  Put("Letters.dbx", Mail(MailTopic::Choir, 2));
  ExportResult result;
  {
    const FileSizeLimit limit(40'000);
    result = Export(In());
  }
  EXPECT_EQ(result.End(), ExportEnd::Incomplete);
  ASSERT_EQ(result.folders.size(), 3U);
  EXPECT_THAT(result.folders[0].fault, AllOf(HasSubstr("D:\\Out\\Ann"), HasSubstr("(while writing a file)")));
  EXPECT_EQ(Numbers(result.folders[0]), "Large: ? in the list, 1 in the index, 0 written, 0 before, 0 read back");
  EXPECT_EQ(Numbers(result.folders[1]), "Letters: ? in the list, 2 in the index, 2 written, 0 before, 2 read back");
  for (const auto& [name, what] : Everything()) {
    EXPECT_EQ(name.find("Large"), std::string::npos) << name;
    EXPECT_EQ(name.find(".quillbox-"), std::string::npos) << name;
  }
}

TEST_P(EachFormat, LeavesWholeFoldersOnlyWhereverItIsCancelled) {
  const std::vector<DbxMessage> mail = Mail(MailTopic::Inbox, 8);
  Put("Inbox.dbx", mail);
  Put("Letters.dbx", std::span(mail).first(3));
  for (int updates = 0;; ++updates) {
    std::filesystem::remove_all(Out());
    int left = updates;
    const ExportResult result = [&] {
      progress.onUpdate = [&] { return left-- > 0; };
      return Export({.format = GetParam(), .shownEvery = {}});
    }();
    for (const FolderResult& folder : result.folders) {
      EXPECT_TRUE(folder.IsComplete() || (folder.fault == "the export was cancelled" && folder.box.written == 0));
    }
    for (const auto& entry : Everything()) EXPECT_EQ(entry.first.find(".quillbox-"), std::string::npos);
    if (result.End() != ExportEnd::Cancelled) break;
    EXPECT_THAT(SummaryOf(result, "D:\\Out"), StartsWith("The export was cancelled, so mail is missing."));
    EXPECT_TRUE(Everything().size() == 0 || result.folders[0].IsComplete());
  }
}

}  // namespace
}  // namespace quillbox
