// SPDX-License-Identifier: GPL-3.0-or-later
// "check": whether a backup is whole, and with a disk whether it equals what is there. Nothing is changed. What it
// finds is its result, so all of that is on standard output.
#include "cli/commands.h"
#include "host/host_paths.h"
#include "inspection/inspect_backup.h"
#include "inspection/inspection_text.h"
#include "text/error.h"

namespace quillbox {
namespace {

Inspection Inspect(Console& console, const CommandArguments& arguments) {
  const HostPath folder = GivenPath(arguments.to);
  TerminalDialogs dialogs(console, false);
  if (arguments.disk.folder.Empty()) {
    HostFiles host;
    return InspectBackup(host.files, CodePage(host.facts.CodePageNumber()), {.folder = HostFiles::PathOf(folder)},
                         *dialogs.ShowProgress("Checking..."));
  }
  OpenedDisk disk(console, arguments.disk, OpenedDisk::Use::Look);
  const ComparedDisk compared{disk.platform, disk.session.store, disk.session.Catalogue()};
  return InspectBackup(disk.platform.GetFiles(), CodePage(disk.platform.GetSystemFacts().CodePageNumber()),
                       {.folder = disk.PathOf(folder), .against = &compared}, *dialogs.ShowProgress("Checking..."));
}

void Print(Console& console, const Inspection& inspection) {
  for (const InspectedFile& file : inspection.files) {
    if (file.IsGood()) continue;
    for (const std::string& line : LinesOf(inspection, file)) console.Result(line);
  }
  for (const std::string& line : MissingLines(inspection)) console.Result(line);
  console.Result(SummaryOf(inspection));
}

}  // namespace

CliExit RunCheck(Console& console, const CommandArguments& arguments) {
  const HostPath folder = GivenPath(arguments.to);
  if (!IsFolder(folder)) throw Error("checking a backup", {folder.Text(), {}, {}}, "there is no such folder");
  const Inspection inspection = Inspect(console, arguments);
  Print(console, inspection);
  if (!inspection.IsGood()) console.incomplete = true;
  return console.End();
}

}  // namespace quillbox
