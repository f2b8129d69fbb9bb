// SPDX-License-Identifier: GPL-3.0-or-later
// "mail": exports the mail of a disk's identities, or of a folder with message stores and no registry.
#include <algorithm>
#include <array>
#include <memory>

#include "cli/commands.h"
#include "core/message_store.h"
#include "export/export_report.h"
#include "export/mail_export.h"
#include "export/mail_name.h"
#include "host/host_paths.h"
#include "reports/general_date.h"
#include "text/error.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

struct FormatRow {
  const char* name;
  MailFormat format;
};
constexpr std::array kFormats = {FormatRow{"mbox", MailFormat::Mbox}, FormatRow{"eml", MailFormat::Files},
                                 FormatRow{"maildir", MailFormat::Maildir}};

MailFormat FormatNamed(const std::string& name) {
  const auto row = std::find_if(kFormats.begin(), kFormats.end(), [&](const FormatRow& at) { return at.name == name; });
  return row == kFormats.end() ? MailFormat::Mbox : row->format;
}

class MailCommand {
 public:
  MailCommand(Console& console, const CommandArguments& arguments, FileSystem& files, unsigned codePage, WinPath target)
      : console_(console), arguments_(arguments), files_(files), page_(codePage), target_(std::move(target)) {}

  void Export(const MailPlace& place, const std::string& ended) {
    FoundFolders folders(files_, place, page_);
    while (folders.Step()) {
    }
    if (folders.All().empty()) return console_.Note(place.name + ": no mail folders in " + place.folder.Text());
    TerminalDialogs dialogs(console_, false);
    const auto progress = dialogs.ShowProgress("Exporting...");
    const ExportResult result = ExportMail(files_, folders, page_,
                                           {.chosen = UsualChoice(folders, false),
                                            .format = FormatNamed(arguments_.format),
                                            .recover = arguments_.recover,
                                            .mergeCopies = false,
                                            .target = target_},
                                           *progress);
    exported_ += result.folders.size();
    Print(place, result);
    if (result.fault.empty()) Save(place, result, ended);
  }

  CliExit End() {
    if (exported_ == 0) console_.NotDone("no mail was exported");
    return console_.End();
  }

 private:
  /// A folder that was copied without its list has all that is there; a list that is damaged may have had more.
  bool IsListMissed(const MailPlace& place) const { return files_.Stat(place.folder.Join("Folders.dbx")).has_value(); }

  void Print(const MailPlace& place, const ExportResult& result) {
    for (const FolderResult& folder : result.folders) {
      const std::string line = OneLine(place.name + " > " + folder.name + ": " + OutcomeOf(folder));
      folder.IsComplete() ? console_.Result(line) : console_.NotDone(line);
    }
    const std::string summary = place.name + ": " + SummaryOf(result, GivenPath(arguments_.to).Text());
    result.End() == ExportEnd::Complete ? console_.Result(summary) : console_.NotDone(summary);
    if (!result.listFault.empty() && IsListMissed(place)) {
      console_.NotDone(place.name + ": " + result.listFault);
    }
  }

  void Save(const MailPlace& place, const ExportResult& result, const std::string& ended) try {
    const std::string text =
        ReportText(result, {place.name, place.folder.Text(), GivenPath(arguments_.to).Text(), ended});
    SaveReport(files_, target_, SystemClock().Now(), text);
  } catch (const Error& error) {
    console_.NotDone("the report was not saved: " + Describe(error));
  }

  Console& console_;
  const CommandArguments& arguments_;
  FileSystem& files_;
  CodePage page_;
  WinPath target_;
  std::size_t exported_ = 0;
};

bool HasStores(FileSystem& files, const WinPath& folder) {
  return !FilesLike(files, folder.Join("*.dbx")).empty();
}

/// The folder itself and those in it, as far as they have stores: a backup has one for each identity.
std::vector<MailPlace> PlacesIn(FileSystem& files, const WinPath& folder, const std::string& name) {
  std::vector<MailPlace> places;
  if (HasStores(files, folder)) places.push_back({name, folder});
  const auto finder = files.Find(folder.Join("*"));
  while (const auto entry = finder->Next()) {
    if (!entry->isDirectory || entry->name == "." || entry->name == "..") continue;
    if (HasStores(files, folder.Join(entry->name))) places.push_back({entry->name, folder.Join(entry->name)});
  }
  return places;
}

CliExit ExportFolder(Console& console, const CommandArguments& arguments, const Error& notDisk) {
  if (!arguments.disk.identities.empty() || !arguments.disk.profile.empty()) throw notDisk;
  HostFiles host;
  const HostPath& folder = arguments.disk.folder;
  const auto places = PlacesIn(host.files, HostFiles::PathOf(folder), folder.HasName() ? folder.Name() : "Mail");
  if (places.empty()) {
    throw Error(notDisk.Doing(), notDisk.Place(), notDisk.Why() + "; and there are no message stores (.dbx) in it");
  }
  MailCommand command(console, arguments, host.files, host.facts.CodePageNumber(),
                      HostFiles::PathOf(GivenPath(arguments.to)));
  for (const MailPlace& place : places) command.Export(place, "");
  return command.End();
}

CliExit ExportDisk(Console& console, const CommandArguments& arguments) {
  OpenedDisk disk(console, arguments.disk, OpenedDisk::Use::Look);
  Session& session = disk.session;
  MailCommand command(console, arguments, disk.platform.GetFiles(), disk.platform.GetSystemFacts().CodePageNumber(),
                      disk.PathOf(GivenPath(arguments.to)));
  const std::string now = GeneralDate(session.store, disk.platform.GetClock().Now());
  for (const IdentityInfo& identity : disk.Chosen(arguments.disk.identities)) {
    if (!identity.storeFolder) {
      console.Note(identity.username + ": it was never started in Outlook Express and has no mail");
      continue;
    }
    const auto store = FindStore(session.store, disk.platform, identity.userId);
    if (const auto* fault = std::get_if<StoreFault>(&store)) {
      console.NotDone("the mail of \"" + identity.username + "\" was not exported: " + fault->clause);
      continue;
    }
    command.Export({MailName(identity, session.Catalogue().identities), std::get<WinPath>(store)}, now);
  }
  return command.End();
}

}  // namespace

CliExit RunMail(Console& console, const CommandArguments& arguments) {
  try {
    FindWindowsDisk(arguments.disk.folder, arguments.disk.drives);
  } catch (const Error& error) {
    return ExportFolder(console, arguments, error);
  }
  return ExportDisk(console, arguments);
}

}  // namespace quillbox
