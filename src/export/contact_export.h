// SPDX-License-Identifier: GPL-3.0-or-later
// The contacts of an address book in a file for another program: whole or not at all, with an account of what is in the
// file and what isn't.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "contacts/contact_writers.h"
#include "export/contact_book_file.h"
#include "platform/file_system.h"

namespace quillbox {

enum class ContactFormat { VCard, CsvThunderbird, CsvWebmail, Ldif };

struct ContactFormatRow {
  ContactFormat format;
  const char* caption;  ///< as a list of formats shows it
  const char* ending;   ///< of the file's name
  const char* filter;   ///< of a file dialog
};
/// In the order of ContactFormat.
std::span<const ContactFormatRow> ContactFormats();

/// How an export ended.
struct ContactExport {
  enum class End {
    Done,          ///< the chosen contacts are in the file, and all of the address book could be read
    PartsMissing,  ///< what could be read and was chosen is in the file; something is missing that nobody unchecked
    NotWritten,    ///< there is no new file, and what was in its place is still there
  };

  WinPath target;
  std::size_t contacts = 0;  ///< written
  std::size_t contactsInBook = 0;
  std::size_t groups = 0;                  ///< written
  std::vector<std::string> groupsLeftOut;  ///< the names of those without a chosen contact
  std::size_t faults = 0;                  ///< of the address book
  std::string failure;                     ///< why nothing was written; empty when the file was written

  End Ended() const;
  /// "3 of 4 contacts and 2 groups written to D:\Ann.vcf", or that nothing was written.
  std::string Summary() const;
  /// The same as sentences, with the names of the groups left out and the number of faults, or the reason.
  std::string Sentences() const;
};

/// Writes the contacts `chosen` of `file`, and the groups that they are in, to `target`, which is replaced.
ContactExport ExportContacts(FileSystem& files, const ContactBookFile& file, ContactChoice chosen, ContactFormat format,
                             const WinPath& target);

}  // namespace quillbox
