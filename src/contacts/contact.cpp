// SPDX-License-Identifier: GPL-3.0-or-later
#include "contacts/contact.h"

#include <array>
#include <cstdio>
#include <string_view>

#include "text/unicode.h"

namespace quillbox {
namespace {

/// FNV-1a, whose published start value is the default.
std::uint64_t Hash(std::string_view bytes, std::uint64_t state = 0xCBF29CE484222325) {
  for (const char byte : bytes) state = (state ^ static_cast<std::uint8_t>(byte)) * 0x100000001B3;
  return state;
}

std::string NumberedName(const char* kind, std::uint32_t recordId) {
  return kind + std::to_string(recordId);
}

}  // namespace

bool MailAddress::IsInternet() const {
  return type.empty() || EqualIgnoreCase(type, "SMTP");
}

bool PostalAddress::IsEmpty() const {
  return street.empty() && city.empty() && state.empty() && postCode.empty() && country.empty();
}

std::string ShownName(const Contact& contact) {
  if (!contact.displayName.empty()) return contact.displayName;
  std::string name;
  for (const std::string* part : {&contact.firstName, &contact.middleName, &contact.lastName}) {
    if (part->empty()) continue;
    if (!name.empty()) name += ' ';
    name += *part;
  }
  if (!name.empty()) return name;
  for (const std::string* other : {&contact.nickname, &contact.company}) {
    if (!other->empty()) return *other;
  }
  if (!contact.mails.empty() && !contact.mails[0].address.empty()) return contact.mails[0].address;
  return NumberedName("Contact ", contact.recordId);
}

std::string ShownName(const ContactGroup& group) {
  return group.name.empty() ? NumberedName("Group ", group.recordId) : group.name;
}

std::string ContactUuid(const Contact& contact) {
  std::string key = std::to_string(contact.recordId) + '\0' + ShownName(contact) + '\0';
  if (!contact.mails.empty()) key += contact.mails[0].address;
  const std::uint64_t first = Hash(key);
  const std::uint64_t second = Hash(key, first);
  // Version 8 of RFC 9562, whose bits are the maker's own.
  std::array<char, 37> text{};
  std::snprintf(text.data(), text.size(), "%08x-%04x-8%03x-%04x-%012llx", static_cast<unsigned>(first >> 32),
                static_cast<unsigned>(first >> 16 & 0xFFFF), static_cast<unsigned>(first & 0xFFF),
                static_cast<unsigned>(0x8000 | (second >> 48 & 0x3FFF)),
                static_cast<unsigned long long>(second & 0xFFFFFFFFFFFF));
  return text.data();
}

}  // namespace quillbox
