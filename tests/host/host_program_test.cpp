// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_program.h"

#include <chrono>
#include <thread>

#include "host/folder_lock.h"
#include "host/host_paths.h"
#include "support/matchers.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

/// This program, which host_test_main.cpp lets do more than test.
std::string Self() {
  return (ProgramFolder() / "host_test").Text();
}

TEST(HostProgram, GetsItsArgumentsUnchangedAndSaysWhatWentWrong) {
  const std::vector<std::string> arguments = {"show",
                                              "",
                                              "a b",
                                              "\"",
                                              "a\"b c",
                                              "C:\\",
                                              "C:\\a b\\",
                                              "\\\\\"",
                                              "\\\"x\\\\",
                                              "tab\there",
                                              "%PATH% $HOME * ^ &",
                                              "\xC3\xA4\xF0\x9F\x93\xA7"};
  std::string expected;
  for (const std::string& argument : arguments) expected += '<' + argument + ">\n";
  ProgramEnd end = RunToEnd({.program = Self(), .arguments = arguments});
  std::erase(end.errors, '\r');
  EXPECT_EQ(end.errors, expected);
  EXPECT_EQ(end.exitCode, 7);
  EXPECT_EQ(FaultOf([] { RunToEnd({.program = Self() + "-missing", .arguments = {}}); }), "No such file or directory");
}

TEST(HostProgram, IsStartedForTheUserAndKnownToHaveEnded) {
  const auto started = OpenForUser(Self(), "show");
  for (int tries = 0; tries < 500 && !started->ExitCode(); ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_EQ(started->ExitCode(), 7);
}

TEST(FolderLock, LetsInWhomItIsPassedAndNamesItselfToOthers) {
  TempFolder temp;
  const HostPath folder(temp.Path());
  const auto lockElsewhere = [&](const FolderLock* passed) {
    HostProgram program = {.program = Self(), .arguments = {"lock", folder.Text()}};
    if (passed != nullptr) {
      program.passed = {passed->Number()};
      program.arguments.push_back(std::to_string(passed->Number()));
    }
    return RunToEnd(program).errors;
  };
  {
    const FolderLock lock(folder, {});
    EXPECT_EQ(lock.Lack(), "");
    EXPECT_TRUE(lock.IsOf(folder) && !lock.IsOf(folder.Parent()));
    EXPECT_THAT(lockElsewhere(nullptr), AllOf(HasSubstr(": host_test (process "), HasSubstr(") has it open")));
    EXPECT_EQ(lockElsewhere(&lock), "locked ");
    EXPECT_THAT(FaultOf([&] { FolderLock(folder, {}); }), HasSubstr("has it open"));
  }
  EXPECT_EQ(lockElsewhere(nullptr), "locked ");  // and is gone with the program that has not let it go
  EXPECT_EQ(FolderLock(folder, {}).Lack(), "");
  EXPECT_THAT(Names(temp.Path()), IsEmpty());
  EXPECT_THAT(FaultOf([&] { FolderLock(folder / "missing", {}); }), HasSubstr("No such file or directory"));
}

}  // namespace
}  // namespace quillbox
