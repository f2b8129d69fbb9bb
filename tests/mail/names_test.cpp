// SPDX-License-Identifier: GPL-3.0-or-later
// Headers in words, and the names that come from them and from folders.
#include "mail/export_names.h"
#include "mail/folder_list.h"
#include "sample/dbx_writer.h"
#include "support/matchers.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

TEST(MessageHeader, IsReadAsMailProgramsWriteIt) {
  const MessageHeader header = ParseHeader(
      "Received: x\r\n subject: no\r\nsubject: a\r\n\tb \r\nSubject: second\r\nFROM: \"O'Neil, \\\"Ann\\\"\" "
      "<ann@example.com>, "
      "b@c\r\nDate: x\r\nnot a field\r\n more\r\n\r\nMessage-ID: body\r\n");
  EXPECT_EQ(header.subject, "a b");
  EXPECT_EQ(header.messageId, "");
  const auto sender = [](std::string_view field) {
    const Mailbox mailbox = ParseMailbox(field);
    return mailbox.name + "|" + mailbox.address;
  };
  EXPECT_EQ(sender(header.from), "O'Neil, \"Ann\"|ann@example.com");
  EXPECT_EQ(sender("ann@example.com (Ann (A.) Miller)"), "Ann (A.) Miller|ann@example.com");
  EXPECT_EQ(sender("Ann Miller <ann@example.com"), "Ann Miller|ann@example.com");
  EXPECT_EQ(sender("\"never closed <"), "|never closed <");
  EXPECT_EQ(sender("a, b"), "|a");
}

TEST(MessageHeader, SaysWhatTheStoreDoesNot) {
  const MessageHeader header =
      ParseHeader("Subject: a\nFrom: Ann <ann@b.c>\nDate: Wed, 17 Mar 2004 10:11:12 +0000\nMessage-ID: <1@a>\n");
  StoredMessage unknown, known;
  CompleteFromHeader(unknown, header);
  EXPECT_EQ(unknown.subject + unknown.senderName + unknown.senderAddress + unknown.messageId, "aAnnann@b.c<1@a>");
  EXPECT_EQ(unknown.sent, FileTimeOfUnix(1'079'518'272));
  known.subject = "known";
  known.senderAddress = "x@y";
  known.sent = 5;
  CompleteFromHeader(known, header);
  EXPECT_EQ(known.subject + known.senderName + known.senderAddress, "knownx@y");
  EXPECT_EQ(known.sent, 5u);
}

TEST(MessageHeader, WordsAreDecoded) {
  const CodePage western;
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"plain =? text", "plain =? text"},
      {"=?iso-8859-1?Q?Gr=FC=DFe_aus?= =?ISO-8859-1?q?_K=F6ln?= (=?utf-8?B?w6Q=?=)", "Grüße aus Köln (ä)"},
      {"=?utf-8?B?ww==?= =?utf-8?B?pA==?=", "ä"},
      {"=?koi8-r?B?8NLJ18XU?=", "Привет"},
      {"=?iso-8859-2?Q?=B3=F3d=BC?=", "łódź"},
      {"=?windows-1251*ru?Q?=CF?=", "П"},
      {"=?gb2312?B?xOO6ww==?=", "你好"},
      {"=?x-none?Q?a=20b?= c", "=?x-none?Q?a=20b?= c"},
      {"=?utf-8?Q?=ZZ=?=", "=ZZ="},
      {"=?utf-8?X?a?= =?utf-8?Q?", "=?utf-8?X?a?= =?utf-8?Q?"},
      {"Gr\xFC\xDF"
       "e",
       "Grüße"},
      {"Grüße", "Grüße"},
  };
  for (const auto& [raw, text] : rows) EXPECT_EQ(DecodeWords(raw, western).text, text) << raw;
  EXPECT_FALSE(DecodeWords("=?x-none?Q?a?=", western).isComplete);
}

TEST(MessageHeader, DatesAreRead) {
  const std::pair<std::string_view, std::optional<std::int64_t>> rows[] = {
      {"Wed, 17 Mar 2004 10:11:12 +0000", 1'079'518'272},
      {"17 Mar 04 11:11:12 +0100 (CET)", 1'079'518'272},
      {"Wed, 17 March 2004 05:11:12 EST", 1'079'518'272},
      {"Wed,17 Mar 2004 10:11 GMT", 1'079'518'260},
      {"Sun, 6 Nov 94 08:49:37 -0000", 784'111'777},
      {"Wed, 31 Feb 2004 10:11:12 +0000", std::nullopt},
      {"Wed, 17 Mar 2004 25:11:12 +0000", std::nullopt},
      {"17 Mar 99999 10:11:12", std::nullopt},
      {"yesterday", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [text, time] : rows) EXPECT_EQ(ParseMailDate(text), time) << text;
}

TEST(ExportNames, AreSafeOnEveryFileSystem) {
  const std::pair<std::string, std::string_view> rows[] = {
      {"Supper?", "Supper_"},
      {"a/b\\c:d*e", "a_b_c_d_e"},
      {"  two\r\n\tlines  ", "two lines"},
      {"ends. . ", "ends"},
      {"CON", "_CON"},
      {"aux.txt", "_aux.txt"},
      {"..", "none"},
      {"", "none"},
      {".hidden", "_hidden"},
      {std::string("n\0l", 3), "n_l"},
      {"x\xE2\x80\xAEgpj", "x_gpj"},
      {"\xFF\xFE", "__"},
      {"Grüße", "Grüße"},
      {"ääääääää", "ääääää"},
  };
  for (const auto& [text, name] : rows) EXPECT_EQ(SafeName(text, 13, "none"), name) << text;
  UniqueNames names;
  EXPECT_EQ(names.Take("A", ".eml"), "A.eml");
  EXPECT_EQ(names.Take("a", ".eml"), "a (2).eml");
  EXPECT_FALSE(names.Note("A (2).EML"));
  EXPECT_EQ(names.Take("a", ".eml"), "a (3).eml");
  const std::string longStem(300, 'x');
  for (int i = 0; i < 3; ++i) EXPECT_EQ(names.Take(longStem, ".eml").size(), kMaxNameBytes);
}

TEST(ExportNames, SayDateSubjectAndSender) {
  StoredMessage record;
  record.subject = "from the record";
  record.sent = FileTimeOfUnix(0);
  MessageHeader header = ParseHeader(
      "Subject: =?utf-8?Q?Gr=C3=BC=C3=9Fe?=\nFrom: \"B. M\xFCller\" <b@c.d>\nDate: Wed, 17 Mar 2004 23:59:59 +0000\n");
  const CodePage western;
  EXPECT_EQ(EmlStem(FactsOf(record, header, western)), "2004-03-17 Grüße (B. Müller)");
  header = ParseHeader("Subject: =?x-none?Q?x?=\nFrom: <b@c.d>\n");
  EXPECT_EQ(EmlStem(FactsOf(record, header, western)), "1970-01-01 from the record (b@c.d)");
  EXPECT_EQ(EmlStem(FactsOf({}, {}, western)), "no subject");
  const std::string longName = EmlStem({1'079'518'272, std::string(5000, 's'), std::string(5000, 'n')});
  EXPECT_EQ(longName.size(), 126u);
  EXPECT_FALSE(FileNameFault(longName));
  const MessageIdentity identity{"", 1, {1, 0xABC}};
  EXPECT_EQ(MaildirName(identity, 1'079'518'272, {true, true, true, true, true}),
            "1079518272.00000000000000010000000000000abc.quillbox:2,DFPRS");
  EXPECT_EQ(MaildirBase(MaildirName(identity, 7, {}, '!')), MaildirBase(MaildirName(identity, 7, {.read = true})));
}

FolderList ReadFolders(const std::vector<DbxFolder>& folders) {
  const Bytes file = FolderListFile(folders);
  MemorySource source(file);
  StoreReader store(source);
  return ReadFolderList(store, CodePage());
}

/// Each folder with the names above it.
std::vector<std::string> Paths(const FolderList& list) {
  std::vector<std::string> paths;
  for (std::size_t i = 0; i < list.folders.size(); ++i) {
    paths.emplace_back();
    for (const std::size_t part : PathTo(list, i)) paths.back() += "/" + list.folders[part].name;
  }
  return paths;
}

TEST(FolderList, IsATreeWhateverTheFileSays) {
  const DbxFolder root{.id = 0, .name = "Outlook Express", .tree = 4};
  const DbxFolder local{.id = 1, .parent = 0, .name = "Lokale Ordner", .tree = 3};
  const FolderList list =
      ReadFolders({{.id = 9, .parent = 4, .name = "KDE", .file = "KDE.dbx", .messages = 5, .unread = 2},
                   root,
                   {.id = 7, .parent = 1, .name = "Gel\xF6scht", .file = "Gel\xF6scht.dbx", .special = 4, .tree = 3},
                   local,
                   {.id = 4, .parent = 1, .name = "Posteingang", .special = 99}});
  EXPECT_THAT(
      Paths(list),
      ElementsAre("/Outlook Express", "/Outlook Express/Lokale Ordner", "/Outlook Express/Lokale Ordner/Gelöscht",
                  "/Outlook Express/Lokale Ordner/Posteingang", "/Outlook Express/Lokale Ordner/Posteingang/KDE"));
  EXPECT_TRUE(list.damage.IsEmpty());
  EXPECT_EQ(list.folders[2].file, "Gelöscht.dbx");
  EXPECT_EQ(list.folders[2].special, SpecialFolder::Deleted);
  EXPECT_EQ(list.folders[2].tree, FolderTree::Local);
  EXPECT_EQ(list.folders[3].special, SpecialFolder::None);
  EXPECT_EQ(list.folders[4].messages, 5u);
  EXPECT_EQ(list.folders[4].unread, 2u);

  const FolderList broken = ReadFolders({root,
                                         {.id = 5, .parent = 77, .name = "orphan"},
                                         {.id = 6, .parent = 8, .name = "ring"},
                                         {.id = 8, .parent = 6, .name = "of two"},
                                         {.id = 11, .parent = 11, .name = "own"},
                                         {.id = 0, .parent = 0, .name = "twin"}});
  EXPECT_THAT(Paths(broken),
              ElementsAre("/Outlook Express", "/Outlook Express/twin", "/orphan", "/ring", "/ring/of two", "/own"));
  std::vector<std::string> damage;
  for (const StoreDamage& entry : broken.damage.Listed()) damage.push_back(Describe(entry));
  EXPECT_THAT(damage, ElementsAre(HasSubstr("the folder has the number of another folder (twin)"),
                                  HasSubstr("the folder is below a folder that is missing (orphan)"),
                                  HasSubstr("the folder is below itself (ring)"),
                                  HasSubstr("the folder is below itself (own)")));
}

TEST(FolderList, ComesFromTheFilesWhenItIsLost) {
  const std::vector<std::string> files = {"Posteingang.dbx", "FOLDERS.DBX", "Inbox(1).dbx", "Chor.DBX",
                                          "Pop3uidl.dbx",    "cleanup.log", "Inbox.bak",    "Inbox.dbx.bak",
                                          "a.mbx",           "(1).dbx",     ".dbx"};
  FolderList list;
  list.folders.push_back({.number = 7, .name = "Chor", .file = "cHOR.dbx"});
  AddUnnamedStores(list, files);
  std::vector<std::string> names;
  for (const MailFolder& folder : list.folders) {
    names.push_back(folder.name + "=" + FolderNameAt(folder, MailTarget::Thunderbird));
  }
  EXPECT_THAT(names, ElementsAre("Chor=Chor", "Posteingang=Inbox", "Inbox(1)=Inbox(1)", "Inbox=Inbox",
                                 "Inbox.dbx=Inbox.dbx", "a=a", "(1)=(1)"));
  EXPECT_EQ(list.folders[1].number, 8u);
  EXPECT_EQ(ParseStoreName("Gesendete Objekte (12).dbx")->folder, "Gesendete Objekte");
  EXPECT_EQ(ParseStoreName("Gesendete Objekte (12).dbx")->special, SpecialFolder::Sent);
  EXPECT_TRUE(ParseStoreName("Inbox.dbx.bak")->isCopy);
}

TEST(FolderNames, AreThoseOfTheTarget) {
  const auto nameAt = [](const char* name, SpecialFolder special, MailTarget target) {
    MailFolder folder;
    folder.name = name;
    folder.special = special;
    return FolderNameAt(folder, target);
  };
  using enum MailTarget;
  EXPECT_EQ(nameAt("Gelöschte Objekte", SpecialFolder::Deleted, Thunderbird), "Trash");
  EXPECT_EQ(nameAt("Postausgang", SpecialFolder::Outbox, Thunderbird), "Unsent Messages");
  EXPECT_EQ(nameAt("Entwürfe", SpecialFolder::Drafts, Maildir), "Drafts");
  EXPECT_EQ(nameAt("Entwürfe", SpecialFolder::Drafts, Files), "Entwürfe");
  EXPECT_EQ(nameAt("comp.lang.c++", SpecialFolder::None, Maildir), "comp_lang_c++");
  EXPECT_EQ(nameAt("my.MSF", SpecialFolder::None, Thunderbird), "my.MSF_");
  EXPECT_EQ(nameAt("a/b", SpecialFolder::None, Files), "a_b");
}

}  // namespace
}  // namespace quillbox
