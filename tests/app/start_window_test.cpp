#include "app/start_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/offline/offline_platform.h"
#include "sample/sample_disk.h"
#include "support/damaged_hive.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"
#include "support/test_log.h"

namespace quillbox {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class StartWindowTest : public ::testing::Test {
 protected:
  std::string Wherever(const char* below) { return paths.WindowsPathOf(temp / below).Text(); }

  TempFolder temp;
  HostOnlyPaths paths;
  TestLog log;
  ScriptedDialogs dialogs;
  HandlerGuard guard{log, dialogs};
  std::vector<DiskChoice> opened;
  StartWindow window{guard, dialogs, [this](const DiskChoice& choice) { opened.push_back(choice); }};
};

TEST_F(StartWindowTest, AChosenDiskShowsItsProfilesAndOpens) {
  const SampleDisk sample = MakeSampleDisk(temp / "disk", {.smallStores = true});
  dialogs.folderAnswers = {WinPath(Wherever("disk/C"))};
  window.Show();
  window.cmdChoose.click();
  EXPECT_EQ(window.lstProfiles.items, std::vector<std::string>{"Ann Miller — 3 identities"});
  EXPECT_TRUE(window.cmdOpen.enabled);
  window.cmdOpen.click();
  EXPECT_THAT(opened, ElementsAre(DiskChoice{sample.driveC, "Ann Miller", {}}));
  EXPECT_FALSE(window.visible);
}

TEST_F(StartWindowTest, AFolderThatIsNoDiskSaysWhy) {
  dialogs.folderAnswers = {WinPath(Wherever(""))};
  window.cmdChoose.click();
  EXPECT_NE(window.lblFault.caption, "");
  EXPECT_FALSE(window.cmdOpen.enabled);
  window.cmdOpen.click();
  EXPECT_TRUE(opened.empty());
}

TEST_F(StartWindowTest, AHiveThatIsNotWholeSaysSoBesideItsProfile) {
  MakeSampleDisk(temp / "disk", {.smallStores = true});
  constexpr const char* kHive = "disk/C/Documents and Settings/Ann Miller/NTUSER.DAT";
  const std::string content = temp.Read(kHive);
  const auto shown = [&] {
    window.Look({.folder = temp / "disk/C", .profile = {}, .drives = {}});
    return window.lstProfiles.items.Get();
  };
  LeaveUnclosed(temp / kHive);
  temp.File(std::string(kHive) + ".LOG", "no log");
  EXPECT_THAT(shown(),
              ElementsAre("Ann Miller — 3 identities (registry not closed cleanly, and its logs cannot be used)"));
  temp.File(kHive, content);
  DamageKeys(temp / kHive, {"Environment", "Software\\Microsoft\\WAB\\WAB4\\Wab File Name"});
  EXPECT_THAT(shown(), ElementsAre("Ann Miller — 3 identities (registry damaged in 2 places)"));
  temp.File(kHive, "no hive");
  EXPECT_THAT(shown(), ElementsAre(HasSubstr("Ann Miller — cannot be read: ")));
}

TEST_F(StartWindowTest, AnAnswerOfNoLeavesTheWindowWithTheReason) {
  const SampleDisk sample = MakeSampleDisk(temp / "disk", {.smallStores = true});
  DamageKeys(sample.driveC / "Documents and Settings/Ann Miller/NTUSER.DAT", {"Environment"});
  StartWindow asking(guard, dialogs, [this](const DiskChoice& choice) {
    OfflineOptions options;
    options.folder = choice.folder;
    options.profile = choice.profile;
    options.stateFolder = temp / "state";
    const OfflinePlatform platform(options, dialogs);
    opened.push_back(choice);
  });
  asking.Look({.folder = sample.driveC, .profile = {}, .drives = {}});
  asking.Show();
  dialogs.messageAnswers = {MessageAnswer::No, MessageAnswer::Yes};
  asking.cmdOpen.click();
  EXPECT_TRUE(opened.empty() && asking.visible);
  EXPECT_THAT(asking.lblFault.caption.Get(), HasSubstr("NTUSER.DAT, offset 0x"));
  asking.cmdOpen.click();
  EXPECT_EQ(opened.size(), 1u);
}

TEST_F(StartWindowTest, ASampleDiskIsMadeWhereThePersonSays) {
  dialogs.folderAnswers = {WinPath(Wherever("")), WinPath(Wherever(""))};
  window.cmdSample.click();
  window.lstProfiles.open(0);
  EXPECT_THAT(opened,
              ElementsAre(DiskChoice{temp / "quillbox-sample/C", "Ann Miller", {{'D', temp / "quillbox-sample/D"}}}));
  window.cmdSample.click();
  EXPECT_THAT(window.lblFault.caption.Get(), HasSubstr("quillbox-sample"));
}

}  // namespace
}  // namespace quillbox
