// SPDX-License-Identifier: GPL-3.0-or-later
// People and groups of an address book, as every reader of this layer gives them and every writer takes them: no word
// here of a file format. All texts are valid UTF-8 without NUL characters; an empty text is one that the book hasn't.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillbox {

/// A day without a time: birthdays have no time zone.
using Date = std::chrono::year_month_day;

struct MailAddress {
  std::string address;
  std::string type;  ///< "SMTP" for Internet mail; empty where the book says nothing

  bool IsInternet() const;
};

struct PostalAddress {
  std::string street;  ///< may have several lines
  std::string city, state, postCode, country;

  bool IsEmpty() const;
};

/// How somebody is reached at one place.
struct ContactPlace {
  PostalAddress address;
  std::string phone, fax, web;
};

struct Contact {
  std::uint32_t recordId = 0;  ///< the record's number in its book, which no other record there has
  std::string displayName;
  std::string title;  ///< what is put before the name, such as "Dr."
  std::string firstName, middleName, lastName, nickname;
  std::vector<MailAddress> mails;  ///< the default one first, none twice
  ContactPlace home, business;
  std::string mobile, pager;
  std::string company, job, department, office;
  std::optional<Date> birthday, anniversary;
  std::string notes;
};

/// A group of people: a mailing list. Contacts and groups are named by their places in the book's lists.
struct ContactGroup {
  std::uint32_t recordId = 0;
  std::string name;
  std::vector<std::size_t> contacts;  ///< the members that are people, each once
  std::vector<std::size_t> groups;    ///< the members that are groups; following them comes to an end
  std::vector<std::size_t> everyone;  ///< the members and their groups' members, ascending, each once
};

/// The name to show for a contact: the display name, else one made of the others, the company, an address or, where the
/// book has nothing of all that, "Contact 17". Never empty.
std::string ShownName(const Contact& contact);
/// The same for a group.
std::string ShownName(const ContactGroup& group);

/// A UUID for a contact, the same whenever the same record is exported from the same book or a copy of it. It is made
/// of the record's number, the name and the default address: numbers alone are small and equal from book to book, and a
/// program that takes the UUID for a known one replaces what it has.
std::string ContactUuid(const Contact& contact);

}  // namespace quillbox
