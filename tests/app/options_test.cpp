#include "app/options.h"

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace quillbox {
namespace {

TEST(Options, SayWhichDiskToOpen) {
  const auto options =
      std::get<Options>(ParseOptions({"/mnt/xp", "--profile", "Ann Miller", "--drive", "d=/mnt/data"}));
  EXPECT_EQ(options.end, OptionsEnd::Run);
  EXPECT_EQ(options.disk, (DiskChoice{"/mnt/xp", "Ann Miller", {{'D', "/mnt/data"}}}));
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
  for (const auto& [given, fault] : rows) EXPECT_EQ(std::get<CommandFault>(ParseOptions(given)).reason, fault);
}

TEST(Options, TheLastDiskIsRemembered) {
  const TempFolder state;
  EXPECT_EQ(LoadLastDisk(state.Path()), DiskChoice());
  const DiskChoice disk{"/mnt/x = y", "Büro", {{'D', "/mnt/d"}, {'E', "/mnt/e"}}};
  SaveLastDisk(state.Path(), disk);
  EXPECT_EQ(LoadLastDisk(state.Path()), disk);
}

}  // namespace
}  // namespace quillbox
