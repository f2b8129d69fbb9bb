// SPDX-License-Identifier: GPL-3.0-or-later
// "contacts": exports the address book of a disk, or an address book file.
#include <numeric>
#include <optional>

#include "cli/commands.h"
#include "export/contact_export.h"
#include "host/host_paths.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

std::optional<ContactFormat> FormatOf(const HostPath& target) {
  const std::string name = target.Name();
  for (const ContactFormatRow& row : ContactFormats()) {
    const std::string ending = row.ending;
    if (name.size() > ending.size() && EqualIgnoreCase(name.substr(name.size() - ending.size()), ending)) {
      return row.format;
    }
  }
  return std::nullopt;
}

void Export(Console& console, FileSystem& files, const BookResult& read, ContactFormat format, const WinPath& target) {
  if (const auto* refusal = std::get_if<BookRefusal>(&read)) return console.NotDone(refusal->Sentence());
  const auto& book = std::get<ContactBookFile>(read);
  for (const std::string& fault : book.Faults()) console.NotDone(fault);
  std::vector<std::size_t> all(book.book.contacts.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  const ContactExport result = ExportContacts(files, book, all, format, target);
  if (!book.LeftOut().empty()) console.Note("not exported: " + book.LeftOut());
  result.Ended() == ContactExport::End::Done ? console.Result(result.Summary()) : console.NotDone(result.Sentences());
}

}  // namespace

CliExit RunContacts(Console& console, const CommandArguments& arguments) {
  const HostPath target = GivenPath(arguments.to);
  const auto format = FormatOf(target);
  if (!format) {
    console.Note("--to: " + arguments.to + " ends with none of .vcf, .csv and .ldif");
    return CliExit::WrongUse;
  }
  if (!arguments.overwrite && Exists(target)) {
    throw Error("exporting contacts", {target.Text(), {}, {}}, "it is there already; --overwrite replaces it");
  }
  if (!IsFolder(arguments.disk.folder)) {
    HostFiles host;
    Export(console, host.files, ReadBookFile(host.files, host.facts, HostFiles::PathOf(arguments.disk.folder)), *format,
           HostFiles::PathOf(target));
    return console.End();
  }
  OpenedDisk disk(console, arguments.disk, OpenedDisk::Use::Look);
  Export(console, disk.platform.GetFiles(), ReadBookInUse(disk.platform, disk.session.store), *format,
         disk.PathOf(target));
  return console.End();
}

}  // namespace quillbox
