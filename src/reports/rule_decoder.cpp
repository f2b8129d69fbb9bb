// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/rule_decoder.h"

#include <algorithm>
#include <span>

#include "text/error.h"

namespace quillbox {
namespace {

struct Name {
  std::int32_t number;
  const char* text;
};

constexpr Name kWords[] = {
    {0, "Message contains the words below and Message matches any one of the words below"},
    {1, "Message does not contain the words below and Message matches any one of the words below"},
    {2, "Message contains the words below  and Message matches all of the words below"},
    {3, "Message does not contain the words below and Message matches all of the words below"},
};
constexpr Name kPeople[] = {
    {0, "Message contains the people below and Message matches any one of the people below"},
    {1, "Message does not contain the people below and Message matches any one of the people below"},
    {2, "Message contains the people below and Message matches all of the people below"},
    {3, "Message does not contain the people below and Message matches all of the people below"},
};
constexpr Name kPriorities[] = {{1, "Low priority messages"}, {2, "High priority messages"}};
constexpr Name kSecurity[] = {{1, "Signed messages"}, {2, "Encrypted messages"}};
constexpr Name kWatched[] = {{1, "Watched Message"}, {2, "Ignored Message"}};
constexpr Name kEnabled[] = {{0, "Disabled"}, {1, "Enabled"}};
constexpr Name kColours[] = {
    {0, "Default"}, {1, "Black"}, {2, "Maroon"},    {3, "Green"},  {4, "Olive"},  {5, "Navy"},
    {6, "Purple"},  {7, "Teal"},  {8, "Gray"},      {9, "Silver"}, {10, "Red"},   {11, "Lime"},
    {12, "Yellow"}, {13, "Blue"}, {14, "Fuchasia"}, {15, "Aqua"},  {16, "White"},
};

/// How an entry's value is shown.
struct ValueForm {
  enum class Kind {
    Fixed,        ///< `text`, whatever is stored
    List,         ///< a stored list of words or people
    Followed,     ///< the stored value, then `text`
    Named,        ///< the name of the stored number
    NamedStrict,  ///< the same; throws Error for a stored value that is not a number
  };
  Kind kind;
  const char* text = "";
  std::span<const Name> names = {};
};
constexpr ValueForm Fixed(const char* text) {
  return {ValueForm::Kind::Fixed, text};
}
constexpr ValueForm Followed(const char* text) {
  return {ValueForm::Kind::Followed, text};
}
constexpr ValueForm Named(std::span<const Name> names) {
  return {ValueForm::Kind::Named, "", names};
}
constexpr ValueForm NamedStrict(std::span<const Name> names) {
  return {ValueForm::Kind::NamedStrict, "", names};
}
constexpr ValueForm kList = {ValueForm::Kind::List};
constexpr ValueForm kAsStored = Followed("");

/// Shows flags as their digits instead of a sentence.
constexpr std::span<const Name> kDigits = {};

/// The type number is not known yet: no registry seen so far stores it. Put it into the row when one does.
constexpr std::nullopt_t kNotKnown = std::nullopt;

struct CriterionRow {
  std::optional<std::int32_t> type;
  bool mail, news;
  const char* text;
  std::span<const Name> flags;
  ValueForm value;
};
constexpr bool kYes = true;
constexpr bool kNo = false;

const CriterionRow kCriteria[] = {
    // type, mail, news
    {1, kNo, kYes, "Where the message is from the specified account", kDigits, Fixed("Encoded")},
    {8, kYes, kYes, "Where the subject line contains specific words", kWords, kList},
    {9, kYes, kNo, "Where the message body contains specific words", kWords, kList},
    {10, kYes, kNo, "Where the To line contains people", kPeople, kList},
    {11, kYes, kNo, "Where the CC line contains people", kPeople, kList},
    {12, kYes, kYes, "Where the From line contains people", kPeople, kList},
    {13, kYes, kNo, "Where the message is marked as priority", kDigits, NamedStrict(kPriorities)},
    {14, kYes, kNo, "Where the message has an attachment", kDigits, Fixed("")},
    {15, kYes, kNo, "Where the message size is more than size", kDigits, Followed("kb")},
    {19, kYes, kYes, "Where the message is from the specified account", kDigits, kAsStored},
    {20, kYes, kYes, "For all messages", kDigits, Fixed("None")},
    {22, kYes, kNo, "Where the To or CC line contains people", kPeople, kList},
    {30, kNo, kYes, "Where the number of lines in the message is more than lines", kDigits, Followed(" lines")},
    {31, kYes, kNo, "Where the message is secure", kDigits, NamedStrict(kSecurity)},
    {kNotKnown, kNo, kYes, "Where the message was sent more than days ago", kDigits, Followed(" days")},
};

struct ActionRow {
  std::optional<std::int32_t> type;
  bool mail, news;
  const char* text;
  ValueForm value;
};

const ActionRow kActions[] = {
    // type, mail, news
    {1, kYes, kNo, "Copy it to the specified folder", Fixed("Unknown: Resides in OE")},
    {2, kYes, kNo, "Forward it to people", kAsStored},
    {5, kYes, kNo, "Reply with message", kAsStored},
    {6, kYes, kNo, "Move it to the specified folder", Fixed("Unknown: Resides in OE")},
    {7, kYes, kYes, "Delete it", Fixed("None")},
    {8, kYes, kNo, "Delete it from server", Fixed("None")},
    {9, kYes, kNo, "Do not download from server", Fixed("None")},
    {10, kYes, kYes, "Highlight it with color", Named(kColours)},
    {11, kYes, kYes, "Flag it", Fixed("None")},
    {12, kYes, kYes, "Stop processing more rules", Fixed("None")},
    {13, kYes, kYes, "Mark it as read", Fixed("None")},
    {14, kNo, kYes, "Mark it for download", Fixed("None")},
    {17, kYes, kYes, "Mark the message as watched or ignored", Named(kWatched)},
};

template <class Row>
const Row* RowFor(std::span<const Row> rows, RuleSet set, const RegValue& type) {
  const std::optional<std::int32_t> number = NumberOf(type);
  const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& candidate) {
    return number && candidate.type == number && (set == RuleSet::Mail ? candidate.mail : candidate.news);
  });
  return row == rows.end() ? nullptr : &*row;
}

std::string NameOf(std::optional<std::int32_t> number, std::span<const Name> names) {
  const auto found = std::find_if(names.begin(), names.end(), [&](const Name& name) { return name.number == number; });
  return found == names.end() ? std::string() : found->text;
}

/// A number, read from the value's text. Throws Error when the text is not a number.
std::int32_t NumberInText(const RegValue& value) {
  const std::string text = TextOf(value);
  const std::optional<std::int32_t> number = RegValue(text).AsNumber();
  if (!number) throw Error("decoding a message rule", {"Value", {}, {}}, "\"" + text + "\" is not a number");
  return *number;
}

std::string ListText(const RegValue& value, const CodePage& codePage) {
  return value.Data() ? ByteArrayToString(*value.Data(), codePage) : TextOf(value);
}

/// `codePage` may be null where no value is a list.
std::string ValueText(const ValueForm& form, const RegValue& value, const CodePage* codePage) {
  switch (form.kind) {
    case ValueForm::Kind::Fixed:
      break;
    case ValueForm::Kind::List:
      return ListText(value, *codePage);
    case ValueForm::Kind::Followed:
      return TextOf(value) + form.text;
    case ValueForm::Kind::Named:
      return NameOf(NumberOf(value), form.names);
    case ValueForm::Kind::NamedStrict:
      return NameOf(NumberInText(value), form.names);
  }
  return form.text;
}

std::string FlagsText(std::span<const Name> names, const RegValue& flags) {
  const std::optional<std::int32_t> number = NumberOf(flags);
  if (!names.empty()) return NameOf(number, names);
  return number ? std::to_string(*number) : std::string();
}

}  // namespace

CriterionTexts DecodeCriterion(RuleSet set, const RuleEntry& entry, const CodePage& codePage) {
  const CriterionRow* row = RowFor(std::span<const CriterionRow>(kCriteria), set, entry.type);
  if (!row) return {};
  return {row->text, FlagsText(row->flags, entry.flags), ValueText(row->value, entry.value, &codePage)};
}

ActionTexts DecodeAction(RuleSet set, const RuleEntry& entry) {
  const ActionRow* row = RowFor(std::span<const ActionRow>(kActions), set, entry.type);
  if (!row) return {};
  return {row->text, ValueText(row->value, entry.value, nullptr)};
}

std::string EnabledText(const RegValue& enabled) {
  return NameOf(NumberOf(enabled), kEnabled);
}

std::string TextOf(const RegValue& value) {
  return value.Data() ? ToUtf8(Utf16FromBytes(*value.Data())) : value.AsText();
}

std::optional<std::int32_t> NumberOf(const RegValue& value) {
  return value.IsEmpty() ? std::optional<std::int32_t>(0) : value.AsNumber();
}

std::string ByteArrayToString(const Bytes& bytes, const CodePage& codePage) {
  std::string text = codePage.Decode({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  std::replace(text.begin(), text.end(), '\0', ' ');
  return text;
}

}  // namespace quillbox
