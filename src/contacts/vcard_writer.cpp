// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>

#include "contacts/contact_writers.h"
#include "contacts/exported_contact.h"

namespace quillbox {
namespace {

constexpr std::size_t kLongestLine = 75;  // bytes without the line's end

/// A text value, or one component of a value of several.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : PlainLines(text)) {
    if (c == '\n') {
      escaped += "\\n";
      continue;
    }
    if (c == '\\' || c == ';' || c == ',') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

/// The components of a value, with their separators; nothing when all are empty.
std::string Components(std::initializer_list<std::string_view> parts) {
  std::string value;
  bool any = false;
  for (const std::string_view& part : parts) {
    if (&part != parts.begin()) value += ';';
    value += Escaped(part);
    any = any || !part.empty();
  }
  return any ? value : std::string();
}

/// An address on the web is not a text, and so nothing in it may be escaped as in one. Some readers take it for a text
/// all the same: the characters that they would stumble over get their percent forms, which web servers take alike.
std::string Uri(std::string_view address) {
  std::string uri;
  for (const char c : PlainLines(address)) {
    if (c == '\n' || c == '\t') continue;
    const std::string_view form = c == ',' ? "%2C" : c == ';' ? "%3B" : c == '\\' ? "%5C" : "";
    if (form.empty()) {
      uri += c;
    } else {
      uri += form;
    }
  }
  return uri;
}

class CardWriter {
 public:
  explicit CardWriter(const ContactSink& sink) : sink_(sink) {}

  void Write(const Contact& contact, const std::vector<const ContactGroup*>& groups) {
    Line("BEGIN", "VCARD");
    Line("VERSION", "3.0");
    Line("PRODID", "-//Quillbox//Address book//EN");
    Line("UID", ContactUuid(contact));
    Line("FN", Escaped(ShownName(contact)));
    // Required, even if the book knows the name as a whole only.
    const std::string name = Components({contact.lastName, contact.firstName, contact.middleName, contact.title, ""});
    Line("N", name.empty() ? ";;;;" : name);
    Line("NICKNAME", Escaped(contact.nickname));
    WriteMails(contact);
    WritePlace(contact.home, "HOME", "");
    WritePlace(contact.business, "WORK", contact.office);
    Line("TEL;TYPE=CELL", Escaped(contact.mobile));
    Line("TEL;TYPE=PAGER", Escaped(contact.pager));
    Line("ORG",
         contact.department.empty() ? Escaped(contact.company) : Components({contact.company, contact.department}));
    Line("TITLE", Escaped(contact.job));
    Line("BDAY", IsoDate(contact.birthday));
    Line("X-ANNIVERSARY", IsoDate(contact.anniversary));
    Line("NOTE", Escaped(contact.notes));
    Line("CATEGORIES", Categories(groups));
    Line("END", "VCARD");
  }

 private:
  void WriteMails(const Contact& contact) {
    for (const MailAddress& mail : contact.mails) {
      std::string name = mail.IsInternet() ? "EMAIL;TYPE=INTERNET" : "EMAIL";
      const bool isDefault = contact.mails.size() > 1 && &mail == &contact.mails.front();
      if (isDefault) name += mail.IsInternet() ? ",PREF" : ";TYPE=PREF";
      Line(name, Escaped(mail.address));
    }
  }

  void WritePlace(const ContactPlace& place, const std::string& type, std::string_view office) {
    const PostalAddress& address = place.address;
    Line("ADR;TYPE=" + type,
         Components({"", office, address.street, address.city, address.state, address.postCode, address.country}));
    Line("TEL;TYPE=" + type + ",VOICE", Escaped(place.phone));
    Line("TEL;TYPE=" + type + ",FAX", Escaped(place.fax));
    Line("URL;TYPE=" + type, Uri(place.web));
  }

  static std::string Categories(const std::vector<const ContactGroup*>& groups) {
    std::string names;
    for (const ContactGroup* group : groups) {
      if (!names.empty()) names += ',';
      names += Escaped(ShownName(*group));
    }
    return names;
  }

  /// A property, folded: a line goes on in the next one, after a blank that counts. Nothing for an empty value.
  void Line(std::string_view name, const std::string& value) {
    if (value.empty()) return;
    const std::string line = std::string(name) + ':' + value;
    std::string folded;
    std::size_t room = kLongestLine;
    for (std::size_t at = 0; at < line.size();) {
      std::size_t end = std::min(at + room, line.size());
      while (end < line.size() && IsInsideCharacter(line[end])) --end;
      if (at > 0) folded += "\r\n ";
      folded.append(line, at, end - at);
      at = end;
      room = kLongestLine - 1;
    }
    sink_(folded + "\r\n");
  }

  static bool IsInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

  const ContactSink& sink_;
};

}  // namespace

void WriteVCards(const ContactBook& book, ContactChoice chosen, const ContactSink& sink) {
  const auto groups = GroupsOfContacts(book);
  CardWriter writer(sink);
  for (const std::size_t contact : chosen) writer.Write(book.contacts.at(contact), groups.at(contact));
}

}  // namespace quillbox
