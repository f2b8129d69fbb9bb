// SPDX-License-Identifier: GPL-3.0-or-later
// What the program offers where Windows keeps the registry editor for administrators.
#include "platform/windows/elevation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/windows/windows_drives.h"
#include "platform/windows/windows_processes.h"
#include "support/scripted_dialogs.h"

namespace quillbox {
namespace {

constexpr const char* kForEditor =
    "Windows starts its registry editor for administrators only, so nothing was done.\n\nStart Quillbox again as "
    "administrator?";

struct LastLine : Log {
  void Write(std::string_view text) override { line = text; }
  std::string line;
};

class ElevationTest : public ::testing::Test {
 protected:
  bool Run(std::uint32_t error) {
    WindowsProcesses processes(drives, elevation, log,
                               [error](const std::string&, const HostPath&, ShowStyle) -> SystemProcessEnd {
                                 return {.error = error, .exitCode = 0};
                               });
    return processes.RunAndWait("regedit /e \"D:\\a.reg\" \"HKEY_CURRENT_USER\"", ShowStyle::Normal).started;
  }

  ScriptedDialogs dialogs;
  WindowsDrives drives;
  LastLine log;
  bool isLimited = true, starts = true;
  int startedAgain = 0, ended = 0;
  Elevation elevation{
      dialogs, {.isLimited = [this] { return isLimited; }, .startAgain = [this] { return ++startedAgain, starts; }}};
};

TEST_F(ElevationTest, AnEditorForAdministratorsIsReasonToAskOnce) {
  elevation.onStartedAgain = [this] { ++ended; };
  dialogs.messageAnswers = {MessageAnswer::No};
  EXPECT_FALSE(Run(740));
  EXPECT_FALSE(Run(740));
  EXPECT_EQ(dialogs.Texts(), std::vector<std::string>{kForEditor});
  EXPECT_EQ(startedAgain, 0);
  EXPECT_THAT(log.line, testing::HasSubstr("error 740"));
}

TEST_F(ElevationTest, OtherFailuresOfTheEditorAreNot) {
  EXPECT_FALSE(Run(2));
  EXPECT_TRUE(Run(0));
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(ElevationTest, AtTheStartOnlyALimitedAdministratorIsAsked) {
  elevation.onStartedAgain = [this] { ++ended; };
  isLimited = false;
  elevation.OfferAtStart();
  EXPECT_TRUE(dialogs.messages.empty());
  isLimited = true;
  dialogs.messageAnswers = {MessageAnswer::Yes};
  elevation.OfferAtStart();
  EXPECT_EQ(startedAgain, 1);
  EXPECT_EQ(ended, 1);
}

TEST_F(ElevationTest, TheProgramGoesOnWhenTheSystemDoesNotStartItAgain) {
  elevation.onStartedAgain = [this] { ++ended; };
  starts = false;
  dialogs.messageAnswers = {MessageAnswer::Yes};
  elevation.OfferAtStart();
  EXPECT_EQ(startedAgain, 1);
  EXPECT_EQ(ended, 0);
}

}  // namespace
}  // namespace quillbox
