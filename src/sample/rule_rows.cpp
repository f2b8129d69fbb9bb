// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/rule_rows.h"

#include <algorithm>
#include <cstdio>

#include "sample/registry_rows.h"

namespace quillbox {
namespace {

// How an entry's "Value" is stored; the numbers are those of "ValueType".
enum class Stored : std::uint32_t { None = 0, Number = 19, Text = 30, Words = 65, Folder = 0x10041 };
constexpr std::uint32_t kValueTypeMask = 0xFFFF;
constexpr std::uint32_t kRuleVersion = 5;
constexpr std::uint32_t kSetVersion = 0x50000;

// "Logic" of a criterion: how it is joined with the next one; the last has 0.
constexpr std::uint32_t kAnd = 1;
constexpr std::uint32_t kOr = 2;

struct Entry {
  std::uint32_t type;
  std::uint32_t flags = 0;
  Stored stored = Stored::None;
  std::string_view text = {};  ///< Words: "|" between them
  std::uint32_t number = 0;
};

struct Rule {
  std::string_view name;
  bool enabled;
  std::uint32_t logic;
  std::vector<Entry> criteria;
  std::vector<Entry> actions;
  std::string_view key = {};  ///< its name, if it is not its number
};

const Rule kHomeMail[] = {
    {"Choir",
     true,
     kOr,
     {{8, 0, Stored::Words, "[choir]|rehearsal"}, {10, 0, Stored::Words, "choir@example.org"}},
     {{6, 0, Stored::Folder, {}, 5}, {10, 0, Stored::Number, {}, 13}, {12}}},
    {"Not from the list",
     true,
     kAnd,
     {{8, 1, Stored::Words, "newsletter|offer"}, {12, 1, Stored::Words, "news@example.com|shop@example.net"}},
     {{11}, {10, 0, Stored::Number, {}, 10}}},
    {"All of the words",
     true,
     kAnd,
     {{9, 2, Stored::Words, "invoice|due date"},
      {8, 3, Stored::Words, "paid|reminder"},
      {9, 3, Stored::Words, "draft"}},
     {{1, 0, Stored::Folder, {}, 6}, {2, 0, Stored::Text, "books@example.com"}}},
    {"Café & Zürich",
     true,
     kOr,
     {{11, 2, Stored::Words, "rené@example.org|zoë@example.org"}, {22, 3, Stored::Words, "office@example.org"}},
     {{13}, {17, 0, Stored::Number, {}, 1}}},
    {"Important",
     true,
     kAnd,
     {{13, 0, Stored::Number, {}, 2}, {31, 0, Stored::Number, {}, 1}},
     {{10, 0, Stored::Number, {}, 2}}},
    {"Slow post",
     false,
     kAnd,
     {{13, 0, Stored::Number, {}, 1}, {31, 0, Stored::Number, {}, 2}},
     {{17, 0, Stored::Number, {}, 2}, {13}}},
    {"Too large", true, kAnd, {{15, 0, Stored::Number, {}, 500}, {14}}, {{9}}},
    {"Away until Monday",
     false,
     kAnd,
     {{19, 0, Stored::Text, "00000001"}},
     {{5, 0, Stored::Text, "<documents>\\away.eml"}}},
    {"Known nuisances", true, kAnd, {{12, 2, Stored::Words, "winner@prizes.example"}}, {{7}, {8}}},
    {"Everything else", false, kAnd, {{20}}, {{10, 0, Stored::Number, {}, 0}}},
};

const Rule kHomeNews[] = {
    {"Language questions",
     true,
     kOr,
     {{8, 0, Stored::Words, "template|constructor"}, {1, 0, Stored::Words, "news.example.net|comp.lang.c++"}},
     {{17, 0, Stored::Number, {}, 1}, {14}}},
    {"Long posts",
     true,
     kAnd,
     {{30, 0, Stored::Number, {}, 400}, {12, 3, Stored::Words, "moderator@example.net"}},
     {{13}, {10, 0, Stored::Number, {}, 8}}},
    {"Off topic",
     true,
     kOr,
     {{12, 0, Stored::Words, "crosspost@example.net"}, {8, 1, Stored::Words, "[ot]"}},
     {{7}, {12}}},
    {"This server", false, kAnd, {{19, 0, Stored::Text, "00000003"}}, {{11}, {17, 0, Stored::Number, {}, 2}}},
    {"All posts", false, kAnd, {{20}}, {{10, 0, Stored::Number, {}, 16}}},
};

const Rule kViews[] = {
    {"Hide Read Messages", true, kAnd, {{25}}, {{15}}, "FFA"},
    {"Show Downloaded Messages", true, kAnd, {{28}}, {{15}}, "FFB"},
    {"Hide Read or Ignored Messages", true, kOr, {{25}, {28}}, {{15}}, "FFC"},
    {"Show All Messages", true, kAnd, {{20}}, {{15}}, "FFF"},
};

const Rule kOfficeMail[] = {
    {"Rechnungen für Büro", true, kAnd, {{8, 0, Stored::Words, "Rechnung|fällig"}}, {{11}}},
};

constexpr std::string_view kBlockedMail[] = {"winner@prizes.example", "pills.example", "noreply@lottery.example"};
constexpr std::string_view kBlockedNews[] = {"crosspost@example.net"};
constexpr std::uint32_t kSenderCriterion = 23;

std::string EntryName(std::size_t index) {
  char name[16];
  std::snprintf(name, sizeof name, "%03zX", index);
  return name;
}

std::string KeyName(const Rule& rule, std::size_t index) {
  return rule.key.empty() ? EntryName(index) : std::string(rule.key);
}

/// `nameOf` gives the name of the key at a position.
template <class F>
void WriteOrder(Hive& hive, HiveKey key, std::size_t count, F nameOf) {
  std::string order;
  for (std::size_t i = 0; i < count; ++i) order += (i == 0 ? "" : " ") + nameOf(i);
  SetText(hive, key, "Order", RowType::Sz, order);
}

/// "Logic" of criterion `index` of `count`.
std::uint32_t LogicOf(std::size_t index, std::size_t count, std::uint32_t joined) {
  return index + 1 == count ? 0 : joined;
}

/// NUL-ended texts one after the other, and one NUL more.
Bytes WordList(std::string_view words, const CodePage& codePage) {
  std::string list = codePage.EncodeLossy(words);
  std::replace(list.begin(), list.end(), '|', '\0');
  list.append(2, '\0');
  return {list.begin(), list.end()};
}

/// A folder as rules name it: a stamp of the store, then the folder's number.
Bytes FolderReference(std::uint32_t folder) {
  Bytes bytes = {0x80, 0x5E, 0x1C, 0x44, 0x9A, 0x6B, 0xC4, 0x01, 0, 0, 0, 0, 0, 0, 0, 0};
  bytes[8] = static_cast<std::uint8_t>(folder);
  return bytes;
}

void WriteEntry(Hive& hive, HiveKey key, const Entry& entry, const RuleTexts& texts) {
  constexpr auto kBinary = static_cast<std::uint32_t>(RowType::Binary);
  SetNumber(hive, key, "Type", entry.type);
  SetNumber(hive, key, "Flags", entry.flags);
  SetNumber(hive, key, "ValueType", static_cast<std::uint32_t>(entry.stored) & kValueTypeMask);
  switch (entry.stored) {
    case Stored::None:
      break;
    case Stored::Number:
      SetNumber(hive, key, "Value", entry.number);
      break;
    case Stored::Text:
      SetText(hive, key, "Value", RowType::Sz, Filled(entry.text, {{"<documents>", texts.documents}}));
      break;
    case Stored::Words:
      hive.SetValue(key, "Value", kBinary, WordList(entry.text, texts.codePage));
      break;
    case Stored::Folder:
      hive.SetValue(key, "Value", kBinary, FolderReference(entry.number));
      break;
  }
}

void WriteRules(Hive& hive, HiveKey settings, std::string_view path, std::span<const Rule> rules,
                const RuleTexts& texts) {
  const HiveKey set = hive.CreatePath(settings, path);
  WriteOrder(hive, set, rules.size(), [&](std::size_t r) { return KeyName(rules[r], r); });
  SetNumber(hive, set, "Version", kSetVersion);
  for (std::size_t r = 0; r < rules.size(); ++r) {
    const Rule& rule = rules[r];
    const HiveKey key = hive.CreateSubkey(set, KeyName(rule, r));
    SetText(hive, key, "Name", RowType::Sz, rule.name);
    SetNumber(hive, key, "Enabled", rule.enabled ? 1 : 0);
    SetNumber(hive, key, "Version", kRuleVersion);
    const HiveKey criteria = hive.CreateSubkey(key, "Criteria");
    WriteOrder(hive, criteria, rule.criteria.size(), EntryName);
    for (std::size_t i = 0; i < rule.criteria.size(); ++i) {
      const HiveKey entry = hive.CreateSubkey(criteria, EntryName(i));
      WriteEntry(hive, entry, rule.criteria[i], texts);
      SetNumber(hive, entry, "Logic", LogicOf(i, rule.criteria.size(), rule.logic));
    }
    const HiveKey actions = hive.CreateSubkey(key, "Actions");
    WriteOrder(hive, actions, rule.actions.size(), EntryName);
    for (std::size_t i = 0; i < rule.actions.size(); ++i) {
      WriteEntry(hive, hive.CreateSubkey(actions, EntryName(i)), rule.actions[i], texts);
    }
  }
}

void WriteBlocked(Hive& hive, HiveKey settings, std::string_view path, std::span<const std::string_view> senders) {
  const HiveKey list = hive.CreatePath(settings, path);
  SetNumber(hive, list, "Version", kSetVersion);
  const HiveKey criteria = hive.CreateSubkey(list, "Criteria");
  WriteOrder(hive, criteria, senders.size(), EntryName);
  for (std::size_t i = 0; i < senders.size(); ++i) {
    const HiveKey entry = hive.CreateSubkey(criteria, EntryName(i));
    WriteEntry(hive, entry, {kSenderCriterion, 0, Stored::Text, senders[i], 0}, {});
    SetNumber(hive, entry, "Logic", LogicOf(i, senders.size(), kOr));
  }
}

}  // namespace

void WriteHomeRules(Hive& hive, HiveKey settings, const RuleTexts& texts) {
  SetNumber(hive, hive.CreatePath(settings, "Rules"), "Messenger Auto logon", 0);
  WriteRules(hive, settings, "Rules\\Mail", kHomeMail, texts);
  WriteRules(hive, settings, "Rules\\News", kHomeNews, texts);
  WriteRules(hive, settings, "Rules\\Filter", kViews, texts);
  WriteBlocked(hive, settings, "Block Senders\\Mail", kBlockedMail);
  WriteBlocked(hive, settings, "Block Senders\\News", kBlockedNews);
}

void WriteOfficeRules(Hive& hive, HiveKey settings, const RuleTexts& texts) {
  WriteRules(hive, settings, "Rules\\Mail", kOfficeMail, texts);
}

}  // namespace quillbox
