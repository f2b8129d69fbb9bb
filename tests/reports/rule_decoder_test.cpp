#include "reports/rule_decoder.h"

#include "reports/rule_reader.h"
#include "support/sample_platform.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kIdentity = "{2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}";

Bytes List(std::string_view words) {
  Bytes bytes(words.begin(), words.end());
  bytes.resize(bytes.size() + 2);
  return bytes;
}

struct Case {
  std::int32_t type;
  std::int32_t flags;
  RegValue value;
  const char* typeText;
  const char* flagsText;
  const char* valueText;
  bool mail = true, news = true;
};

constexpr const char* kAccount = "Where the message is from the specified account";
constexpr const char* kSubject = "Where the subject line contains specific words";
constexpr const char* kBody = "Where the message body contains specific words";
constexpr const char* kFrom = "Where the From line contains people";
constexpr const char* kAnyWord = "Message contains the words below and Message matches any one of the words below";
constexpr const char* kNoWord =
    "Message does not contain the words below and Message matches any one of the words below";
constexpr const char* kAllWords = "Message contains the words below  and Message matches all of the words below";
constexpr const char* kNotAllWords =
    "Message does not contain the words below and Message matches all of the words below";
constexpr const char* kAnyone = "Message contains the people below and Message matches any one of the people below";
constexpr const char* kNoOne =
    "Message does not contain the people below and Message matches any one of the people below";
constexpr const char* kEveryone = "Message contains the people below and Message matches all of the people below";
constexpr const char* kNotEveryone =
    "Message does not contain the people below and Message matches all of the people below";
constexpr const char* kPriority = "Where the message is marked as priority";
constexpr const char* kSecure = "Where the message is secure";

const Case kCriteria[] = {
    {1, 5, List("x"), kAccount, "5", "Encoded", false, true},
    {8, 0, List(std::string_view("alpha\0beta", 10)), kSubject, kAnyWord, "alpha beta  "},
    {8, 1, List("sale"), kSubject, kNoWord, "sale  "},
    {8, 2, List("b\xFCro"), kSubject, kAllWords, "büro  "},
    {8, 3, "as text", kSubject, kNotAllWords, "as text"},
    {8, 4, List("sale"), kSubject, "", "sale  "},
    {8, -1, 17, kSubject, "", "17"},
    {9, 0, {}, kBody, kAnyWord, "", true, false},
    {10, 0, List("a@b"), "Where the To line contains people", kAnyone, "a@b  ", true, false},
    {11, 1, List("a@b"), "Where the CC line contains people", kNoOne, "a@b  ", true, false},
    {12, 2, List("a@b"), kFrom, kEveryone, "a@b  "},
    {12, 3, List("a@b"), kFrom, kNotEveryone, "a@b  "},
    {13, 0, 1, kPriority, "0", "Low priority messages", true, false},
    {13, 0, " 2 ", kPriority, "0", "High priority messages", true, false},
    {13, 0, 3, kPriority, "0", "", true, false},
    {14, 0, 1, "Where the message has an attachment", "0", "", true, false},
    {15, -1, 50, "Where the message size is more than size", "-1", "50kb", true, false},
    {15, 0, {}, "Where the message size is more than size", "0", "kb", true, false},
    {19, 0, "00000001", kAccount, "0", "00000001"},
    {20, 0, {}, "For all messages", "0", "None"},
    {22, 2, List("a@b"), "Where the To or CC line contains people", kEveryone, "a@b  ", true, false},
    {30, 0, 400, "Where the number of lines in the message is more than lines", "0", "400 lines", false, true},
    {31, 0, 1, kSecure, "0", "Signed messages", true, false},
    {31, 0, 2, kSecure, "0", "Encrypted messages", true, false},
    {0, 0, 1, "", "", "", false, false},
    {-1, 0, 1, "", "", "", false, false},
};

constexpr const char* kInStore = "Unknown: Resides in OE";
constexpr const char* kHighlight = "Highlight it with color";
constexpr const char* kWatch = "Mark the message as watched or ignored";

const Case kActions[] = {
    {1, 0, List("x"), "Copy it to the specified folder", "", kInStore, true, false},
    {2, 0, "a@b", "Forward it to people", "", "a@b", true, false},
    {5, 0, Bytes{'o', 0, 'k', 0}, "Reply with message", "", "ok", true, false},
    {6, 0, {}, "Move it to the specified folder", "", kInStore, true, false},
    {7, 0, {}, "Delete it", "", "None"},
    {8, 0, {}, "Delete it from server", "", "None", true, false},
    {9, 0, {}, "Do not download from server", "", "None", true, false},
    {10, 0, 0, kHighlight, "", "Default"},
    {10, 0, "16", kHighlight, "", "White"},
    {10, 0, 17, kHighlight, "", ""},
    {10, 0, List("x"), kHighlight, "", ""},
    {11, 0, {}, "Flag it", "", "None"},
    {12, 0, {}, "Stop processing more rules", "", "None"},
    {13, 0, {}, "Mark it as read", "", "None"},
    {14, 0, {}, "Mark it for download", "", "None", false, true},
    {17, 0, 1, kWatch, "", "Watched Message"},
    {17, 0, 2, kWatch, "", "Ignored Message"},
    {17, 0, 3, kWatch, "", ""},
};

const Case kNoTexts = {0, 0, {}, "", "", ""};

class RuleDecoderTest : public SamplePlatform {
 protected:
  /// Writes each case as an entry of one rule, of mail or news, and opens the disk again.
  void WriteRule(const char* set, const char* entries, std::span<const Case> cases, unsigned codePage = 1252) {
    if (!platform) MakeDisk({.smallStores = true, .codePage = codePage});
    rule = CurrentUser(IdentitySettingsKey(kIdentity) + "\\Rules\\" + set + "\\FFF");
    for (std::size_t i = 0; i < cases.size(); ++i) {
      const Key key = store->CreateKey(rule.Child(entries).Child(std::to_string(1000 + i)));
      Write(key, "Type", cases[i].type);
      Write(key, "Flags", cases[i].flags);
      Write(key, "Value", cases[i].value);
    }
    platform->EndCommand();
    OpenDisk();
  }
  void Write(const Key& key, const char* name, const RegValue& value) {
    if (value.Data()) {
      platform->GetRegistry().SetValue(key, name, ValueType::Binary, *value.Data());
    } else if (!value.IsEmpty()) {
      store->SetValueEx(key, name, value.Number() ? ValueType::Dword : ValueType::Sz, value);
    }
  }
  RuleReader Reader(RuleSet set) {
    return RuleReader(*store, set, CodePage(platform->GetSystemFacts().CodePageNumber()));
  }
  RegistryPath rule;
};

TEST_F(RuleDecoderTest, EveryEntryOfBothSetsReadsAsItsTableSays) {
  for (const RuleSet set : {RuleSet::Mail, RuleSet::News}) {
    const char* const name = set == RuleSet::Mail ? "Mail" : "News";
    const auto isKnown = [&](const Case& entry) { return set == RuleSet::Mail ? entry.mail : entry.news; };
    WriteRule(name, "Criteria", kCriteria);
    WriteRule(name, "Actions", kActions);
    RuleReader reader = Reader(set);
    const std::vector<RegistryPath> criteria = reader.EnumCriteria(rule);
    ASSERT_EQ(criteria.size(), std::size(kCriteria));
    for (std::size_t i = 0; i < criteria.size(); ++i) {
      const Case expected = isKnown(kCriteria[i]) ? kCriteria[i] : kNoTexts;
      const CriterionTexts texts = reader.Criterion(criteria[i]);
      EXPECT_EQ(texts.type, expected.typeText) << FullName(criteria[i]);
      EXPECT_EQ(texts.flags, expected.flagsText) << FullName(criteria[i]);
      EXPECT_EQ(texts.value, expected.valueText) << FullName(criteria[i]);
    }
    const std::vector<RegistryPath> actions = reader.EnumActions(rule);
    ASSERT_EQ(actions.size(), std::size(kActions));
    for (std::size_t i = 0; i < actions.size(); ++i) {
      const Case expected = isKnown(kActions[i]) ? kActions[i] : kNoTexts;
      const ActionTexts texts = reader.Action(actions[i]);
      EXPECT_EQ(texts.type, expected.typeText) << FullName(actions[i]);
      EXPECT_EQ(texts.value, expected.valueText) << FullName(actions[i]);
    }
  }
}

TEST_F(RuleDecoderTest, EveryColourHasItsName) {
  const char* const names[] = {"Default", "Black", "Maroon", "Green",  "Olive", "Navy",     "Purple", "Teal", "Gray",
                               "Silver",  "Red",   "Lime",   "Yellow", "Blue",  "Fuchasia", "Aqua",   "White"};
  std::vector<Case> cases;
  for (std::int32_t number = 0; number < std::ssize(names); ++number) cases.push_back({10, 0, number, "", "", ""});
  WriteRule("News", "Actions", cases);
  RuleReader reader = Reader(RuleSet::News);
  const std::vector<RegistryPath> entries = reader.EnumActions(rule);
  ASSERT_EQ(entries.size(), std::size(names));
  for (std::size_t i = 0; i < entries.size(); ++i) EXPECT_EQ(reader.Action(entries[i]).value, names[i]);
}

TEST_F(RuleDecoderTest, DoubleByteListsAreDecodedAndABrokenPairSwallowsNoWord) {
  const Case cases[] = {{8, 0, List(std::string_view("\x93\xFA\x96{\0\x95\\", 7)), "", "", ""},
                        {8, 0, List(std::string_view("\x93\0b", 3)), "", "", ""}};
  WriteRule("Mail", "Criteria", cases, 932);
  RuleReader reader = Reader(RuleSet::Mail);
  const std::vector<RegistryPath> entries = reader.EnumCriteria(rule);
  EXPECT_EQ(reader.Criterion(entries[0]).value, "日本 表  ");
  EXPECT_EQ(reader.Criterion(entries[1]).value, "\xEF\xBF\xBD b  ");
}

TEST_F(RuleDecoderTest, APriorityThatIsNoNumberCannotBeDecoded) {
  const Case cases[] = {{13, 0, {}, "", "", ""}, {31, 0, "high", "", "", ""}, {31, 0, List("high"), "", "", ""}};
  WriteRule("Mail", "Criteria", cases);
  RuleReader reader = Reader(RuleSet::Mail);
  for (const RegistryPath& entry : reader.EnumCriteria(rule)) EXPECT_THROW(reader.Criterion(entry), Error);
  RuleReader news = Reader(RuleSet::News);
  EXPECT_EQ(news.Criterion(reader.EnumCriteria(rule).front()).type, "") << "it is no criterion of news";
}

TEST_F(RuleDecoderTest, HeadersOfAnyTypesAreRead) {
  WriteRule("News", "Criteria", {});
  const Key key = store->CreateKey(rule);
  RuleReader reader = Reader(RuleSet::News);
  RuleHeader header = reader.Header(rule);
  EXPECT_EQ(header.number + "|" + header.name + "|" + header.enabled + "|" + header.version, "FFF||Disabled|0");
  const std::string longName(70'000, 'n');
  Write(key, "Name", longName);
  Write(key, "Enabled", "1");
  Write(key, "Version", List("ab"));
  header = reader.Header(rule);
  EXPECT_EQ(header.name, longName);
  EXPECT_EQ(header.enabled + "|" + header.version, "Enabled|");
  Write(key, "Enabled", 2);
  EXPECT_EQ(reader.Header(rule).enabled, "");
  EXPECT_TRUE(reader.EnumCriteria(rule).empty()) << "a key that is not there";
  EXPECT_TRUE(reader.EnumRules("{0}").empty());
}

}  // namespace
}  // namespace quillbox
