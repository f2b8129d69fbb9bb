// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "contacts/contact_writers.h"
#include "contacts/exported_contact.h"

namespace quillbox {
namespace {

constexpr std::size_t kLongestLine = 76;

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const auto byte = [&](std::size_t ahead) {
      return at + ahead < bytes.size() ? static_cast<unsigned char>(bytes[at + ahead]) : 0U;
    };
    const unsigned group = byte(0) << 16 | byte(1) << 8 | byte(2);
    text += kDigits[group >> 18];
    text += kDigits[group >> 12 & 63];
    text += at + 1 < bytes.size() ? kDigits[group >> 6 & 63] : '=';
    text += at + 2 < bytes.size() ? kDigits[group & 63] : '=';
  }
  return text;
}

/// A value that can be written as it is (SAFE-STRING, and no blank at its end).
bool IsSafe(std::string_view value) {
  if (value.starts_with(' ') || value.starts_with(':') || value.starts_with('<') || value.ends_with(' ')) return false;
  return std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c < 0x7F; });
}

/// A value in a distinguished name (RFC 4514).
std::string InName(std::string_view text) {
  std::string escaped;
  const std::string plain = PlainLines(text);
  for (std::size_t at = 0; at < plain.size(); ++at) {
    const char c = plain[at];
    const bool special = std::string_view(",+\"\\<>;=").find(c) != std::string_view::npos;
    const bool atEnd = (at == 0 && (c == ' ' || c == '#')) || (at + 1 == plain.size() && c == ' ');
    if (special || atEnd) escaped += '\\';
    if (c == '\n' || c == '\t') {
      escaped += c == '\n' ? "\\0A" : "\\09";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

/// Distinguished names, each given once.
class Names {
 public:
  /// `name`, or `name` with `unique` where another entry has it.
  std::string Take(const std::string& name, const std::string& unique) {
    const auto [place, isNew] = used_.insert(UpperCase(name));
    return isNew ? name : name + ",uid=" + unique;
  }

 private:
  std::set<std::string> used_;
};

/// A group's name without what Thunderbird's lists cannot have in theirs: it refuses a list with < > ; , " or two
/// blanks in its name, and with it all lists that follow in the file.
std::string ListName(const ContactGroup& group) {
  std::string name;
  for (const char c : ShownName(group)) {
    const bool isBlank = std::string_view("<>;,\" ").find(c) != std::string_view::npos;
    if (!isBlank) {
      name += c;
    } else if (!name.empty() && name.back() != ' ') {
      name += ' ';
    }
  }
  if (name.ends_with(' ')) name.pop_back();
  return name.empty() ? "Group " + std::to_string(group.recordId) : name;
}

class LdifWriter {
 public:
  LdifWriter(const ContactBook& book, ContactChoice chosen, const ContactSink& sink)
      : book_(book), chosen_(chosen), sink_(sink) {}

  void Write() {
    sink_("version: 1\n");
    const auto groups = GroupsOfContacts(book_);
    contactNames_.resize(book_.contacts.size());
    for (const std::size_t place : chosen_) WriteContact(place, groups.at(place));
    NameGroups();
    for (std::size_t place = 0; place < book_.groups.size(); ++place) {
      if (!groupNames_[place].empty()) WriteGroup(place);
    }
  }

 private:
  struct Attribute {
    const char* name;
    std::string value;
  };

  void WriteContact(std::size_t place, const std::vector<const ContactGroup*>& groups) {
    const Contact& contact = book_.contacts.at(place);
    std::string name = "cn=" + InName(ShownName(contact));
    if (!contact.mails.empty()) name += ",mail=" + InName(contact.mails[0].address);
    contactNames_[place] = names_.Take(name, ContactUuid(contact));
    Line("dn", contactNames_[place]);
    for (const char* type : {"top", "person", "organizationalPerson", "inetOrgPerson", "mozillaAbPersonAlpha"}) {
      Line("objectclass", type);
    }
    for (const Attribute& attribute : AttributesOf(contact)) Line(attribute.name, attribute.value);
    Line("description", NotesWith(contact, groups, 2,
                                  {NotePart::Title, NotePart::MiddleName, NotePart::FurtherMails, NotePart::HomeFax,
                                   NotePart::Anniversary}));
    sink_("\n");
  }

  static std::vector<Attribute> AttributesOf(const Contact& contact) {
    const PostalAddress& home = contact.home.address;
    const PostalAddress& work = contact.business.address;
    const std::string& fax = contact.business.fax.empty() ? contact.home.fax : contact.business.fax;
    std::vector<Attribute> attributes = {{"uid", ContactUuid(contact)},
                                         {"givenName", contact.firstName},
                                         {"sn", contact.lastName},
                                         {"cn", ShownName(contact)},
                                         {"mozillaNickname", contact.nickname},
                                         {"mail", MailAt(contact, 0)},
                                         {"mozillaSecondEmail", MailAt(contact, 1)},
                                         {"telephoneNumber", contact.business.phone},
                                         {"homePhone", contact.home.phone},
                                         {"facsimileTelephoneNumber", fax},
                                         {"pager", contact.pager},
                                         {"mobile", contact.mobile},
                                         {"mozillaHomeStreet", FirstLine(home.street)},
                                         {"mozillaHomeStreet2", FurtherLines(home.street)},
                                         {"mozillaHomeLocalityName", home.city},
                                         {"mozillaHomeState", home.state},
                                         {"mozillaHomePostalCode", home.postCode},
                                         {"mozillaHomeCountryName", home.country},
                                         {"street", FirstLine(work.street)},
                                         {"mozillaWorkStreet2", FurtherLines(work.street)},
                                         {"l", work.city},
                                         {"st", work.state},
                                         {"postalCode", work.postCode},
                                         {"c", work.country},
                                         {"title", contact.job},
                                         {"ou", contact.department},
                                         {"o", contact.company},
                                         {"physicalDeliveryOfficeName", contact.office},
                                         {"mozillaWorkUrl", contact.business.web},
                                         {"mozillaHomeUrl", contact.home.web}};
    if (contact.birthday) {
      attributes.push_back({"birthyear", std::to_string(static_cast<int>(contact.birthday->year()))});
      attributes.push_back({"birthmonth", std::to_string(static_cast<unsigned>(contact.birthday->month()))});
      attributes.push_back({"birthday", std::to_string(static_cast<unsigned>(contact.birthday->day()))});
    }
    return attributes;
  }

  /// A group that is written has a name; members may come before the groups that they are in, or after them.
  void NameGroups() {
    groupNames_.resize(book_.groups.size());
    for (std::size_t place = 0; place < book_.groups.size(); ++place) {
      const ContactGroup& group = book_.groups[place];
      const bool hasChosen = std::any_of(group.everyone.begin(), group.everyone.end(),
                                         [&](std::size_t contact) { return !contactNames_[contact].empty(); });
      if (!hasChosen) continue;
      groupNames_[place] = names_.Take("cn=" + InName(ListName(group)), "group-" + std::to_string(group.recordId));
    }
  }

  void WriteGroup(std::size_t place) {
    const ContactGroup& group = book_.groups[place];
    Line("dn", groupNames_[place]);
    Line("objectclass", "top");
    Line("objectclass", "groupOfNames");
    Line("cn", ListName(group));
    // An empty line is the name of a member that is not written.
    for (const std::size_t contact : group.contacts) Line("member", contactNames_[contact]);
    for (const std::size_t inner : group.groups) Line("member", groupNames_[inner]);
    sink_("\n");
  }

  /// An attribute, folded. Nothing for an empty value.
  void Line(const std::string& name, std::string_view value) {
    const std::string plain = PlainLines(value);
    if (plain.empty()) return;
    const std::string line = IsSafe(plain) ? name + ": " + plain : name + ":: " + Base64(plain);
    std::string folded = line.substr(0, kLongestLine);
    for (std::size_t at = kLongestLine; at < line.size(); at += kLongestLine - 1) {
      folded += "\n " + line.substr(at, kLongestLine - 1);
    }
    sink_(folded + "\n");
  }

  const ContactBook& book_;
  ContactChoice chosen_;
  const ContactSink& sink_;
  Names names_;
  std::vector<std::string> contactNames_, groupNames_;  ///< empty for what is not written
};

}  // namespace

void WriteLdif(const ContactBook& book, ContactChoice chosen, const ContactSink& sink) {
  LdifWriter(book, chosen, sink).Write();
}

}  // namespace quillbox
