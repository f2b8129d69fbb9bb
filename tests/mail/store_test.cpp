// SPDX-License-Identifier: GPL-3.0-or-later
// Stores as the sample's writer makes them, whole, cut off and damaged at places that are known by the format.
#include "mail/store_reader.h"
#include "mail/store_survey.h"
#include "sample/dbx_writer.h"
#include "support/matchers.h"
#include "text/byte_order.h"

namespace quillbox {
namespace {

constexpr std::size_t kHeader = 0x24BC;
constexpr std::uint32_t kStep = 0x210;  ///< from one segment to the next

std::string TextOf(std::size_t number, std::size_t length) {
  std::string text = "Subject: letter " + std::to_string(number) + "\r\n\r\n";
  while (text.size() < length) text += static_cast<char>('a' + text.size() * 7 % 26);
  return text + "\r\n";
}

/// Texts that fill no segment, one exactly, one and a bit, and several.
std::vector<DbxMessage> Letters(std::size_t count) {
  constexpr std::size_t kLengths[] = {40, 510, 511, 1500};
  std::vector<DbxMessage> messages(count);
  for (std::size_t i = 0; i < count; ++i) {
    messages[i].text = TextOf(i, kLengths[i % 4]);
    messages[i].subject = "letter " + std::to_string(i);
  }
  return messages;
}

/// What an export sees of a store.
struct Read {
  std::vector<std::string> texts;
  std::vector<std::string> recovered;
  std::vector<RecoveryState> states;
  std::vector<std::string> damage;
  StoreAccount account;
  std::size_t entries = 0;
  std::optional<std::uint32_t> inHeader;
};

Read ReadStore(PositionedSource& source) {
  StoreReader store(source);
  StoreSurvey survey(store);
  Read read;
  read.inHeader = store.CountInHeader();
  const auto gather = [](std::vector<std::string>& texts) {
    texts.emplace_back();
    return [&texts](std::string_view piece) { texts.back() += piece; };
  };
  for (const std::uint32_t entry : store.Entries()) {
    const auto message = survey.ReadMessage(entry);
    if (const auto* found = std::get_if<StoredMessage>(&message)) survey.ReadText(*found, gather(read.texts));
  }
  survey.Finish();
  for (const RecoveredMessage& message : survey.Recovered()) {
    survey.ReadRecoveredText(message, gather(read.recovered));
    read.states.push_back(message.state);
  }
  for (const StoreDamage& damage : survey.Damage().Listed()) read.damage.push_back(Describe(damage));
  read.account = survey.Account();
  read.entries = store.Entries().size();
  EXPECT_EQ(read.account.Total(), source.Size());
  return read;
}

Read ReadStore(const Bytes& file) {
  MemorySource source(file);
  return ReadStore(source);
}

std::vector<std::string> Texts(std::span<const DbxMessage> messages) {
  std::vector<std::string> texts;
  for (const DbxMessage& message : messages) texts.push_back(message.text);
  return texts;
}

std::uint32_t SegmentsOf(const std::string& text) {
  return static_cast<std::uint32_t>((text.size() + 511) / 512);
}

TEST(StoreReader, GivesEveryMessageInTheTreesOrder) {
  for (const std::size_t count : {0u, 1u, 51u, 52u, 2704u}) {
    const auto letters = Letters(count);
    const Read read = ReadStore(MessageStore(letters));
    EXPECT_EQ(read.texts, Texts(letters));
    EXPECT_EQ(read.inHeader, count);
    EXPECT_THAT(read.damage, IsEmpty());
    EXPECT_THAT(read.recovered, IsEmpty());
    std::uint64_t segments = 0;
    for (const DbxMessage& letter : letters) segments += SegmentsOf(letter.text);
    EXPECT_EQ(read.account.Of(ByteUse::Messages), segments * kStep);
    EXPECT_EQ(read.account.Of(ByteUse::Free) + read.account.Of(ByteUse::Deleted), 0u);
  }
}

TEST(StoreReader, KnowsWhatTheRecordSays) {
  DbxMessage letter = Letters(1)[0];
  letter.senderName = "J\xF6rg";
  letter.senderAddress = "joerg@example.org";
  letter.account = "Konto";
  letter.messageId = "<1@example.org>";
  letter.sent = 127'000'000'000'000'000;
  letter.flags = 0x80000 | 0x20;
  const Bytes file = MessageStore({{letter}});
  MemorySource source(file);
  StoreReader store(source);
  ASSERT_EQ(store.Entries().size(), 1u);
  const auto message = std::get<StoredMessage>(store.ReadMessage(store.Entries()[0]));
  EXPECT_EQ(message.number, 1u);
  EXPECT_EQ(message.subject, "letter 0");
  EXPECT_EQ(message.senderName, "J\xF6rg");
  EXPECT_EQ(message.senderAddress, "joerg@example.org");
  EXPECT_EQ(message.account, "Konto");
  EXPECT_EQ(message.messageId, "<1@example.org>");
  EXPECT_EQ(message.sent, 127'000'000'000'000'000u);
  EXPECT_EQ(message.size, letter.text.size());
  using enum MessageFlag;
  for (const MessageFlag flag : {HasText, Read, Flagged, Answered}) EXPECT_TRUE(message.flags.Has(flag));
  for (const MessageFlag flag : {Draft, News, Forwarded}) EXPECT_FALSE(message.flags.Has(flag));
}

TEST(StoreReader, KnowsTheKindsOfFiles) {
  const auto kindOf = [](const Bytes& file) {
    MemorySource source(file);
    return StoreReader(source).Kind();
  };
  EXPECT_EQ(kindOf(MessageStore({})), StoreKind::Messages);
  EXPECT_EQ(kindOf(FolderListFile({})), StoreKind::FolderList);
  EXPECT_EQ(kindOf(EmptyStore(DbxKind::Offline)), StoreKind::Other);
  EXPECT_EQ(kindOf(EmptyStore(DbxKind::Pop3Ids)), StoreKind::Other);
  EXPECT_EQ(kindOf(OldMessageStore({})), StoreKind::OutlookExpress4);
  for (const Bytes& other : {Bytes(), Bytes(3), Bytes(20'000, 'x')}) EXPECT_EQ(kindOf(other), StoreKind::NotAStore);
}

/// Cuts `file` at every length and asks what is left to make sense.
void CutAtEveryLength(const Bytes& file, const std::vector<std::string>& texts, std::size_t from) {
  for (std::size_t length = 0; length < file.size(); length += length < from ? 97 : 1) {
    const Read read = ReadStore(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)));
    EXPECT_FALSE(read.damage.empty()) << "at " << length;
    for (std::size_t i = 0; i < read.texts.size(); ++i) {
      ASSERT_TRUE(texts.at(i).starts_with(read.texts[i])) << "at " << length << ", text " << i;
    }
  }
}

TEST(StoreReader, AccountsForEveryByteOfACutOffStore) {
  const auto letters = Letters(4);
  CutAtEveryLength(MessageStore(letters), Texts(letters), kHeader);
  CutAtEveryLength(OldMessageStore(Texts(letters)), Texts(letters), 0);
}

TEST(StoreReader, GoesOnAfterDamage) {
  const auto letters = Letters(4);
  const Bytes whole = MessageStore(letters);
  // The segments of the first text come first, then its record, and so on; the one tree node is at the end.
  const std::uint32_t root = Load32(&whole[0xE4]);
  const auto record = [&](std::size_t i) { return Load32(&whole[root + 0x18 + 12 * i]); };
  const std::uint32_t fourth = record(2) + 12 + Load32(&whole[record(2) + 4]);
  struct Row {
    const char* what;
    std::size_t at;
    std::uint32_t number;
    std::string damage;
    std::size_t texts, wholeTexts;
  };
  const auto place = [](std::uint32_t offset) {
    char text[32];
    std::snprintf(text, sizeof text, "offset 0x%X: ", offset);
    return std::string(text);
  };
  const Row rows[] = {
      {"a record", record(1), 1, place(record(1)) + "the message's record does not begin with its own offset", 3, 3},
      {"its length", record(1) + 4, 0xFFFFFFFF,
       place(record(1)) + "the message's record has a length or count that cannot be", 3, 3},
      {"its place", root + 0x18 + 12, 0xFFFFFFF0,
       "offset 0xFFFFFFF0: the message's record is beyond the end of the file", 3, 3},
      {"one twice", root + 0x18 + 12, record(0), place(record(0)) + "the message's record is used twice", 3, 3},
      {"a segment", fourth + kStep, 7, place(fourth + kStep) + "the text segment does not begin with its own offset", 4,
       3},
      {"a loop", fourth + kStep + 12, fourth, place(fourth) + "the text segment is used twice", 4, 3},
      {"a chain into nowhere", fourth + 12, 0x7FFFFFFF,
       "offset 0x7FFFFFFF: the text segment is beyond the end of the file", 4, 3},
      {"four billion bytes", fourth + 8, 0xFFFFFFFF,
       place(fourth) + "the text segment has a length or count that cannot be", 4, 3},
      {"the root", root, 1, place(root) + "the tree node does not begin with its own offset", 0, 0},
      {"its count", root + 0x10, 0xFF00, place(root) + "the tree node has a length or count that cannot be", 0, 0},
      {"a tree in a tree", root + 8, root, place(root) + "the tree node is used twice", 4, 4},
      {"the root's place", 0xE4, 0xFFFFFFFF, "offset 0xFFFFFFFF: the tree node is beyond the end of the file", 0, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    Bytes file = whole;
    Store32(&file.at(row.at), row.number);
    const Read read = ReadStore(file);
    EXPECT_THAT(read.damage, Contains(row.damage));
    EXPECT_EQ(read.texts.size(), row.texts);
    std::size_t found = 0;
    for (const DbxMessage& letter : letters) {
      found += static_cast<std::size_t>(std::count(read.texts.begin(), read.texts.end(), letter.text));
    }
    EXPECT_EQ(found, row.wholeTexts);
    // What the tree or a chain has lost is found again.
    for (const std::string& text : read.recovered) EXPECT_THAT(Texts(letters), Contains(HasSubstr(text)));
    if (row.texts == 0) {
      EXPECT_EQ(read.recovered, Texts(letters));
    }
  }
}

TEST(StoreReader, NoticesTwoMessagesWithOneText) {
  const auto letters = Letters(2);
  Bytes file = MessageStore(letters);
  const std::uint32_t root = Load32(&file[0xE4]);
  const std::uint32_t second = Load32(&file[root + 0x18 + 12]);
  Store32(&file[second + 12 + 16], Load32(&file[Load32(&file[root + 0x18]) + 12 + 16]));
  const Read read = ReadStore(file);
  EXPECT_THAT(read.damage, ElementsAre(HasSubstr("the store is used twice")));
  EXPECT_THAT(read.recovered, ElementsAre(letters[1].text));
}

TEST(StoreReader, SaysHowManyMessagesALostNodeHeld) {
  const auto letters = Letters(104);
  Bytes file = MessageStore(letters);
  const std::uint32_t leaf = Load32(&file[Load32(&file[0xE4]) + 8]);
  const std::uint32_t held = file[leaf + 0x11];
  Store32(&file[leaf], 0);
  const Read read = ReadStore(file);
  EXPECT_THAT(read.damage, ElementsAre(HasSubstr("own offset (" + std::to_string(held) + " entries were below it)")));
  EXPECT_EQ(read.inHeader, 104u);
  EXPECT_EQ(read.texts, Texts(std::span(letters).subspan(held)));
  EXPECT_EQ(read.recovered, Texts(std::span(letters).first(held)));
  EXPECT_EQ(read.account.Of(ByteUse::Damage), 0x27Cu);
}

TEST(StoreReader, ReadsAMessageWithABadField) {
  const auto letters = Letters(1);
  Bytes file = MessageStore(letters);
  const std::uint32_t record = Load32(&file[Load32(&file[0xE4]) + 0x18]);
  Store32(&file[record + 12 + 5 * 4], 0xFFFFFF05);
  const Read read = ReadStore(file);
  EXPECT_EQ(read.texts, Texts(letters));
  EXPECT_THAT(read.damage, ElementsAre(HasSubstr("a field has a length or count that cannot be")));
}

TEST(StoreReader, DoesNotGiveOneTextOutWithoutEnd) {
  auto letters = Letters(40);
  letters[0].text = TextOf(0, 100'000);
  Bytes file = MessageStore(letters);
  const std::uint32_t root = Load32(&file[0xE4]);
  const std::uint32_t first = Load32(&file[Load32(&file[root + 0x18]) + 12 + 16]);
  for (std::uint32_t i = 1; i < 40; ++i) Store32(&file[Load32(&file[root + 0x18 + 12 * i]) + 12 + 16], first);
  std::uint64_t given = 0;
  for (const std::string& text : ReadStore(file).texts) given += text.size();
  EXPECT_LT(given, 5 * file.size());
}

TEST(DeletedMessages, AreFoundWholeOrInPart) {
  auto letters = Letters(8);
  for (const std::size_t deleted : {1u, 3u, 7u}) letters[deleted].deleted = true;
  const Bytes file = MessageStore(letters);
  const Read read = ReadStore(file);
  EXPECT_THAT(read.texts,
              ElementsAre(letters[0].text, letters[2].text, letters[4].text, letters[5].text, letters[6].text));
  EXPECT_THAT(read.recovered, ElementsAre(letters[1].text, letters[3].text, letters[7].text));
  EXPECT_THAT(read.states, Each(RecoveryState::Whole));
  EXPECT_THAT(read.damage, IsEmpty());

  // A text is found without its record; without its second segment it is in two parts.
  const auto search = [&](const std::string& text) {
    return static_cast<std::size_t>(std::search(file.begin(), file.end(), text.begin(), text.end()) - file.begin());
  };
  const std::size_t last = search(letters[7].text.substr(0, 512)) - 16;
  Bytes noRecord = file;
  std::fill_n(noRecord.begin() + static_cast<std::ptrdiff_t>(last + 3 * kStep), 40, std::uint8_t{0});
  EXPECT_THAT(ReadStore(noRecord).recovered, ElementsAre(letters[1].text, letters[3].text, letters[7].text));
  EXPECT_THAT(ReadStore(noRecord).states, Each(RecoveryState::Whole));
  Bytes gap = noRecord;
  std::fill_n(gap.begin() + static_cast<std::ptrdiff_t>(last + kStep), 20, std::uint8_t{0xFF});
  const Read parts = ReadStore(gap);
  EXPECT_THAT(parts.recovered, ElementsAre(letters[1].text, letters[3].text, letters[7].text.substr(0, 512),
                                           letters[7].text.substr(1024)));
  EXPECT_THAT(parts.states,
              ElementsAre(RecoveryState::Whole, RecoveryState::Whole, RecoveryState::Partly, RecoveryState::Partly));
}

TEST(DeletedMessages, AreSetApartWhenTheirTextIsGoneOrTurnsInARing) {
  auto letters = Letters(4);
  letters[0].deleted = letters[3].deleted = true;
  Bytes file = MessageStore(letters);
  // The first text's only segment is overwritten; the last segment of the fourth leads to its first.
  std::fill_n(file.begin() + kHeader, kStep, std::uint8_t{0});
  const auto at = std::search(file.begin(), file.end(), letters[3].text.begin(), letters[3].text.begin() + 100);
  const auto first = static_cast<std::uint32_t>(at - file.begin()) - 16;
  Store32(&file[first + 2 * kStep + 12], first);
  const Read read = ReadStore(file);
  EXPECT_THAT(read.recovered, ElementsAre("", letters[3].text));
  EXPECT_THAT(read.states, ElementsAre(RecoveryState::RecordOnly, RecoveryState::Partly));
}

TEST(DeletedMessages, AreFoundInPagesOfAnotherStore) {
  const auto letters = Letters(4);
  const Bytes other = MessageStore(letters);
  Bytes file = MessageStore(std::span(letters).first(1));
  file.resize(0x8000);
  file.insert(file.end(), other.begin() + kHeader, other.end());
  const Read read = ReadStore(file);
  EXPECT_EQ(read.texts, Texts(std::span(letters).first(1)));
  EXPECT_EQ(read.recovered, Texts(letters));
  EXPECT_THAT(read.states, Each(RecoveryState::Whole));
}

/// A file that fails or ends before its size says so.
class FailingSource final : public PositionedSource {
 public:
  FailingSource(const Bytes& file, std::uint64_t from, bool throws) : file_(file), from_(from), throws_(throws) {}
  std::uint64_t Size() const override { return file_.size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    if (throws_ && offset + buffer.size() > from_) throw Error("reading", {"x", offset, {}}, "Input/output error");
    return MemorySource(ByteView(file_).first(from_)).ReadAt(offset, buffer);
  }

 private:
  const Bytes& file_;
  std::size_t from_;
  bool throws_;
};

TEST(StoreReader, SurvivesAFileThatFailsOrShrinks) {
  const auto letters = Letters(3);
  const Bytes file = MessageStore(letters);
  for (std::size_t from = 0; from < file.size(); from += 61) {
    for (const bool throws : {true, false}) {
      FailingSource source(file, from, throws);
      const Read read = ReadStore(source);
      const char* const why = throws ? "cannot be read (Input/output error)" : "the file became shorter";
      if (from > 8) {
        EXPECT_THAT(read.damage, Contains(HasSubstr(why))) << from;
      }
      for (const std::string& text : read.texts) EXPECT_THAT(Texts(letters), Contains(StartsWith(text)));
    }
  }
}

class CountingSource final : public PositionedSource {
 public:
  explicit CountingSource(const Bytes& file) : source_(file) {}
  std::uint64_t Size() const override { return source_.Size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    count += buffer.size();
    return source_.ReadAt(offset, buffer);
  }
  std::uint64_t count = 0;

 private:
  MemorySource source_;
};

TEST(StoreReader, ReadsAStoreAboutOnceThoughRecordsAndTextsTakeTurns) {
  std::vector<DbxMessage> letters(100);
  for (std::size_t i = 0; i < letters.size(); ++i) letters[i].text = TextOf(i, 20'000);
  const Bytes file = MessageStore(letters);
  CountingSource source(file);
  StoreReader store(source);
  for (const std::uint32_t entry : store.Entries()) {
    store.ReadText(std::get<StoredMessage>(store.ReadMessage(entry)), [](std::string_view) {});
  }
  EXPECT_LT(source.count, file.size() * 5 / 4);
}

TEST(OldStore, GoesOnAtTheNextMark) {
  const auto texts = Texts(Letters(3));
  Bytes file = OldMessageStore(texts);
  EXPECT_EQ(ReadStore(file).texts, texts);
  EXPECT_EQ(ReadStore(file).inHeader, 3u);
  file[0x54 + 16 + texts[0].size()] = 9;
  const Read read = ReadStore(file);
  EXPECT_THAT(read.texts, ElementsAre(texts[0], texts[2]));
  EXPECT_THAT(read.damage, ElementsAre(HasSubstr("the message is of an unknown form")));
  EXPECT_EQ(read.account.Of(ByteUse::Damage), 16 + texts[1].size());
}

}  // namespace
}  // namespace quillbox
