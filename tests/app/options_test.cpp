#include "app/options.h"

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace quillbox {
namespace {

TEST(Options, SayWhichDiskToOpen) {
  const Options options = ParseOptions({"/mnt/xp", "--profile", "Ann Miller", "--drive", "d=/mnt/data"});
  EXPECT_EQ(options.end, OptionsEnd::Run);
  EXPECT_EQ(options.disk, (DiskChoice{"/mnt/xp", "Ann Miller", {{'D', "/mnt/data"}}}));
  EXPECT_EQ(ParseOptions({"--choose", "--help"}).end, OptionsEnd::Help);
}

TEST(Options, WrongOnesAreToldApart) {
  for (const auto& arguments : std::vector<std::vector<std::string>>{{"--profil", "x"},
                                                                     {"--profile"},
                                                                     {"--drive", "C=/x"},
                                                                     {"--drive", "DD=/x"},
                                                                     {"--drive", "D="},
                                                                     {"a", "b"}}) {
    const Options options = ParseOptions(arguments);
    EXPECT_EQ(options.end, OptionsEnd::Wrong) << arguments.front();
    EXPECT_FALSE(options.fault.empty());
  }
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
