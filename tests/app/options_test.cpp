// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/options.h"

#include "app/disk_list.h"
#include "app/this_computer.h"
#include "support/matchers.h"
#include "support/temp_folder.h"
#include "text/error.h"

namespace quillbox {
namespace {

TEST(Options, SayWhichDiskToOpen) {
  const auto options =
      std::get<Options>(ParseOptions({"/mnt/xp", "--profile", "Ann Miller", "--drive", "d=/mnt/data"}));
  EXPECT_EQ(options.end, OptionsEnd::Run);
  EXPECT_EQ(options.disk, (DiskChoice{HostPath("/mnt/xp"), "Ann Miller", {{'D', HostPath("/mnt/data")}}}));
  EXPECT_EQ(std::get<Options>(ParseOptions({"--choose", "--help", "--profil"})).end, OptionsEnd::Help);
}

TEST(Options, AWrongCommandLineNamesItsFault) {
  const std::pair<std::vector<std::string>, const char*> rows[] = {
      {{"--profil", "x"}, "there is no option \"--profil\""},
      {{"-x"}, "there is no option \"-x\""},
      {{"--profile"}, "--profile needs a value"},
      {{"--drive", "C=/x"}, "--drive cannot be \"C=/x\": C: is the disk's own folder"},
      {{"--drive", "z=/x"}, "--drive cannot be \"z=/x\": Z: is the root folder of this computer"},
      {{"--drive", "1=/x"}, "--drive cannot be \"1=/x\": a drive is a letter from A to Y other than C"},
      {{"--drive", "DD=/x"}, "--drive needs a letter, \"=\" and a folder (D=FOLDER), not \"DD=/x\""},
      {{"--drive", "D="}, "--drive needs a letter, \"=\" and a folder (D=FOLDER), not \"D=\""},
      {{"a", "b"}, "one folder is drive C:; \"b\" is a second one"},
  };
  const auto here = ParseOptions({"--this-computer"});
  if (IsWindowsHere()) {
    EXPECT_TRUE(std::get<Options>(here).thisComputer);
    EXPECT_EQ(std::get<CommandFault>(ParseOptions({"E:\\", "--this-computer"})).reason,
              "either a folder or this computer can be opened");
  } else {
    EXPECT_EQ(std::get<CommandFault>(here).reason, "this computer does not run Windows");
  }
  for (const auto& [given, fault] : rows) EXPECT_EQ(std::get<CommandFault>(ParseOptions(given)).reason, fault);
}

TEST(DiskList, HasTheDiskOpenedLastOnTop) {
  const TempFolder temp;
  const std::filesystem::path state = temp / "state";
  EXPECT_TRUE(LoadDisks(state).empty());
  const KnownDisk first{
      {HostPath("/mnt/x = y\nfolder=/etc"), "100%25 Büro", {{'D', HostPath("/mnt/d")}, {'E', HostPath("/mnt/e")}}}, 1};
  const KnownDisk second{{HostPath("/mnt/z"), "Ann", {}}, 2};
  RememberDisk(state, first);
  RememberDisk(state, second);
  EXPECT_THAT(LoadDisks(state), ElementsAre(second, first));
  const KnownDisk again{first.disk, 3};
  RememberDisk(state, again);
  EXPECT_THAT(LoadDisks(state), ElementsAre(again, second));
  for (int i = 0; i < 30; ++i) RememberDisk(state, {{HostPath("/mnt/" + std::to_string(i)), "Ann", {}}, 4});
  EXPECT_EQ(LoadDisks(state).size(), 20u);
  temp.File("state/last-disk", "folder=/mnt/xp\nprofile=Ann\n");
  EXPECT_THAT(LoadDisks(state), ElementsAre(KnownDisk{{HostPath("/mnt/xp"), "Ann", {}}, 0})) << "of the first version";
  temp.File("file");
  EXPECT_THROW(RememberDisk(temp / "file/state", first), Error);
}

}  // namespace
}  // namespace quillbox
