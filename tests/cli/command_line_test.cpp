// SPDX-License-Identifier: GPL-3.0-or-later
// The commands as a script sees them: what is on each stream, which files there are, and how the command ended.
#include "cli/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "sample/sample_disk.h"
#include "support/damaged_hive.h"
#include "support/host_tricks.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class CommandLine : public ::testing::Test {
 protected:
  struct Ran {
    int code;
    std::string out, err;
  };

  CommandLine() {
    SetVariable("XDG_STATE_HOME", NameOf(temp / "state"));
    SetVariable("LOCALAPPDATA", NameOf(temp / "state"));
  }

  SampleDisk Make(SampleKind kind = SampleKind::Xp) {
    return MakeSampleDisk(temp / "disk", {.smallStores = true, .kind = kind});
  }

  static Ran Run(std::vector<std::string> arguments) {
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    Console console{.in = in, .out = out, .err = err};
    const CliExit end = RunCommandLine(arguments, console);
    return {static_cast<int>(end), out.str(), err.str()};
  }

  /// A command on the disk: its name, and what follows.
  Ran RunOn(const SampleDisk& disk, const std::string& command, std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {command, NameOf(disk.driveC), "--drive", "D=" + NameOf(disk.driveD)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(arguments);
  }

  /// A command that takes long says how far it is, in lines like "40 %  Checking IAM.reg".
  static std::string WithoutProgress(const std::string& err) {
    std::string rest;
    std::istringstream lines(err);
    for (std::string line; std::getline(lines, line);) {
      if (line.find(" %  ") == std::string::npos) rest += line + "\n";
    }
    return rest;
  }

  /// What the program wrote to one of its streams, without the second half of Windows' line ends.
  std::string Stream(const char* name) const {
    std::string text = temp.Read(name);
    std::erase(text, '\r');
    return text;
  }

  std::string At(const char* name) const { return NameOf(temp / name); }

  TempFolder temp;
};

TEST_F(CommandLine, WrongUseHasItsOwnCodeAndTouchesNothing) {
  const std::string to = At("out");
  for (const std::vector<std::string>& wrong :
       std::vector<std::vector<std::string>>{{},
                                             {"erase", "disk"},
                                             {"list"},
                                             {"list", ""},
                                             {"list", "disk", "--no-such-option"},
                                             {"list", "disk", "--drive", "C=/mnt"},
                                             {"backup", "disk"},
                                             {"backup", "disk", "--to", to, "--complete", "--identity", "Ann"},
                                             {"mail", "disk", "--to", to, "--format", "pst"},
                                             {"contacts", "disk", "--to", to + ".doc"},
                                             {"check", ""},
                                             {"check", "backup", "--against", ""},
                                             {"check", "backup", "--profile", "Ann"}}) {
    const Ran ran = Run(wrong);
    EXPECT_EQ(ran.code, 2) << ran.err;
    EXPECT_EQ(ran.out, "");
    EXPECT_NE(ran.err, "");
  }
  EXPECT_THAT(Names(temp.Path()), ElementsAre());
  EXPECT_THAT(Run({"--help"}).out, AllOf(HasSubstr("backup"), HasSubstr("contacts")));
  EXPECT_EQ(Run({"mail", "--help"}).code, 0);
}

TEST_F(CommandLine, ListShowsWhatIsThereWithoutSecrets) {
  const SampleDisk disk = Make();
  const Ran ran = RunOn(disk, "list");
  EXPECT_EQ(ran.code, 0) << ran.err;
  EXPECT_THAT(ran.out, AllOf(HasSubstr("Profile Ann Miller\n"),
                             HasSubstr("  Identity Main Identity {2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421} (default)\n"),
                             HasSubstr("    Store D:\\Mail\\Office\n"), HasSubstr("    Drafts: 1 message, 11 KB\n"),
                             HasSubstr("    Store none: it was never started\n"),
                             HasSubstr("  Account mail.example.com: POP3 pop.example.com, ann.miller@example.com\n")));
  EXPECT_THAT(ran.out + RunOn(disk, "list", {"--json"}).out, Not(HasSubstr("assword")));
  EXPECT_THAT(Run({"list", NameOf(disk.driveC.parent_path())}).err,
              HasSubstr("\nA disk that may be meant: " + NameOf(disk.driveC) + "\n"));
}

TEST_F(CommandLine, ListSaysWhichCountsAreNotToBeTrusted) {
  const SampleDisk disk = Make();
  const std::filesystem::path office = disk.driveD / "Mail/Office";
  const auto overwrite = [&](const char* file, int offset) {
    std::fstream(office / file, std::ios::in | std::ios::out | std::ios::binary).seekp(offset) << "\x09";
  };
  overwrite("Inbox.dbx", 0xC4);  // the number of entries
  std::filesystem::resize_file(office / "Drafts.dbx", 50);
  // A store that was made anew has lost what the list of folders still counts.
  std::filesystem::remove(office / "Sent Items.dbx");
  std::filesystem::copy_file(office / "Outbox.dbx", office / "Sent Items.dbx");
  const char* const faults[] = {
      "Inbox: 3 messages, 15 KB; the header promises 9 messages, the store's index leads to 3\n",
      "Drafts: 0 messages, 1 KB; offset 0x0: ",
      "Sent Items: 0 messages, 9 KB; Folders.dbx counts 3 messages, the store's index leads to 0\n"};
  const Ran ran = RunOn(disk, "list");
  EXPECT_EQ(ran.code, 1);
  for (const char* fault : faults) EXPECT_THAT(ran.out, HasSubstr(fault));
  EXPECT_THAT(ran.err, HasSubstr("B\xC3\xBCro > Inbox: the header promises 9 messages"));
  EXPECT_THAT(RunOn(disk, "list", {"--json"}).out, HasSubstr("\"fault\": \"the header promises 9 messages"));

  std::filesystem::resize_file(office / "Folders.dbx", 50);
  const Ran unlisted = RunOn(disk, "list");
  EXPECT_THAT(unlisted.out, HasSubstr("    Store D:\\Mail\\Office\n      Folders.dbx, offset 0x"));
  EXPECT_THAT(RunOn(disk, "list", {"--json"}).out, HasSubstr("\"listFault\": \"Folders.dbx, offset 0x"));
}

TEST_F(CommandLine, ListsJsonIsReadByAnotherReader) {
  NEEDS(Scripts);
  const SampleDisk disk = Make();
  temp.File("list.json", RunOn(disk, "list", {"--json"}).out);
  temp.File("read.py",
            "import json\nd=json.load(open('list.json'))\np=d['profiles'][0]\n"
            "print(p['name'], [i['username'] for i in p['identities']], p['addressBook']['isThere'])\n"
            "print([f['name'] for f in p['identities'][0]['folders']][:2])\n");
  const ProgramRun ran = RunProgram("/usr/bin/python3", {"read.py"}, temp.Path());
  EXPECT_EQ(temp.Read("out"), "Ann Miller ['Main Identity', 'Büro', 'Guest'] True\n['Inbox', 'Outbox']\n") << ran.err;
}

TEST_F(CommandLine, ABackupSaysWhatIsNotInItAndIsNotMixedWithTheNext) {
  const SampleDisk disk = Make();
  const Ran first = RunOn(disk, "backup", {"--to", At("backup"), "--identity", "b\xC3\xBCro"});
  EXPECT_EQ(first.code, 0) << first.err;
  EXPECT_THAT(first.out, HasSubstr(At("backup") + ": 9 files copied; 4 registry keys exported\n"));
  EXPECT_THAT(Names(temp / "backup"), ElementsAre("Büro"));
  const Ran again = RunOn(disk, "backup", {"--to", At("backup")});
  EXPECT_EQ(again.code, 1);
  EXPECT_THAT(again.err, HasSubstr("Büro: it is there already; with --overwrite a new backup takes its place"));
  EXPECT_THAT(Names(temp / "backup"), ElementsAre("Büro"));
  // A newsgroup's store has full stops in its name, and such files are left out.
  const Ran all = RunOn(disk, "backup", {"--to", At("backup"), "--overwrite"});
  EXPECT_EQ(all.code, 1);
  EXPECT_THAT(all.err, HasSubstr("comp.lang.c++.dbx: left out: its name has a full stop\n"));
  EXPECT_THAT(all.out, HasSubstr("NOT everything was backed up to "));
  // An identity whose folder cannot be made is on record like everything else.
  temp.File("blocked/B\xC3\xBCro", "a file in the way");
  const Ran blocked = RunOn(disk, "backup", {"--to", At("blocked"), "--complete", "--overwrite"});
  EXPECT_EQ(blocked.code, 1);
  EXPECT_THAT(blocked.err, AllOf(HasSubstr("the backup of \"B\xC3\xBCro\": left out: the folder "),
                                 HasSubstr("cannot be used because a file of that name is in the way\n")));
  EXPECT_THAT(blocked.out, HasSubstr("; 2 left out; "));
  EXPECT_EQ(RunOn(disk, "backup", {"--to", At("other"), "--identity", "Nobody"}).code, 1);
  EXPECT_FALSE(std::filesystem::exists(temp / "other"));
}

TEST_F(CommandLine, ARestoreBringsBackWhatACompleteBackupHas) {
  const SampleDisk disk = Make();
  EXPECT_THAT(RunOn(disk, "backup", {"--to", At("backup"), "--complete"}).err, HasSubstr("comp.lang.c++.dbx"));
  const std::filesystem::path inbox = disk.driveD / "Mail" / "Office" / "Inbox.dbx";
  const auto size = std::filesystem::file_size(inbox);
  std::filesystem::resize_file(inbox, 10);
  // What is there is named first in the order of the work: keys, the address book, stores.
  const char* hive = "disk/C/Documents and Settings/Ann Miller/NTUSER.DAT";
  const std::string before = temp.Read(hive);
  std::filesystem::copy(temp / "backup", temp / "part", std::filesystem::copy_options::recursive);
  const auto refused = [&](const std::string& what) {
    const Ran ran = RunOn(disk, "restore", {"--from", At("part")});
    EXPECT_EQ(ran.code, 1);
    EXPECT_EQ(ran.out, "");
    EXPECT_THAT(ran.err, AllOf(HasSubstr(what), HasSubstr("already; with --overwrite the backup"),
                               HasSubstr("Nothing was changed (while beginning the restore)")));
    EXPECT_EQ(std::filesystem::file_size(inbox), 10u);
    EXPECT_TRUE(temp.Read(hive) == before && before.size() > 4096);
  };
  refused("HKEY_CURRENT_USER\\Identities: this registry has it");
  std::filesystem::remove(temp / "part/AllIdentities.reg");
  refused("Internet Account Manager\\Accounts: this registry has it");
  std::filesystem::remove(temp / "part/IAM.reg");
  std::filesystem::remove(temp / "part/AddressBook.reg");
  refused("\\Address Book\\Ann Miller.wab: it is there");
  std::filesystem::remove(temp / "part/Ann Miller.wab");
  std::filesystem::remove_all(temp / "part/Main Identity");
  refused(": it is there");
  const Ran restored = RunOn(disk, "restore", {"--from", At("backup"), "--overwrite"});
  EXPECT_EQ(restored.code, 0) << restored.err;
  EXPECT_EQ(std::filesystem::file_size(inbox), size);
}

TEST_F(CommandLine, ACheckPrintsWhatIsNotWholeOrNotEqualAndEndsByThat) {
  const SampleDisk disk = Make();
  RunOn(disk, "backup", {"--to", At("backup"), "--complete"});
  const auto check = [&](const char* folder = "backup") { return Run({"check", At(folder)}); };
  const auto compare = [&] {
    return Run({"check", At("backup"), "--against", NameOf(disk.driveC), "--drive", "D=" + NameOf(disk.driveD)});
  };
  // The backup left out a newsgroup's store; with that it is all there.
  const std::string news = "Main Identity/comp.lang.c++.dbx";
  const Ran without = check();
  EXPECT_EQ(without.code, 1);
  EXPECT_THAT(without.out, AllOf(HasSubstr("\nMISSING: Main Identity\\comp.lang.c++.dbx: "),
                                 HasSubstr("\nThe backup is NOT whole. 24 files are whole. 1 file is MISSING.")));
  std::filesystem::copy_file(disk.driveC /
                                 "Documents and Settings/Ann Miller/Local Settings/Application Data/Identities" /
                                 "{2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}/Microsoft/Outlook Express/comp.lang.c++.dbx",
                             temp / "backup" / news);
  EXPECT_EQ(check().code, 0);
  EXPECT_THAT(check().out, HasSubstr("All 25 files that can be checked are whole."));
  const Ran equal = compare();
  EXPECT_EQ(equal.code, 0) << equal.out << equal.err;
  EXPECT_THAT(equal.out, HasSubstr("\n\nAll of it is as on the disk.\n"));
  EXPECT_EQ(WithoutProgress(equal.err), "");

  std::fstream(disk.driveD / "Mail/Office/Inbox.dbx", std::ios::in | std::ios::out | std::ios::binary).seekp(0x3000)
      << 'x';
  EXPECT_EQ(check().code, 0);
  const Ran different = compare();
  EXPECT_EQ(different.code, 1);
  EXPECT_THAT(different.out,
              HasSubstr("B\xC3\xBCro\\Inbox.dbx (Message store, "
                        "15596 bytes)\n  whole, 3 messages; DIFFERENT: it differs from D:\\Mail\\Office\\Inbox.dbx, "
                        "first at offset 0x3000\n"));
  std::filesystem::resize_file(temp / "backup" / news, 9500);
  const Ran damaged = check();
  EXPECT_EQ(damaged.code, 1);
  EXPECT_THAT(damaged.out, AllOf(HasSubstr("Main Identity\\comp.lang.c++.dbx (Message store, 9500 bytes)\n  DAMAGED, "),
                                 Not(HasSubstr("Main Identity\\Inbox.dbx"))));
  const Ran none = check("state");
  EXPECT_EQ(none.code, 1);
  EXPECT_THAT(none.out, HasSubstr("There is no message store, address book or registry file"));
  EXPECT_THAT(check("nowhere").err, HasSubstr("nowhere: there is no such folder"));
}

TEST_F(CommandLine, MailIsExportedFromADiskAndFromABackupWithoutItsRegistry) {
  const SampleDisk disk = Make();
  const Ran fromDisk = RunOn(disk, "mail", {"--to", At("mail"), "--identity", "Main Identity"});
  EXPECT_EQ(fromDisk.code, 0) << fromDisk.err;
  EXPECT_THAT(fromDisk.out, HasSubstr("Main Identity > Inbox: "));
  EXPECT_TRUE(std::filesystem::exists(temp / "mail/Main Identity.sbd/Inbox"));
  RunOn(disk, "backup", {"--to", At("backup"), "--complete"});
  const Ran fromBackup = Run({"mail", At("backup"), "--to", At("eml"), "--format", "eml"});
  EXPECT_THAT(Names(temp / "eml"), ::testing::IsSupersetOf({"Büro", "Main Identity"})) << fromBackup.err;
  // The store that no backup takes is in the list of folders.
  EXPECT_EQ(fromBackup.code, 1);
  EXPECT_THAT(fromBackup.err, HasSubstr("comp.lang.c++.dbx"));
  EXPECT_EQ(Run({"mail", At("state"), "--to", At("none")}).code, 1);
  // Without its drive D: the disk has less than its registry names, which is said and not asked.
  const Ran withoutD = Run({"mail", NameOf(disk.driveC), "--to", At("part")});
  EXPECT_EQ(withoutD.code, 1);
  EXPECT_THAT(withoutD.err, HasSubstr("drive D: is not attached. --drive names its folder.\n"));
}

TEST_F(CommandLine, ContactsAndReportsAreWrittenOnce) {
  const SampleDisk disk = Make(SampleKind::Windows98);
  EXPECT_THAT(RunOn(disk, "list").out, HasSubstr("Profile .DEFAULT: Everyone (Windows 98)\n"));
  // The sample's last group has no members, so it is not in the file.
  const Ran contacts = RunOn(disk, "contacts", {"--to", At("ann.ldif")});
  EXPECT_EQ(contacts.code, 1);
  EXPECT_THAT(contacts.err, HasSubstr("\"Nobody\""));
  EXPECT_THAT(temp.Read("ann.ldif"), HasSubstr("dn: "));
  EXPECT_THAT(RunOn(disk, "contacts", {"--to", At("ann.ldif")}).err, HasSubstr("--overwrite replaces it"));
  const std::string book = NameOf(disk.driveC / "WINDOWS/Application Data/Microsoft/Address Book/Ann Miller.wab");
  EXPECT_THAT(Run({"contacts", book, "--to", At("file.vcf")}).err, Not(HasSubstr("No file was written")));
  EXPECT_THAT(temp.Read("file.vcf"), HasSubstr("BEGIN:VCARD"));

  EXPECT_EQ(RunOn(disk, "report", {"--to", At("report.txt"), "--rules"}).code, 0);
  EXPECT_THAT(temp.Read("report.txt"), HasSubstr("Number of Identities: 3\r\n"));
  EXPECT_TRUE(std::filesystem::exists(temp / "report - Mail Rules {2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}.txt"));
  EXPECT_EQ(RunOn(disk, "report", {"--to", At("report.txt")}).code, 1);
}

TEST_F(CommandLine, ADamagedRegistryIsTakenOnlyWhenAskedFor) {
  const SampleDisk disk = Make();
  LeaveUnclosed(disk.driveC / "Documents and Settings/Ann Miller/NTUSER.DAT");
  DamageKeys(disk.driveC / "Documents and Settings/Ann Miller/NTUSER.DAT",
             {"Identities\\{C65A0B97-2E18-4D03-B7F4-90AC61D85E3C}"});
  const Ran refused = RunOn(disk, "backup", {"--to", At("backup")});
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.err, HasSubstr("with --salvage it is opened all the same"));
  EXPECT_FALSE(std::filesystem::exists(temp / "backup"));
  const Ran salvaged = RunOn(disk, "list", {"--salvage"});
  EXPECT_EQ(salvaged.code, 1);
  EXPECT_THAT(salvaged.err, HasSubstr("damaged in 1 place"));
  EXPECT_THAT(salvaged.out, HasSubstr("Identity Main Identity "));
}

TEST_F(CommandLine, TheProgramItselfKeepsTheStreamsApart) {
  const SampleDisk disk = Make();
  const ProgramRun list = RunProgram(std::filesystem::path(QUILLBOX_BIN_DIR) / "quillbox-cli",
                                     {"list", NameOf(disk.driveC), "--drive", "D=" + NameOf(disk.driveD)}, temp.Path());
  EXPECT_EQ(list.code, 0) << list.err;
  EXPECT_THAT(Stream("out"), HasSubstr("Profile Ann Miller\n"));
  EXPECT_EQ(WithoutProgress(Stream("err")), "");
  // The log has what is reported in words of its own; it does not come a second time.
  const ProgramRun backup = RunProgram(std::filesystem::path(QUILLBOX_BIN_DIR) / "quillbox-cli",
                                       {"backup", NameOf(disk.driveC), "--to", At("backup")}, temp.Path());
  EXPECT_EQ(backup.code, 1);
  EXPECT_THAT(Stream("err"), AllOf(HasSubstr("comp.lang.c++.dbx: left out: "), Not(HasSubstr("not copied: "))));
  EXPECT_THAT(temp.Read("state/quillbox/quillbox.log"), HasSubstr("comp.lang.c++.dbx: its name has a full stop\n"));
  const ProgramRun wrong = RunProgram(std::filesystem::path(QUILLBOX_BIN_DIR) / "quillbox-cli", {"list"}, temp.Path());
  EXPECT_EQ(wrong.code, 2);
  EXPECT_EQ(Stream("out"), "");
}

}  // namespace
}  // namespace quillbox
