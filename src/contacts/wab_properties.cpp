// SPDX-License-Identifier: GPL-3.0-or-later
#include "contacts/wab_properties.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

#include "text/byte_order.h"
#include "text/file_time.h"

namespace quillbox {
namespace {

using C = WabContent;

template <class T>
WabPlace To(T& (*place)(C&)) {
  return place;
}

// By kind and by place, as the notes on the format list them.
const WabPropertyRow kTable[] = {
    {0x3001, To(+[](C& c) -> std::string& { return c.contact.displayName; })},
    {0x3002, To(+[](C& c) -> std::string& { return c.mailType; })},
    {0x3003, To(+[](C& c) -> std::string& { return c.mail; })},
    {0x3004, To(+[](C& c) -> std::string& { return c.contact.notes; })},
    {0x0FFE, To(+[](C& c) -> std::optional<std::uint32_t>& { return c.kind; })},
    {0x0FFF, To(+[](C& c) -> Bytes& { return c.entryId; })},
    {0x3A06, To(+[](C& c) -> std::string& { return c.contact.firstName; })},
    {0x3A44, To(+[](C& c) -> std::string& { return c.contact.middleName; })},
    {0x3A11, To(+[](C& c) -> std::string& { return c.contact.lastName; })},
    {0x3A45, To(+[](C& c) -> std::string& { return c.contact.title; })},
    {0x3A4F, To(+[](C& c) -> std::string& { return c.contact.nickname; })},
    // Business.
    {0x3A08, To(+[](C& c) -> std::string& { return c.contact.business.phone; })},
    {0x3A24, To(+[](C& c) -> std::string& { return c.contact.business.fax; })},
    {0x3A16, To(+[](C& c) -> std::string& { return c.contact.company; })},
    {0x3A17, To(+[](C& c) -> std::string& { return c.contact.job; })},
    {0x3A18, To(+[](C& c) -> std::string& { return c.contact.department; })},
    {0x3A19, To(+[](C& c) -> std::string& { return c.contact.office; })},
    {0x3A29, To(+[](C& c) -> std::string& { return c.contact.business.address.street; })},
    {0x3A27, To(+[](C& c) -> std::string& { return c.contact.business.address.city; })},
    {0x3A28, To(+[](C& c) -> std::string& { return c.contact.business.address.state; })},
    {0x3A2A, To(+[](C& c) -> std::string& { return c.contact.business.address.postCode; })},
    {0x3A26, To(+[](C& c) -> std::string& { return c.contact.business.address.country; })},
    {0x3A51, To(+[](C& c) -> std::string& { return c.contact.business.web; })},
    // Home.
    {0x3A09, To(+[](C& c) -> std::string& { return c.contact.home.phone; })},
    {0x3A25, To(+[](C& c) -> std::string& { return c.contact.home.fax; })},
    {0x3A5D, To(+[](C& c) -> std::string& { return c.contact.home.address.street; })},
    {0x3A59, To(+[](C& c) -> std::string& { return c.contact.home.address.city; })},
    {0x3A5C, To(+[](C& c) -> std::string& { return c.contact.home.address.state; })},
    {0x3A5B, To(+[](C& c) -> std::string& { return c.contact.home.address.postCode; })},
    {0x3A5A, To(+[](C& c) -> std::string& { return c.contact.home.address.country; })},
    {0x3A50, To(+[](C& c) -> std::string& { return c.contact.home.web; })},
    // Anywhere.
    {0x3A1C, To(+[](C& c) -> std::string& { return c.contact.mobile; })},
    {0x3A21, To(+[](C& c) -> std::string& { return c.contact.pager; })},
    {0x3A42, To(+[](C& c) -> std::optional<Date>& { return c.contact.birthday; })},
    {0x3A41, To(+[](C& c) -> std::optional<Date>& { return c.contact.anniversary; })},
    {0x3A54, To(+[](C& c) -> std::vector<std::string>& { return c.mailTypes; })},
    {0x3A55, To(+[](C& c) -> std::optional<std::uint32_t>& { return c.defaultMail; })},
    {0x3A56, To(+[](C& c) -> std::vector<std::string>& { return c.mails; })},
    {0x6600, To(+[](C& c) -> std::vector<Bytes>& { return c.members; })},
};

/// The text up to its first NUL, as valid UTF-8: half characters, which inner text keeps, become U+FFFD.
std::string CleanText(std::string text) {
  text.resize(std::min(text.find('\0'), text.size()));
  for (std::size_t at = 0; (at = text.find('\xED', at)) != std::string::npos; at += 3) {
    if (static_cast<std::uint8_t>(text[at + 1]) >= 0xA0) text.replace(at, 3, "\xEF\xBF\xBD");
  }
  return text;
}

std::string TextOf(ByteView data, bool wide, const CodePage& codePage) {
  if (wide) return CleanText(ToUtf8(Utf16FromBytes(data)));
  return CleanText(codePage.Decode({reinterpret_cast<const char*>(data.data()), data.size()}));
}

/// The day of a time as it is in the file, without a time zone. Nothing beyond the year 9999.
std::optional<Date> DayOf(FileTime time) {
  using std::chrono::days;
  using std::chrono::sys_days;
  constexpr FileTime kPerDay = kFileTimePerSecond * 86'400;
  constexpr sys_days kFirst = std::chrono::year(1601) / 1 / 1;
  constexpr sys_days kLast = std::chrono::year(9999) / 12 / 31;
  const sys_days day = kFirst + days(static_cast<int>(time / kPerDay));
  if (day > kLast) return std::nullopt;
  return Date(day);
}

/// Keeps one property, by the place that it has in the table. A type that the place doesn't take is skipped.
class Keeper {
 public:
  Keeper(const WabProperty& property, const CodePage& codePage, WabContent& content)
      : property_(property), codePage_(codePage), content_(content), type_(property.Type() & ~kArray) {}

  using Result = std::optional<BookFaultKind>;

  Result operator()(std::string& (*place)(C&)) {
    if (!IsText() || IsArray()) return {};
    place(content_) = Text(property_.data);
    const bool halfUnit = IsWide() && property_.data.size() % 2 != 0;
    return halfUnit ? Result(BookFaultKind::WrongLength) : std::nullopt;
  }
  Result operator()(std::vector<std::string>& (*place)(C&)) {
    if (!IsText() || !IsArray()) return {};
    std::vector<std::string>& texts = place(content_);
    texts.clear();
    WabElements elements(property_);
    while (const auto element = elements.Next()) texts.push_back(Text(*element));
    return {};
  }
  Result operator()(std::optional<std::uint32_t>& (*place)(C&)) {
    if (!Is(WabType::Number)) return {};
    if (property_.data.size() != 4) return BookFaultKind::WrongLength;
    place(content_) = Load32(property_.data.data());
    return {};
  }
  Result operator()(std::optional<Date>& (*place)(C&)) {
    if (!Is(WabType::Time)) return {};
    if (property_.data.size() != 8) return BookFaultKind::WrongLength;
    const FileTime time = Load64(property_.data.data());
    place(content_) = time == 0 ? std::nullopt : DayOf(time);
    if (time != 0 && !place(content_)) return BookFaultKind::DateOutOfRange;
    return {};
  }
  Result operator()(Bytes& (*place)(C&)) {
    if (Is(WabType::Binary)) place(content_) = Bytes(property_.data.begin(), property_.data.end());
    return {};
  }
  Result operator()(std::vector<Bytes>& (*place)(C&)) {
    if (type_ != static_cast<std::uint16_t>(WabType::Binary) || !IsArray()) return {};
    std::vector<Bytes>& all = place(content_);
    all.clear();
    WabElements elements(property_);
    while (const auto element = elements.Next()) all.emplace_back(element->begin(), element->end());
    return {};
  }

 private:
  static constexpr auto kArray = static_cast<std::uint16_t>(WabType::Array);

  bool IsArray() const { return (property_.Type() & kArray) != 0; }
  bool Is(WabType type) const { return property_.Type() == static_cast<std::uint16_t>(type); }
  bool IsWide() const { return type_ == static_cast<std::uint16_t>(WabType::WideText); }
  bool IsText() const { return IsWide() || type_ == static_cast<std::uint16_t>(WabType::NarrowText); }
  std::string Text(ByteView data) const { return TextOf(data, IsWide(), codePage_); }

  const WabProperty& property_;
  const CodePage& codePage_;
  WabContent& content_;
  std::uint16_t type_;
};

const std::map<std::uint16_t, WabPlace>& PlacesById() {
  static const std::map<std::uint16_t, WabPlace> kPlaces = [] {
    std::map<std::uint16_t, WabPlace> places;
    for (const WabPropertyRow& row : kTable) places.emplace(row.id, row.place);
    return places;
  }();
  return kPlaces;
}

}  // namespace

std::span<const WabPropertyRow> WabPropertyTable() {
  return kTable;
}

std::optional<BookFaultKind> KeepProperty(const WabProperty& property, const CodePage& codePage, WabContent& content) {
  const auto place = PlacesById().find(property.Id());
  if (place == PlacesById().end()) return std::nullopt;
  return std::visit(Keeper(property, codePage, content), place->second);
}

Contact ContactOf(WabContent content, std::uint32_t recordId) {
  Contact contact = std::move(content.contact);
  contact.recordId = recordId;
  std::vector<MailAddress> all;
  for (std::size_t at = 0; at < content.mails.size(); ++at) {
    all.push_back({content.mails[at], at < content.mailTypes.size() ? content.mailTypes[at] : std::string()});
  }
  // Which one is first: the one that the record points to, else the single one.
  if (content.defaultMail && *content.defaultMail < all.size()) {
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(*content.defaultMail);
    std::rotate(all.begin(), first, first + 1);
    all.push_back({content.mail, content.mailType});
  } else {
    all.insert(all.begin(), {content.mail, content.mailType});
  }
  std::map<std::string, std::size_t> places;
  for (MailAddress& mail : all) {
    if (mail.address.empty()) continue;
    const auto [place, isNew] = places.emplace(UpperCase(mail.address), contact.mails.size());
    if (isNew) {
      contact.mails.push_back(std::move(mail));
    } else if (contact.mails[place->second].type.empty()) {
      contact.mails[place->second].type = std::move(mail.type);
    }
  }
  return contact;
}

}  // namespace quillbox
