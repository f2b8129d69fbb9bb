// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/start_window.h"

#include "app/no_display.h"
#include "app/this_computer.h"
#include "platform/offline/offline_platform.h"
#include "sample/sample_disk.h"
#include "support/damaged_hive.h"
#include "support/host_tricks.h"
#include "support/matchers.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"
#include "support/test_log.h"

namespace quillbox {
namespace {

class StartWindowTest : public ::testing::Test {
 protected:
  std::string Wherever(const char* below) { return paths.WindowsPathOf(temp / below).Text(); }

  TempFolder temp;
  HostOnlyPaths paths;
  TestLog log;
  ScriptedDialogs dialogs;
  HandlerGuard guard{log, dialogs};
  std::vector<DiskChoice> opened;
  std::unique_ptr<StartWindow> made = Make();
  StartWindow& window = *made;

  /// As a new start of the program does.
  std::unique_ptr<StartWindow> Make(const char* state = "state") {
    auto start = std::make_unique<StartWindow>(guard, dialogs, temp / state);
    start->onOpen = [this](const DiskChoice& choice) { opened.push_back(choice); };
    start->onSearch = [this](const DiskChoice& choice) {
      opened.push_back(choice);
      opened.back().profile = "(search)";
    };
    return start;
  }
  /// A disk of the profiles that are named, with hives that cannot be read.
  void MakeDisk(const std::string& folder, std::initializer_list<const char*> names) {
    for (const char* name : names) temp.File(folder + "/Users/" + name + "/NTUSER.DAT", "no hive");
  }
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

TEST_F(StartWindowTest, ADiskOfWindows98ShowsWhoSharesItAndIsRemembered) {
  const SampleDisk sample = MakeSampleDisk(temp / "disk", {.smallStores = true, .kind = SampleKind::Windows98});
  window.Look({.folder = temp / "disk/C", .profile = {}, .drives = {}});
  EXPECT_EQ(window.lstProfiles.items, std::vector<std::string>{"Everyone (Windows 98) — 3 identities"});
  window.cmdOpen.click();
  EXPECT_THAT(opened, ElementsAre(DiskChoice{sample.driveC, ".DEFAULT", {}}));
  RememberDisk(temp / "state", {opened[0], 0});
  EXPECT_THAT(Make()->lstDisks.items.Get(), ElementsAre("Everyone — " + sample.driveC.string()));
}

TEST_F(StartWindowTest, ThisComputerIsOfferedWhereItRunsWindows) {
  ASSERT_EQ(window.cmdThisComputer.visible, IsWindowsHere());
  if (!IsWindowsHere()) return;
  window.Show();
  window.onThisComputer = [] { throw Error("opening it", {}, "a reason"); };
  window.cmdThisComputer.click();
  EXPECT_THAT(window.lblFault.caption.Get(), HasSubstr("a reason"));
  window.onThisComputer = [] {};
  window.cmdThisComputer.click();
  EXPECT_FALSE(window.visible);
}

TEST_F(StartWindowTest, AFolderThatIsNoDiskSaysWhy) {
  dialogs.folderAnswers = {WinPath(Wherever(""))};
  window.cmdChoose.click();
  EXPECT_THAT(window.lblFault.caption.Get(), HasSubstr("There is no Windows in it"));
  EXPECT_FALSE(window.cmdOpen.enabled);
  window.cmdOpen.click();
  EXPECT_TRUE(opened.empty());
  const std::string image = temp.File("xp.img", "\xEB\x52\x90NTFS    " + std::string(600, '\0')).string();
  window.txtFolder.type(image);
  window.cmdOpen.click();
  EXPECT_EQ(window.lblFault.caption,
            "This is the image of a disk (NTFS), not a folder. Mount it with this command, then choose /mnt:");
  EXPECT_EQ(window.txtCommand.text, "sudo mount -o ro,loop '" + image + "' /mnt");
  EXPECT_TRUE(window.txtCommand.visible && window.lblFault.visible && window.lblFault.wraps);
  window.txtFolder.type("/");
  EXPECT_FALSE(window.txtCommand.visible || window.lblFault.visible);
}

TEST_F(StartWindowTest, ATypedFolderOpensAndOneBesideTheDiskOffersIt) {
  MakeDisk("xp", {"Ann"});
  window.Show();
  window.txtFolder.type(" " + (temp / "xp/Users").string() + " ");
  window.cmdOpen.click();
  EXPECT_EQ(window.lblProfiles.caption, "Open " + (temp / "xp").string() + "?");
  EXPECT_TRUE(opened.empty()) << "an offer is not taken at once";
  MakeDisk("other", {"Ben"});
  window.txtFolder.type(temp.Path().string());
  window.cmdOpen.click();
  EXPECT_EQ(window.lblProfiles.caption, "Open one of these?");
  EXPECT_THAT(window.lstProfiles.items.Get(),
              ElementsAre(StartsWith((temp / "other").string() + ": Ben"), StartsWith((temp / "xp").string())));
  window.lstProfiles.pick(1);
  window.cmdOpen.click();
  window.Show();
  window.txtFolder.type((temp / "other").string());
  window.cmdOpen.click();
  EXPECT_THAT(opened, ElementsAre(DiskChoice{temp / "xp", "Ann", {}}, DiskChoice{temp / "other", "Ben", {}}));
  EXPECT_FALSE(window.visible);
}

TEST_F(StartWindowTest, SeveralProfilesAreAListAndTheDiskCanBeSearchedWithoutThem) {
  MakeDisk("xp", {"Ann", "Ben"});
  window.txtFolder.type((temp / "xp").string());
  window.cmdOpen.click();
  EXPECT_EQ(window.lblFault.caption, "");
  EXPECT_THAT(window.lstProfiles.items.Get(),
              ElementsAre(StartsWith("Ann — cannot be read"), StartsWith("Ben — cannot be read")));
  window.cmdSearch.click();
  window.lstProfiles.open(1);
  EXPECT_THAT(opened, ElementsAre(DiskChoice{temp / "xp", "(search)", {}}, DiskChoice{temp / "xp", "Ben", {}}));
}

TEST_F(StartWindowTest, FurtherDrivesAreAddedAndTakenAway) {
  MakeDisk("xp", {"Ann"});
  window.Look({temp / "xp", "", {{'D', temp.Folder("d")}}});
  EXPECT_EQ(window.cmbLetter.text, "E:");
  window.txtDrive.type((temp / "none").string());
  window.cmdAddDrive.click();
  EXPECT_THAT(window.lblFault.caption.Get(), HasSubstr("Drive E: needs a folder"));
  dialogs.folderAnswers = {WinPath(Wherever("xp"))};
  window.cmdChooseDrive.click();
  EXPECT_THAT(window.lblDrives.caption.Get(),
              EndsWith(": D: " + (temp / "d").string() + ", E: " + (temp / "xp").string()));
  window.cmbLetter.pick("D:");
  EXPECT_EQ(window.txtDrive.text, (temp / "d").string());
  window.cmdRemoveDrive.click();
  window.cmbLetter.pick("Y:");
  window.txtDrive.type((temp / "d").string());
  window.cmdOpen.click();
  EXPECT_THAT(opened, ElementsAre(DiskChoice{temp / "xp", "Ann", {{'E', temp / "xp"}, {'Y', temp / "d"}}}))
      << "a typed drive counts without a press of Add";
}

TEST_F(StartWindowTest, TheLastDisksAreListedWithProfileFolderAndTime) {
  SetVariable("TZ", "UTC");
  MakeDisk("xp", {"Ann", "Ben"});
  RememberDisk(temp / "state", {{temp / "gone", "Eve", {}}, 0});
  RememberDisk(temp / "state", {{temp / "xp", "Ben", {{'D', temp / "xp"}}}, 1'700'000'000});
  const auto start = Make();
  EXPECT_THAT(start->lstDisks.items.Get(), ElementsAre("Ben — " + (temp / "xp").string() + " — 2023-11-14 22:13",
                                                       "Eve — " + (temp / "gone").string() + " (not there now)"));
  const auto controls = start->Controls();
  const auto focused = std::find_if(controls.begin(), controls.end(), [](const Control* control) {
    return control->visible && !dynamic_cast<const Label*>(control);
  });
  EXPECT_EQ(*focused, &start->lstDisks) << "Enter presses a button that has the focus";
  start->cmdOpen.click();
  EXPECT_THAT(opened, ElementsAre(DiskChoice{temp / "xp", "Ben", {{'D', temp / "xp"}}})) << "Enter opens the last one";
  start->lstDisks.pick(1);
  EXPECT_EQ(start->lblFault.caption, "There is no such folder.");
  start->txtFolder.type((temp / "xp").string());
  EXPECT_EQ(start->lstDisks.selected, std::nullopt);
  EXPECT_FALSE(window.lstDisks.visible) << "there was none when it was made";
}

TEST_F(StartWindowTest, AStateFolderThatCannotBeWrittenIsSaid) {
  temp.File("file");
  EXPECT_FALSE(window.lblState.visible);
  EXPECT_THAT(Make("file/state")->lblState.caption.Get(),
              HasSubstr((temp / "file").string() + " cannot be written: Not a directory."));
}

TEST_F(StartWindowTest, WithoutADisplayTheDiskIsDescribed) {
  MakeDisk("xp", {"Ann"});
  const std::string text = TextWithoutDisplay({temp / "xp", "", {}});
  EXPECT_THAT(text, StartsWith("The profiles on " + (temp / "xp").string() + ":\n  Ann — cannot be read: "));
  EXPECT_THAT(text, HasSubstr("ssh -X"));
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
  window.onOpen = [this](const DiskChoice& choice) {
    OfflineOptions options;
    options.folder = choice.folder;
    options.profile = choice.profile;
    options.stateFolder = temp / "state";
    const OfflinePlatform platform(options, dialogs);
    opened.push_back(choice);
  };
  window.Look({.folder = sample.driveC, .profile = {}, .drives = {}});
  window.Show();
  dialogs.messageAnswers = {MessageAnswer::No, MessageAnswer::Yes};
  window.cmdOpen.click();
  EXPECT_TRUE(opened.empty() && window.visible);
  EXPECT_THAT(window.lblFault.caption.Get(), HasSubstr("NTUSER.DAT, offset 0x"));
  window.cmdOpen.click();
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

TEST_F(StartWindowTest, PrivateDataIsShownAndRemovedAfterOneQuestion) {
  window.cmdPrivateData.click();
  EXPECT_EQ(dialogs.messages.back().text, "Quillbox keeps no copies of registries and no log on this computer.");
  temp.File("state/quillbox.log", "a line\n");
  for (const MessageAnswer answer : {MessageAnswer::No, MessageAnswer::Yes}) {
    dialogs.messageAnswers = {answer};
    window.cmdPrivateData.click();
    EXPECT_EQ(std::filesystem::exists(temp / "state/quillbox.log"), answer == MessageAnswer::No);
  }
  EXPECT_EQ(dialogs.messages.back().text, "Removed: the log.");
}

}  // namespace
}  // namespace quillbox
