// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <ostream>
#include <sstream>
#include <variant>

#include "cli/commands.h"
#include "host/state_folder.h"
#include "platform/offline/hive_consent.h"
#include "platform/offline/windows_disk.h"
#include "text/command_options.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kDisk = "the folder that is drive C: of a Windows that isn't running";

/// What was typed, before paths are made of it.
struct Typed {
  CommandArguments arguments;
  std::string source;
  std::vector<std::string> drives;
};

std::string FaultOfPath(const std::string& text) {
  return text.empty() ? "an empty text is not a path" : "";
}

CLI::Option* AddPath(CLI::App& app, std::string& path, const char* name, const char* words) {
  return app.add_option(name, path, words)->check(FaultOfPath);
}

void AddDiskOptions(CLI::App& app, Typed& typed) {
  app.add_option("--profile", typed.arguments.disk.profile, "whose registry, where the disk holds several people's");
  app.add_option("--drive", typed.drives, "a further drive of that Windows, as D=FOLDER")->allow_extra_args(false);
  app.add_flag("--salvage", typed.arguments.disk.salvage, "take what can be read of damaged registries and files");
}

void AddSource(CLI::App& app, Typed& typed, const char* name, const char* words) {
  AddPath(app, typed.source, name, words)->required();
  AddDiskOptions(app, typed);
}

void AddIdentities(CLI::App& app, Typed& typed) {
  app.add_option("--identity", typed.arguments.disk.identities, "only this identity, by name or {USER_ID}")
      ->allow_extra_args(false);
}

void AddTo(CLI::App& app, Typed& typed, const char* name, const char* words) {
  AddPath(app, typed.arguments.to, name, words)->required();
}

void AddOverwrite(CLI::App& app, Typed& typed) {
  app.add_flag("--overwrite", typed.arguments.overwrite, "replace files that are there already");
}

void SetUpList(CLI::App& app, Typed& typed) {
  AddSource(app, typed, "DISK", kDisk);
  app.add_flag("--json", typed.arguments.json, "as JSON");
}

void SetUpBackup(CLI::App& app, Typed& typed) {
  AddSource(app, typed, "DISK", kDisk);
  AddTo(app, typed, "--to", "the backup folder");
  AddIdentities(app, typed);
  AddOverwrite(app, typed);
  app.add_flag("--complete", typed.arguments.complete, "all identities, with the registry files for \"restore\"")
      ->excludes("--identity");
}

void SetUpRestore(CLI::App& app, Typed& typed) {
  AddSource(app, typed, "DISK", kDisk);
  AddTo(app, typed, "--from", "the folder of a complete backup");
  AddOverwrite(app, typed);
}

void SetUpMail(CLI::App& app, Typed& typed) {
  AddSource(app, typed, "DISK|FOLDER", "a disk, or a folder with message stores (.dbx), such as a backup");
  AddTo(app, typed, "--to", "the folder to export to; mail that is there is kept");
  AddIdentities(app, typed);
  app.add_option("--format", typed.arguments.format, "mbox, eml or maildir")
      ->default_val("mbox")
      ->check(CLI::IsMember({"mbox", "eml", "maildir"}));
  app.add_flag("--recover", typed.arguments.recover, "deleted and lost messages too, into folders of their own");
}

void SetUpContacts(CLI::App& app, Typed& typed) {
  AddSource(app, typed, "DISK|FILE", "a disk, or an address book file (.wab)");
  AddTo(app, typed, "--to", "the file to write; its ending is .vcf, .csv or .ldif");
  AddOverwrite(app, typed);
}

void SetUpReport(CLI::App& app, Typed& typed) {
  AddSource(app, typed, "DISK", kDisk);
  AddTo(app, typed, "--to", "the file to write");
  AddOverwrite(app, typed);
  app.add_flag("--html", typed.arguments.html, "as a page");
  app.add_flag("--rules", typed.arguments.rules, "the message rules of each identity too, in files beside");
}

void SetUpCheck(CLI::App& app, Typed& typed) {
  AddTo(app, typed, "BACKUP", "the backup folder, or the folder of one identity in it");
  CLI::Option* const against =
      AddPath(app, typed.source, "--against", "compare with a disk too: the folder that is its drive C:");
  AddDiskOptions(app, typed);
  for (const char* option : {"--profile", "--drive", "--salvage"}) app.get_option(option)->needs(against);
}

struct CommandRow {
  const char* name;
  const char* summary;
  void (*setUp)(CLI::App& app, Typed& typed);
  CliExit (*run)(Console& console, const CommandArguments& arguments);
};
constexpr CommandRow kCommands[] = {
    {"list", "Lists profiles, identities, mail folders, the address book and accounts.", SetUpList, RunList},
    {"backup", "Backs up identities: mail, address book and registry keys.", SetUpBackup, RunBackup},
    {"restore", "Restores a complete backup.", SetUpRestore, RunRestore},
    {"mail", "Exports mail for other programs.", SetUpMail, RunMail},
    {"contacts", "Exports the address book for other programs.", SetUpContacts, RunContacts},
    {"report", "Writes a report of the identities.", SetUpReport, RunReport},
    {"check", "Checks whether a backup is whole, and equal to a disk.", SetUpCheck, RunCheck},
};

std::string Footer() {
  return "Exit codes: 0 all was done, 1 some part was not (standard error has which) or a check found something, 2 "
         "wrong "
         "use.\nFiles of this computer that are on no drive of the disk are shown below drive Z:.\nDetails are in the "
         "log, " +
         (StateFolder() / "quillbox.log").Text() + ".";
}

CliExit Fail(Console& console, const std::string& why) {
  console.Note(why);
  return CliExit::Incomplete;
}

CliExit WrongUse(Console& console, const std::string& why) {
  console.Note(why + "\nSee quillbox-cli --help.");
  return CliExit::WrongUse;
}

/// A hint for somebody who has named a folder near a disk's; empty where the folder is a disk, or nothing is near.
std::string DisksNear(const HostPath& folder) try {
  if (folder.Empty()) return {};
  FindWindowsDisk(folder);
  return {};
} catch (const Error&) {
  std::string hint;
  for (const WindowsDisk& disk : FindDisksNear(folder)) hint += "\nA disk that may be meant: " + disk.folder.Text();
  return hint;
}

CliExit Run(Console& console, const CommandRow& command, Typed& typed) {
  if (!typed.source.empty()) typed.arguments.disk.folder = GivenPath(typed.source);
  for (const std::string& text : typed.drives) {
    const auto drive = ParseDriveOption(text);
    if (const auto* fault = std::get_if<CommandFault>(&drive)) return WrongUse(console, fault->reason);
    const auto& option = std::get<DriveOption>(drive);
    typed.arguments.disk.drives[option.letter] = GivenPath(option.folder);
  }
  try {
    return command.run(console, typed.arguments);
  } catch (const HiveRefused& error) {
    return Fail(console, std::string(error.what()) + "\nNothing was done; with --salvage it is opened all the same.");
  } catch (const std::exception& error) {
    return Fail(console, error.what() + DisksNear(typed.arguments.disk.folder));
  }
}

}  // namespace

CliExit RunCommandLine(const std::vector<std::string>& arguments, Console& console) {
  CLI::App app{"Backs up, restores and exports the mail of Windows disks that aren't running.", "quillbox-cli"};
  app.require_subcommand(1);
  app.set_version_flag("--version", "quillbox-cli " QUILLBOX_VERSION);
  app.footer(Footer());
  Typed typed;
  std::vector<std::pair<const CommandRow*, CLI::App*>> commands;
  for (const CommandRow& row : kCommands) {
    CLI::App* command = app.add_subcommand(row.name, row.summary);
    command->footer(Footer());
    row.setUp(*command, typed);
    commands.emplace_back(&row, command);
  }
  try {
    // The parser takes them from the end.
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    return app.exit(error, console.out, console.err) == 0 ? CliExit::Done : CliExit::WrongUse;
  }
  const auto chosen =
      std::find_if(commands.begin(), commands.end(), [](const auto& row) { return row.second->parsed(); });
  return Run(console, *chosen->first, typed);
}

}  // namespace quillbox
