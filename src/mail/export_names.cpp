// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/export_names.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

#include "text/message_text.h"
#include "text/unicode.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

constexpr std::size_t kMaxSenderBytes = 40;
/// More of a subject than this never gets into a name.
constexpr std::size_t kMaxLookedAt = 2000;
/// " (2)" to " (999999)" and the ending have room behind a stem.
constexpr std::size_t kMaxStemBytes = kMaxNameBytes - 14;

/// The longest beginning of `text` of at most `limit` bytes that ends between two characters.
std::string_view CutAt(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text;
  while (limit != 0 && (static_cast<unsigned char>(text[limit]) & 0xC0) == 0x80) --limit;
  return text.substr(0, limit);
}

/// A unit of a text that OneLine has made, as it may be in a name.
char16_t SafeUnit(char16_t unit) {
  constexpr std::u16string_view kForbidden = u"<>:\"/\\|?*\uFFFD";
  const bool isPictureOfControl = unit >= 0x2400 && unit <= 0x2421;
  return isPictureOfControl || kForbidden.find(unit) != std::u16string_view::npos ? u'_' : unit;
}

std::string SafeText(std::string_view text) {
  std::string oneLine(CutAt(text, kMaxLookedAt));
  std::replace_if(
      oneLine.begin(), oneLine.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
  std::u16string units = ToUtf16(OneLine(oneLine));
  std::transform(units.begin(), units.end(), units.begin(), SafeUnit);
  units.erase(std::unique(units.begin(), units.end(), [](char16_t a, char16_t b) { return a == ' ' && b == ' '; }),
              units.end());
  return ToUtf8(units);
}

std::string_view TrimEnds(std::string_view text) {
  text.remove_prefix(std::min(text.size(), text.find_first_not_of(' ')));
  return text.substr(0, text.find_last_not_of(" .") + 1);
}

std::string DateText(std::int64_t unixSeconds) {
  using namespace std::chrono;
  const year_month_day day(floor<days>(sys_seconds{seconds{unixSeconds}}));
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", int{day.year()}, unsigned{day.month()}, unsigned{day.day()});
  return text;
}

std::size_t HashOf(std::string_view name) {
  return std::hash<std::string>()(UpperCase(name));
}

/// A text of the header, or that of the record where the header's is missing or in an unknown charset.
std::string BestText(const std::string& inHeader, const std::string& inRecord, const CodePage& page) {
  DecodedText decoded = DecodeWords(inHeader, page);
  const bool useRecord = (inHeader.empty() || !decoded.isComplete) && !inRecord.empty();
  return useRecord ? DecodeWords(inRecord, page).text : std::move(decoded.text);
}

}  // namespace

std::string SafeName(std::string_view text, std::size_t maxBytes, std::string_view ifEmpty) {
  const std::string safe = SafeText(text);
  std::string name(TrimEnds(CutAt(TrimEnds(safe), maxBytes)));
  if (name.starts_with('.')) name.front() = '_';
  if (name.empty()) name = ifEmpty;
  // What is wrong with it now is that it is a device's name.
  if (!name.empty() && FileNameFault(name)) name = CutAt("_" + name, maxBytes);
  return name;
}

bool UniqueNames::Note(std::string_view name) {
  return taken_.try_emplace(HashOf(name), 1).second;
}

std::string UniqueNames::Take(std::string_view stem, std::string_view ending) {
  const std::string_view cut = TrimEnds(CutAt(stem, kMaxNameBytes - std::min(kMaxNameBytes, ending.size())));
  const std::string first = std::string(cut) + std::string(ending);
  std::string name = first;
  while (!Note(name)) {
    const std::uint64_t number = ++taken_[HashOf(first)];
    const std::string mark = " (" + std::to_string(number) + ")" + std::string(ending);
    name = std::string(TrimEnds(CutAt(cut, kMaxNameBytes - std::min(kMaxNameBytes, mark.size())))) + mark;
  }
  return name;
}

EmlFacts FactsOf(const StoredMessage& message, const MessageHeader& header, const CodePage& page) {
  EmlFacts facts;
  facts.date = ParseMailDate(header.date);
  if (!facts.date && message.sent) facts.date = UnixSeconds(*message.sent);
  if (!facts.date && message.received) facts.date = UnixSeconds(*message.received);
  facts.subject = BestText(header.subject, message.subject, page);
  const Mailbox sender = ParseMailbox(header.from);
  facts.sender = BestText(sender.name, message.senderName, page);
  if (facts.sender.empty()) facts.sender = BestText(sender.address, message.senderAddress, page);
  return facts;
}

std::string EmlStem(const EmlFacts& facts) {
  const std::string date = facts.date ? DateText(*facts.date) + " " : std::string();
  const std::string sender = SafeName(facts.sender, kMaxSenderBytes, "");
  const std::string end = sender.empty() ? sender : " (" + sender + ")";
  const std::size_t room = kMaxStemBytes - date.size() - end.size();
  return SafeName(date + SafeName(facts.subject, room, "no subject") + end, kMaxStemBytes, "message");
}

std::string MaildirName(const MessageIdentity& identity, std::int64_t received, const MailState& state,
                        char separator) {
  char name[80];
  std::snprintf(name, sizeof name, "%lld.%016llx%016llx.quillbox%c2,", static_cast<long long>(received),
                static_cast<unsigned long long>(identity.digest[0]),
                static_cast<unsigned long long>(identity.digest[1]), separator);
  return name + MaildirFlags(state);
}

std::string_view MaildirBase(std::string_view name) {
  return name.substr(0, name.find_first_of(":!;"));
}

}  // namespace quillbox
