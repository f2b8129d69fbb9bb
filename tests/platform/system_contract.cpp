// SPDX-License-Identifier: GPL-3.0-or-later
// What every platform promises beside the registry: files and copies, drives, the environment, the registry editor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "platform/contract_world.h"
#include "support/scripted_dialogs.h"
#include "text/error.h"
#include "text/file_time.h"

namespace quillbox {
namespace {

using namespace std::string_literals;
using ::testing::HasSubstr;

class SystemContract : public testing::Test {
 protected:
  WinPath In(const std::string& name) const { return WinPath(world_->folder.Text() + "\\" + name); }
  std::vector<std::string> Names(const std::string& pattern) {
    std::vector<std::string> names;
    const auto finder = files.Find(In(pattern));
    while (const auto entry = finder->Next()) names.push_back(entry->name);
    return names;
  }
  /// Copies, and says how that ended.
  CopyEnd Copy(const std::string& from, const std::string& to, bool noConfirm = false) {
    platform.GetShell().CopyFile(
        {.source = In(from), .target = In(to), .noConfirm = noConfirm, .part = CopyPart::OnlyFile});
    const CopyEnd end = platform.GetShell().FinishCopies().back().end;
    platform.EndCommand();
    return end;
  }
  int RunEditor(const std::string& commandLine) {
    const ProcessEnd end = platform.GetProcesses().RunAndWait(commandLine, ShowStyle::MinimisedWithFocus);
    EXPECT_TRUE(end.started) << commandLine;
    return end.exitCode;
  }

  ScriptedDialogs dialogs_;
  std::unique_ptr<ContractWorld> world_ = MakeContractWorld(dialogs_);
  Platform& platform = world_->GetPlatform();
  FileSystem& files = platform.GetFiles();
  Drives& drives = platform.GetDrives();
};

TEST_F(SystemContract, FoldersAreMadeOneByOneOrAllAlongAPath) {
  EXPECT_EQ(files.MakeDirectory(In("a")), Status::Success);
  EXPECT_EQ(files.MakeDirectory(In("A")), Status::FileExists);
  EXPECT_EQ(files.MakeDirectory(In("b\\c")), Status::PathNotFound);
  EXPECT_EQ(files.MakeDirectory(In("what?")), Status::InvalidParameter);
  EXPECT_TRUE(files.MakePath(In("b\\c\\Gr\u00FC\u00DFe")));
  files.WriteFile(In("file"), "x");
  EXPECT_FALSE(files.MakePath(In("file\\below")));
  EXPECT_TRUE(files.Stat(In("B/C"))->isDirectory);
  EXPECT_FALSE(files.Stat(In("b\\d")));
  EXPECT_THAT(Names("*"), testing::UnorderedElementsAre(".", "..", "a", "b", "file"));
}

TEST_F(SystemContract, FilesAreWholeOrAsBefore) {
  files.WriteFile(In("One.dbx"), "first\0line\r\n"s);
  files.WriteFile(In("one.DBX"), "second");
  EXPECT_EQ(Names("*.dbx"), std::vector<std::string>{"One.dbx"}) << "it keeps its name";
  EXPECT_EQ(files.ReadFile(In("ONE.dbx")), "second");
  {
    const auto unfinished = files.StartFile(In("One.dbx"));
    unfinished->Write("third");
  }
  EXPECT_EQ(files.ReadFile(In("One.dbx")), "second");
  EXPECT_THAT(Names("*.*"), testing::SizeIs(3)) << "nothing is left of it";
  EXPECT_THROW(files.StartFile(In("none\\file")), Error);
  EXPECT_THROW(files.ReadFile(In("none")), Error);

  const auto reader = files.OpenForReading(In("One.dbx"));
  std::array<char, 4> piece = {};
  reader->GoTo(3);
  EXPECT_EQ(reader->Read(piece), 3u);
  EXPECT_EQ(std::string(piece.data(), 3), "ond");
}

TEST_F(SystemContract, AFolderOfManyFilesIsWholeOrAsBefore) {
  static constexpr FileTime kTime = 126'000'000'000'000'000;
  const auto add = [](FolderWriter& folder, const char* name) {
    folder.StartFile({name});
    folder.Write(name);
    folder.EndFile(kTime);
    std::array<char, 9> piece = {};
    EXPECT_EQ(folder.Open({name})->Read(piece), std::string_view(name).size());
  };
  add(*files.StartFolder(In("Mail")), "lost");
  EXPECT_FALSE(files.Stat(In("Mail")));
  for (const char* name : {"1.eml", "2.eml"}) {
    const auto folder = files.StartFolder(In("MAIL"));
    EXPECT_EQ(folder->NamesThere().size(), name == "2.eml"s ? 1u : 0u);
    add(*folder, name);
    folder->Commit();
  }
  EXPECT_THAT(Names("*.*"), testing::UnorderedElementsAre(".", "..", "MAIL"));
  EXPECT_EQ(files.ReadFile(In("Mail\\1.eml")) + files.ReadFile(In("Mail\\2.eml")), "1.eml2.eml");
  EXPECT_EQ(files.Stat(In("Mail\\2.eml"))->modified, kTime);
  const auto again = files.StartFolder(In("mail"));
  EXPECT_THROW(again->StartFile({"1.eml"}), Error);
  EXPECT_THROW(again->StartFile({"../out"}), Error);
  EXPECT_THROW(files.StartFolder(In("none\\mail")), Error);
  EXPECT_THROW(files.StartFolder(In("what?")), Error);
}

TEST_F(SystemContract, OnlyFilesAndEmptyFoldersAreDeleted) {
  files.MakePath(In("folder\\empty"));
  EXPECT_NE(files.RemoveDirectory(In("folder")), Status::Success);
  EXPECT_EQ(files.RemoveDirectory(In("Folder\\EMPTY")), Status::Success);
  files.WriteFile(In("file"), "");
  EXPECT_NE(files.RemoveDirectory(In("file")), Status::Success);
  EXPECT_EQ(files.DeleteFile(In("folder")), Status::AccessDenied);
  EXPECT_EQ(files.DeleteFile(In("FILE")), Status::Success);
  EXPECT_EQ(files.DeleteFile(In("file")), Status::FileNotFound);
  EXPECT_EQ(files.DeleteFile(In("none\\file")), Status::PathNotFound);
}

TEST_F(SystemContract, AWalkGivesAFoldersFilesBeforeThoseBelowIt) {
  files.MakePath(In("Mail\\Old"));
  for (const char* name : {"Mail\\Inbox.dbx", "Mail\\note.txt", "Mail\\Old\\KDE.DBX"}) files.WriteFile(In(name), "x");
  std::vector<std::string> found;
  const auto walk = files.Walk(In("Mail"), "*.dbx");
  for (WalkStep step; walk->Step(step);) {
    for (const std::string& name : step.files) found.push_back(step.folder + name);
    EXPECT_TRUE(step.unread.empty());
  }
  EXPECT_EQ(found, (std::vector<std::string>{In("Mail\\Inbox.dbx").Text(), In("Mail\\Old\\KDE.DBX").Text()}));
}

TEST_F(SystemContract, CopiesAskBeforeTheyReplaceAndKeepTheTime) {
  files.WriteFile(In("from"), "new");
  const std::uint64_t modified = files.Stat(In("from"))->modified;
  EXPECT_NEAR(static_cast<double>(modified), static_cast<double>(platform.GetClock().Now()), 60e7);
  EXPECT_EQ(Copy("from", "to"), CopyEnd::Copied);
  EXPECT_EQ(files.Stat(In("to"))->modified, modified);
  files.WriteFile(In("from"), "newer");
  dialogs_.overwriteAnswers = {OverwriteAnswer::No, OverwriteAnswer::Yes};
  EXPECT_EQ(Copy("from", "to"), CopyEnd::NotReplaced);
  EXPECT_EQ(files.ReadFile(In("to")), "new");
  EXPECT_EQ(Copy("from", "to"), CopyEnd::Copied);
  EXPECT_EQ(files.ReadFile(In("to")), "newer");
  EXPECT_EQ(Copy("from", "to", true), CopyEnd::Copied);
  EXPECT_EQ(dialogs_.overwriteQuestions.size(), 2u);
  files.MakeDirectory(In("folder"));
  EXPECT_EQ(Copy("from", "folder"), CopyEnd::Copied);
  EXPECT_EQ(files.ReadFile(In("folder\\from")), "newer");
  EXPECT_EQ(Copy("none", "folder"), CopyEnd::Failed);
}

TEST_F(SystemContract, RelativePathsBeginAtTheCurrentDirectoryOfTheirDrive) {
  ASSERT_TRUE(files.MakePath(In("here")));
  const char letter = world_->folder.Drive();
  EXPECT_EQ(drives.SetCurrentDrive(letter), Status::Success);
  EXPECT_EQ(drives.SetCurrentDirectory(In("here")), Status::Success);
  EXPECT_EQ(drives.CurrentDirectory(), In("here"));
  files.WriteFile(WinPath("note"), "x");
  files.WriteFile(WinPath(std::string{letter, ':'} + "..\\above"), "y");
  EXPECT_EQ(files.ReadFile(In("here\\note")) + files.ReadFile(In("above")), "xy");
  EXPECT_EQ(drives.SetCurrentDirectory(In("none")), Status::PathNotFound);
  EXPECT_EQ(drives.SetCurrentDrive('Q'), Status::PathNotFound);
  EXPECT_EQ(drives.CurrentDirectory(), In("here"));
}

TEST_F(SystemContract, DrivesAreWhatTheyAre) {
  const std::string own = {world_->folder.Drive(), ':', '\\'};
  EXPECT_EQ(drives.TypeOfDrive(WinPath(own)), DriveType::Fixed);
  EXPECT_TRUE(drives.IsOwnDrive(own[0]));
  EXPECT_TRUE(drives.VolumeLabel(WinPath(own)));
  EXPECT_EQ(drives.TypeOfDrive(WinPath("Q:\\")), DriveType::NoRoot);
  EXPECT_FALSE(drives.IsOwnDrive('Q'));
  EXPECT_FALSE(drives.VolumeLabel(WinPath("Q:\\")));
}

TEST_F(SystemContract, VariablesAreExpandedOnceWhereTheyAreSet) {
  SystemFacts& facts = platform.GetSystemFacts();
  const std::string name = world_->variable;
  const std::string folder = facts.ExpandEnvironment("%" + name + "%");
  EXPECT_TRUE(files.Stat(WinPath(folder))->isDirectory) << folder;
  std::string lower = name;
  for (char& c : lower) c = static_cast<char>(c | 0x20);
  EXPECT_EQ(facts.ExpandEnvironment("<%" + lower + "%\\Gr\u00FC\u00DFe>"), "<" + folder + "\\Gr\u00FC\u00DFe>");
  for (const char* text : {"", "100 %", "%NoSuchVariable%", "%%", "%"}) EXPECT_EQ(facts.ExpandEnvironment(text), text);
  EXPECT_NE(facts.CodePageNumber(), 0u);
}

TEST_F(SystemContract, GuidsAreNewAndInBraces) {
  std::set<std::string> guids;
  for (int i = 0; i < 100; ++i) {
    std::string guid = platform.GetGuids().Create();
    guids.insert(guid);
    for (char& c : guid) c = std::string_view("0123456789ABCDEF").find(c) != std::string_view::npos ? 'h' : c;
    EXPECT_EQ(guid, "{hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh}");
  }
  EXPECT_EQ(guids.size(), 100u);
}

TEST_F(SystemContract, TheEditorMergesAndExportsWithTheProgramsCommandLines) {
  const std::string key = FullName(world_->key);
  const std::string text = "REGEDIT4\r\n\r\n[" + key + "\\Sub key]\r\n\"n\"=dword:0000002a\r\n@=\"a \\\\ b\"\r\n\r\n";
  files.WriteFile(In("in file.reg"), text);
  EXPECT_EQ(RunEditor("regedit /s /c \"" + In("in file.reg").Text()), 0);
  Registry& registry = platform.GetRegistry();
  const OpenResult merged = registry.Open(world_->key.Child("Sub key"), Access::Read);
  ASSERT_EQ(merged.status, Status::Success);
  EXPECT_EQ(registry.Query(merged.key, "n", std::nullopt).type, ValueType::Dword);

  ASSERT_EQ(drives.SetCurrentDrive(world_->folder.Drive()), Status::Success);
  ASSERT_EQ(drives.SetCurrentDirectory(world_->folder), Status::Success);
  EXPECT_EQ(RunEditor("regedit /s /e \"out.reg\"  \"" + key + "\\Sub key\""), 0);
  const std::string exported = files.ReadFile(In("out.reg"));
  ASSERT_TRUE(exported.starts_with("\xFF\xFE"));
  std::string narrow;
  for (std::size_t i = 2; i < exported.size(); i += 2) narrow += exported[i];
  EXPECT_THAT(narrow, HasSubstr("Windows Registry Editor Version 5.00\r\n\r\n[" + key + "\\Sub key]\r\n"));
  EXPECT_THAT(narrow, HasSubstr("\"n\"=dword:0000002a\r\n"));
  EXPECT_THAT(narrow, HasSubstr("@=\"a \\\\ b\"\r\n"));
}

}  // namespace
}  // namespace quillbox
