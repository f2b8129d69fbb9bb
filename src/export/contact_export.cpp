// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/contact_export.h"

#include <algorithm>
#include <array>

#include "core/copy_tally.h"
#include "text/error.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::size_t kPiece = std::size_t{256} * 1024;
/// Groups that a message names.
constexpr std::size_t kMostNames = 10;

constexpr std::array<ContactFormatRow, 4> kFormats = {{
    {ContactFormat::VCard, "vCard (.vcf)", ".vcf", "vCard Files (*.vcf) | *.vcf"},
    {ContactFormat::CsvThunderbird, "CSV for Thunderbird (.csv)", ".csv", "CSV Files (*.csv) | *.csv"},
    {ContactFormat::CsvWebmail, "CSV for web mail and office programs (.csv)", ".csv", "CSV Files (*.csv) | *.csv"},
    {ContactFormat::Ldif, "LDIF (.ldif)", ".ldif", "LDIF Files (*.ldif) | *.ldif"},
}};

void Write(const ContactBook& book, ContactChoice chosen, ContactFormat format, const ContactSink& sink) {
  switch (format) {
    case ContactFormat::VCard:
      return WriteVCards(book, chosen, sink);
    case ContactFormat::CsvThunderbird:
      return WriteCsv(book, chosen, CsvHeadings::Thunderbird, sink);
    case ContactFormat::CsvWebmail:
      return WriteCsv(book, chosen, CsvHeadings::Webmail, sink);
    case ContactFormat::Ldif:
      return WriteLdif(book, chosen, sink);
  }
}

bool HasOneOf(const ContactGroup& group, ContactChoice chosen) {
  return std::any_of(group.everyone.begin(), group.everyone.end(),
                     [&](std::size_t member) { return std::binary_search(chosen.begin(), chosen.end(), member); });
}

void CountGroups(const ContactBook& book, ContactChoice chosen, ContactExport& result) {
  for (const ContactGroup& group : book.groups) {
    if (HasOneOf(group, chosen)) {
      ++result.groups;
    } else {
      result.groupsLeftOut.push_back(ShownName(group));
    }
  }
}

/// "4 contacts", "3 of 4 contacts".
std::string PartOf(std::size_t part, std::size_t all, const char* one, const char* several) {
  return (part == all ? "" : std::to_string(part) + " of ") + CountOf(all, one, several);
}

std::string QuotedNames(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t at = 0; at < std::min(names.size(), kMostNames); ++at) {
    text += (at == 0 ? "\"" : ", \"") + OneLine(ShortName(names[at])) + "\"";
  }
  if (names.size() > kMostNames) text += " and " + std::to_string(names.size() - kMostNames) + " more";
  return text;
}

}  // namespace

std::span<const ContactFormatRow> ContactFormats() {
  return kFormats;
}

ContactExport::End ContactExport::Ended() const {
  if (!failure.empty()) return End::NotWritten;
  return faults > 0 || !groupsLeftOut.empty() ? End::PartsMissing : End::Done;
}

std::string ContactExport::Summary() const {
  if (Ended() == End::NotWritten) return "Nothing was written";
  const std::size_t allGroups = groups + groupsLeftOut.size();
  std::string text = PartOf(contacts, contactsInBook, " contact", " contacts");
  if (allGroups > 0) text += " and " + PartOf(groups, allGroups, " group", " groups");
  text += " written to " + target.Text();
  return faults == 0 ? text : text + "; not all of the address book could be read";
}

std::string ContactExport::Sentences() const {
  if (Ended() == End::NotWritten) return "No file was written. " + failure + ".";
  std::string text = Summary() + ".";
  if (!groupsLeftOut.empty()) {
    text += "\n\nGroups without any of these contacts, which were not written: " + QuotedNames(groupsLeftOut) + ".";
  }
  if (faults > 0) {
    text += "\n\nThe address book has " + CountOf(faults, " fault", " faults") +
            ", and what could not be read is not in the file.";
  }
  return text;
}

ContactExport ExportContacts(FileSystem& files, const ContactBookFile& file, ContactChoice chosen, ContactFormat format,
                             const WinPath& target) {
  ContactExport result;
  result.target = target;
  result.contactsInBook = file.book.contacts.size();
  result.faults = file.FaultCount();
  if (EqualIgnoreCase(target.Text(), file.path.Text())) {
    result.failure = target.Text() + " is the address book itself";
    return result;
  }
  try {
    const auto writer = files.StartFile(target);
    std::string pending;
    Write(file.book, chosen, format, [&](std::string_view bytes) {
      pending += bytes;
      if (pending.size() < kPiece) return;
      writer->Write(pending);
      pending.clear();
    });
    writer->Write(pending);
    writer->Commit();
  } catch (const Error& error) {
    result.failure = Describe(error);
    return result;
  }
  result.contacts = chosen.size();
  CountGroups(file.book, chosen, result);
  return result;
}

}  // namespace quillbox
