// SPDX-License-Identifier: GPL-3.0-or-later
// The registry editor: its command line, and as it is really used, started as a program on a disk.

#include <algorithm>

#include "host/host_paths.h"
#include "platform/offline/offline_fixture.h"
#include "platform/offline/offline_platform.h"
#include "platform/offline/offline_processes.h"
#include "regedit/command_line.h"
#include "regedit/export.h"
#include "registry/reg_file_recorder.h"
#include "support/damaged_hive.h"
#include "support/golden_text.h"
#include "support/host_tricks.h"
#include "support/scripted_dialogs.h"

namespace quillbox {
namespace {

/// A request in one line: what would be done with which file and key, or the fault.
std::string Told(const RegeditRequest& request) {
  if (request.fault) return "fault";
  const RegeditCommand& command = request.command;
  std::string text = command.silent ? "silent " : "";
  if (command.action == RegeditAction::Merge) {
    text += "merge <" + command.file + ">";
  } else {
    text += command.form == RegFileForm::Regedit4 ? "export8 <" : "export16 <";
    text += command.file + "> <" + FullName(command.key) + ">";
  }
  return command.isHostFile ? text + " host" : text;
}

TEST(RegeditCommandLine, IsTakenApartAsTheGoldenTextSays) {
  for (const GoldenLine& line : ReadGolden("regedit/command_lines_golden.txt")) {
    const bool isLine = line[0] == "line";
    const RegeditRequest request =
        isLine ? ParseCommandLine(line[1]) : ParseArguments({line.words.begin() + 1, line.words.end()});
    EXPECT_EQ(Told(request), line.Fact("is")[1]) << line.Place();
  }
}

TEST(RegeditCommandLine, NamesTheDisk) {
  const RegeditDisk disk = ParseArguments({"--disk", "c", "--drive", "d=/mnt/d", "--drive", "E=e", "--lock", "3",
                                           "--lock", "4", "--directory", "D:\\bk", "a.reg"})
                               .disk;
  EXPECT_EQ(disk.drives, (std::map<char, std::string>{{'D', "/mnt/d"}, {'E', "e"}}));
  EXPECT_EQ(disk.locks, (std::vector<std::intptr_t>{3, 4}));
  EXPECT_EQ(disk.directory, WinPath("D:\\bk"));
}

/// The words of a command as a person types it: blanks between them, single quotes around blanks.
std::vector<std::string> Words(const std::string& command) {
  std::vector<std::string> words = {""};
  bool isQuoted = false;
  for (const char c : command) {
    if (c == '\'') {
      isQuoted = !isQuoted;
    } else if (c == ' ' && !isQuoted) {
      words.emplace_back();
    } else {
      words.back() += c;
    }
  }
  return words;
}

class RegeditProgram : public testing::Test {
 protected:
  RegeditProgram() {
    MakeHiveFile(kHive);
    MakeHiveFile(folder / "c/WINDOWS/system32/config/software");
    SetVariable("XDG_STATE_HOME", (folder / "state").string());
    folder.File(
        "start.reg",
        "REGEDIT4\r\n[HKEY_CURRENT_USER\\Identities\\{1}]\r\n\"Username\"=\"Ann\"\r\n@=hex(2):25,41,25,e9,00\r\n"
        "\"list\"=hex(7):61,00,62,00,00\r\n\"n\"=dword:1\r\n\"b\"=hex:\r\n"
        "[HKEY_CURRENT_USER\\Identities\\b\\deep]\r\n[HKEY_CURRENT_USER\\Identities\\A]\r\n");
  }

  ProgramRun Run(const std::string& arguments) {
    return RunProgram(NativePath(RegistryEditorOf(ProgramFolder())), Words(arguments), folder.Path());
  }

  TempFolder folder;
  const std::filesystem::path kHive = folder / "c/Documents and Settings/Ann/NTUSER.DAT";
};

TEST_F(RegeditProgram, MergesAndExportsByHand) {
  const ProgramRun merged = Run("--disk c start.reg");
  EXPECT_EQ(merged.code, 0) << merged.err;
  EXPECT_EQ(merged.out, "start.reg: 3 keys added, 0 keys deleted, 5 values set, 0 values deleted\n");
  EXPECT_EQ(Run("--disk c /s start.reg").out, "");
  const ProgramRun exported = Run("--disk c --profile ann /e:A out.reg 'hkcu\\Identities'");
  EXPECT_EQ(exported.code, 0) << exported.err;
  EXPECT_EQ(exported.out, "HKEY_CURRENT_USER\\Identities: 5 keys and 5 values exported to out.reg\n");
  EXPECT_EQ(folder.Read("out.reg"),
            "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Identities]\r\n\r\n[HKEY_CURRENT_USER\\Identities\\A]\r\n\r\n"
            "[HKEY_CURRENT_USER\\Identities\\b]\r\n\r\n[HKEY_CURRENT_USER\\Identities\\b\\deep]\r\n\r\n"
            "[HKEY_CURRENT_USER\\Identities\\{1}]\r\n\"Username\"=\"Ann\"\r\n@=hex(2):25,41,25,e9,00\r\n"
            "\"list\"=hex(7):61,00,62,00,00\r\n\"n\"=dword:00000001\r\n\"b\"=hex:\r\n\r\n");
}

TEST_F(RegeditProgram, TextThatEightBitsCannotHoldGetsTheUnicodeForm) {
  folder.File("wide.reg",
              "\xEF\xBB\xBFREGEDIT4\n[HKEY_CURRENT_USER\\Identities\\Key]\n\"Username\"=\"\xE8\xA1\xA8\"\n");
  ASSERT_EQ(Run("--disk c wide.reg").code, 0);
  const ProgramRun exported = Run("--disk c /e:A out.reg HKEY_CURRENT_USER\\Identities");
  EXPECT_THAT(exported.out + exported.err, HasSubstr("[HKEY_CURRENT_USER\\Identities\\Key] \"Username\""));
  EXPECT_THAT(folder.Read("out.reg"), StartsWith("\xFF\xFEW"));
  EXPECT_THAT(ContentsOf(folder.Read("out.reg")), testing::IsSupersetOf(ContentsOf(folder.Read("wide.reg"))));

  Hive system = Hive::Create("system", kTestTime);
  system.SetValue(system.CreatePath(system.Root(), "Select"), "Current", 4, {{1, 0, 0, 0}});
  system.SetValue(system.CreatePath(system.Root(), "ControlSet001\\Control\\Nls\\CodePage"), "ACP", 1,
                  Utf16Bytes({u"932\0", 4}));
  WriteBytes(folder / "c/WINDOWS/system32/config/system", system.Image(kTestTime));
  EXPECT_EQ(Run("--disk c /e:A out.reg HKEY_CURRENT_USER\\Identities").code, 0);
  EXPECT_THAT(folder.Read("out.reg"), AllOf(StartsWith("REGEDIT4"), HasSubstr("\"Username\"=\"\x95\x5C\"")));
}

TEST_F(RegeditProgram, CountsWhatItMergesAndNamesWhatItCannot) {
  folder.File("old.reg",
              "REGEDIT4\n[HKEY_CURRENT_USER\\I\\Old\\Sub]\n\"v\"=\"x\"\n[HKEY_CURRENT_USER\\I\\Kept]\n\"v\"=\"x\"\n");
  ASSERT_EQ(Run("--disk c old.reg").code, 0);
  folder.File("x.reg",
              "REGEDIT4\r\n"
              "[-HKEY_CURRENT_USER\\I\\Old]\r\n[-HKEY_CURRENT_USER\\I\\Never]\r\n"
              "[hkey_current_user\\I\\Kept]\r\n\"V\"=-\r\n\"never\"=-\r\n\"new\"=dword:2\r\n"
              "[HKEY_CURRENT_USER\\I\\New\\Sub]\r\n@=\"y\"\r\nbroken\r\n[HKEY_USERS\\S-1]\r\n\"lost\"=\"x\"\r\n");
  const ProgramRun merged = Run("--disk c x.reg");
  EXPECT_EQ(merged.out, "x.reg: 1 key added, 1 key deleted, 2 values set, 1 value deleted\n");
  EXPECT_THAT(merged.err, AllOf(HasSubstr("x.reg, line 10: "), HasSubstr("x.reg, line 11: \"HKEY_USERS\\S-1\": ")));
  EXPECT_EQ(std::count(merged.err.begin(), merged.err.end(), '\n'), 2 + 1) << "and that SYSTEM is not there";
  Run("--disk c /e:A out.reg HKEY_CURRENT_USER\\I");
  EXPECT_EQ(
      folder.Read("out.reg"),
      "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\I]\r\n\r\n[HKEY_CURRENT_USER\\I\\Kept]\r\n\"new\"=dword:00000002\r\n\r\n"
      "[HKEY_CURRENT_USER\\I\\New]\r\n\r\n[HKEY_CURRENT_USER\\I\\New\\Sub]\r\n@=\"y\"\r\n\r\n");

  std::string many = "REGEDIT4\r\n";
  for (int i = 0; i < 300; ++i) many += "[HKEY_USERS\\" + std::to_string(i) + "]\r\n@=\"x\"\r\n";
  folder.File("many.reg", many);
  EXPECT_THAT(Run("--disk c many.reg").err, EndsWith("many.reg: and 100 more lines that could not be merged\n"));
}

TEST(RegeditExport, LargeKeysAreWrittenInPieces) {
  OfflineFixture system;
  HiveFile file(HostPlace::Anywhere(MakeHiveFile(system.disk / "hive")), HiveMode::Write, system.disk / "state",
                system.log);
  const RegistryPath root = {RegistryRoot::CurrentUser, ""};
  system.registry.Mount(root, file);
  for (int i = 0; i < 8; ++i) file.Edit().SetValue(file.View().Root(), std::to_string(i), 3, Bytes(100'000, 0xAB));
  std::size_t pieces = 0;
  std::string bytes;
  ExportKey(system.registry, root, RegFileForm::Regedit4, CodePage(),
            [&](std::string_view piece) { bytes += piece, ++pieces; });
  EXPECT_GT(pieces, 4U);
  EXPECT_EQ(ContentsOf(bytes).size(), 1U + 1U + 8U);
}

TEST_F(RegeditProgram, WrongCommandsGetUsageAndFailuresAReason) {
  const ProgramRun wrong = Run("--disk c --x a.reg");
  EXPECT_EQ(wrong.code, 2);
  EXPECT_THAT(wrong.err, HasSubstr("Usage:"));
  folder.File("kept.reg", "an earlier export");
  folder.File("wrong.reg", "no registry file");
  for (const char* failing :
       {"--disk nowhere start.reg", "--disk c --profile Bob start.reg", "--disk c wrong.reg",
        "--disk c /s /e kept.reg 'HKEY_CURRENT_USER\\Never'", "--disk c /e no/folder.reg HKEY_CURRENT_USER"}) {
    const ProgramRun outcome = Run(failing);
    EXPECT_EQ(outcome.code, 1) << failing;
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("regedit: "), EndsWith("\n"))) << failing;
    EXPECT_EQ(outcome.out, "") << failing;
  }
  EXPECT_EQ(folder.Read("kept.reg"), "an earlier export");
  EXPECT_THAT(Run("--disk c missing.reg").err, HasSubstr("regedit: missing.reg: "));
}

TEST_F(RegeditProgram, EveryRefusedChangeHasItsOwnReason) {
  MakeHiveFile(folder / "c/WINDOWS/system32/config/system");
  std::string deep, tooLarge = "00";
  for (int level = 0; level < 512; ++level) deep += "\\d";
  for (int byte = 0; byte < 1 << 20; ++byte) tooLarge += ",00";
  const std::string user = "\"HKEY_CURRENT_USER", machine = "\"HKEY_LOCAL_MACHINE", longName(300, 'n');
  const std::string shownName = std::string(260, 'n') + "\u2026" + std::string(100, 'n') + " [16384 characters]";
  const std::string shownDeep = deep.substr(0, 243) + "\u2026" + deep.substr(924) + " [1041 characters]";
  const std::string size =
      "its data are 1048577 bytes long, and a hive of version 1.3 holds no more than 1048576 in one value";
  const std::pair<std::string, std::string> rows[] = {
      {"[HKEY_CURRENT_USER\\" + longName + "]",
       user + "\\" + longName + "\": the new key's name is 300 characters long; a key's name has no more than 255"},
      {"[HKEY_CURRENT_USER" + deep + "]", user + shownDeep + "\": keys can be nested 512 levels deep and no deeper"},
      {"[HKEY_CURRENT_USER\\A]", ""},
      {"\"big\"=hex:" + tooLarge, "\"big\": " + size},
      {"@=hex:" + tooLarge, "the default value: " + size},
      {"\"" + std::string(16384, 'n') + "\"=\"x\"", "\"" + shownName + "\": its name has more than 16383 characters"},
      {"[-HKEY_LOCAL_MACHINE\\SOFTWARE]", machine + "\\SOFTWARE\": the root key of a hive cannot be deleted"},
      {"[-HKEY_LOCAL_MACHINE\\HARDWARE\\A]", machine + "\\HARDWARE\\A\": its hive is not on this disk"},
      {"[HKEY_USERS\\S-1]", "\"HKEY_USERS\\S-1\": its hive is not on this disk"},
      {"[HKEY_LOCAL_MACHINE]", machine + "\": the key itself is in no hive"},
      {"[HKEY_LOCAL_MACHINE\\SYSTEM\\A]", machine + "\\SYSTEM\\A\": its hive cannot be written"},
      {"[HKEY_NOWHERE\\A]", "\"HKEY_NOWHERE\\A\" begins with no root key"},
  };
  std::string file = "REGEDIT4\n", reasons;
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    file += rows[i].first + "\n";
    if (!rows[i].second.empty()) reasons += "no.reg, line " + std::to_string(i + 2) + ": " + rows[i].second + "\n";
  }
  folder.File("no.reg", file);
  const ProgramRun merged = Run("--disk c no.reg");
  EXPECT_EQ(merged.code, 1);
  EXPECT_EQ(merged.out, "no.reg: 1 key added, 0 keys deleted, 0 values set, 0 values deleted\n");
  EXPECT_THAT(merged.err, EndsWith(reasons));
}

TEST_F(RegeditProgram, HiveThatIsNotThereIsNamedWithItsFault) {
  folder.File("c/WINDOWS/system32/config/software", "no hive");
  folder.File("no.reg", "REGEDIT4\n[-HKEY_LOCAL_MACHINE\\Software\\A]\n[HKEY_LOCAL_MACHINE\\SYSTEM\\A]\n");
  const ProgramRun merged = Run("--disk c no.reg");
  EXPECT_EQ(merged.code, 1);
  EXPECT_THAT(merged.err,
              AllOf(HasSubstr("no.reg, line 2: \"HKEY_LOCAL_MACHINE\\Software\\A\": its hive is not there: "),
                    HasSubstr("software, offset 0x0: "),
                    EndsWith("no.reg, line 3: \"HKEY_LOCAL_MACHINE\\SYSTEM\\A\": its hive is not there: the disk has "
                             "no file for it\n")));
}

TEST_F(RegeditProgram, FilesLargerThanTheMemoryAreReadInPieces) {
  constexpr std::uintmax_t kMegabyte = std::uintmax_t{1} << 20;
  const auto file = folder.File("big.reg", "REGEDIT4\n[HKEY_CURRENT_USER\\New]\n\"a\"=\"never closed\n");
  std::filesystem::resize_file(file, 384 * kMegabyte);
  const ProgramRun merged = Run("--disk c big.reg");
  EXPECT_EQ(merged.code, 1);
  EXPECT_EQ(merged.out, "big.reg: 1 key added, 0 keys deleted, 0 values set, 0 values deleted\n");
  EXPECT_THAT(merged.err, EndsWith("\nbig.reg, line 3: a quote is not closed\nbig.reg, line 4: this is neither a key "
                                   "nor a value nor a comment\n"));
  // Most of this is what the address sanitizer needs for itself where it is on.
  EXPECT_LT(MostMemoryOfPrograms(), 200 * kMegabyte);

  std::filesystem::resize_file(file, 4096 * kMegabyte + 1);
  EXPECT_THAT(Run("--disk c big.reg").err,
              EndsWith("regedit: big.reg: it is larger than 4 GB, and no registry file of such a size is read "
                       "(while reading a registry file)\n"));
}

class RegeditOnADamagedDisk : public RegeditProgram {
 protected:
  RegeditOnADamagedDisk() {
    folder.File("c/more.reg", "REGEDIT4\r\n[HKEY_CURRENT_USER\\Damaged]\r\n[HKEY_CURRENT_USER\\Sound]\r\n");
    EXPECT_EQ(Run("--disk c c/more.reg").code, 0);
    DamageKeys(kHive, {"Damaged"});
    damaged = folder.Read("c/Documents and Settings/Ann/NTUSER.DAT");
  }
  std::string damaged;
};

TEST_F(RegeditOnADamagedDisk, AllIsRefusedUnlessItIsToBeSalvaged) {
  for (const char* command : {"--disk c c/more.reg", "--disk c /e out.reg HKEY_CURRENT_USER"}) {
    const ProgramRun refused = Run(command);
    EXPECT_EQ(refused.code, 1) << command;
    EXPECT_THAT(refused.err,
                AllOf(HasSubstr("The registry of Ann is damaged in 1 place. Open what can be read? The disk will not "
                                "be written."),
                      HasSubstr("NTUSER.DAT, offset 0x"), HasSubstr("--salvage")));
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "out.reg"));
  EXPECT_FALSE(std::filesystem::exists(folder / "state/quillbox/copies"));

  const ProgramRun exported = Run("--disk c --salvage /e:A out.reg HKEY_CURRENT_USER");
  EXPECT_EQ(exported.code, 0) << exported.err;
  EXPECT_THAT(exported.err, HasSubstr("the root key is damaged: "));
  EXPECT_THAT(folder.Read("out.reg"), AllOf(HasSubstr("[HKEY_CURRENT_USER\\Sound]"), Not(HasSubstr("Damaged"))));
  EXPECT_EQ(Run("--salvage --disk c c/more.reg").code, 0);
  EXPECT_EQ(folder.Read("c/Documents and Settings/Ann/NTUSER.DAT"), damaged);
  EXPECT_EQ(Run("--disk c /e:A out.reg HKEY_CURRENT_USER").code, 0) << "the private copy is sound";
  EXPECT_THAT(folder.Read("out.reg"), HasSubstr("[HKEY_CURRENT_USER\\Damaged]"));
}

TEST_F(RegeditOnADamagedDisk, TheProgramThatHasAskedHandsTheAnswerOn) {
  ScriptedDialogs dialogs;
  dialogs.messageAnswers = {MessageAnswer::Yes};
  OfflinePlatform platform({.folder = folder / "c", .stateFolder = folder / "state"}, dialogs);
  platform.GetRegistry().Create({RegistryRoot::CurrentUser, "Before"});
  const ProcessEnd end = platform.GetProcesses().RunAndWait("regedit /s C:\\more.reg", ShowStyle::Normal);
  EXPECT_EQ(end.exitCode, 0) << end.errors;
  for (const char* key : {"Before", "Damaged", "Sound"}) {
    EXPECT_EQ(platform.GetRegistry().Open({RegistryRoot::CurrentUser, key}, Access::Read).status, Status::Success);
  }
  EXPECT_THAT(platform.SystemDescription(), HasSubstr("(damaged in 1 place: "));
  EXPECT_EQ(folder.Read("c/Documents and Settings/Ann/NTUSER.DAT"), damaged);
}

}  // namespace
}  // namespace quillbox
