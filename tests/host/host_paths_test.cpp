// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_paths.h"

#include "host/host_folder.h"
#include "host/log_file.h"
#include "host/state_folder.h"
#include "host/system_facts.h"
#include "host/volume.h"
#include "support/matchers.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

TEST(HostPaths, AreFoundAsFarAsTheyAreThere) {
  TempFolder temp;
  const HostPath file(temp.File("a/file"));
  const HostPath folder = file.Parent();
  EXPECT_EQ(RealPathOf(folder / "../a/file").path, RealPathOf(file).path);
  EXPECT_EQ(RealPathOf(folder / "missing").fault, std::errc::no_such_file_or_directory);
  EXPECT_EQ(RealPathAsFarAsThere(folder / "missing/too").path, RealPathOf(folder).path / "missing/too");
  EXPECT_TRUE(IsSameEntry(file, folder / "../a/file") && !IsSameEntry(file, folder));
  EXPECT_TRUE(Exists(file) && !IsFolder(file) && IsFolder(folder) && IsFolder(HostPath::Root()));
  EXPECT_EQ(InfoOf(folder / "missing").fault, std::errc::no_such_file_or_directory);
  EXPECT_EQ(RealPathOf(HostPath::Root()).path, HostPath::Root());
  EXPECT_EQ(LabelOfVolume(folder), "");
}

TEST(HostPaths, OfTheSystemAreThere) {
  EXPECT_TRUE(IsFolder(ProgramFolder()) && IsFolder(TemporaryFolder()) && HomeFolder().IsAbsolute());
  TempFolder temp;
  const HostPath first = MakeNewFolder(HostPath(temp.Path()), "made-");
  EXPECT_TRUE(IsFolder(first) && HostFolder::Open(first).CanMakeFiles());
  EXPECT_NE(MakeNewFolder(HostPath(temp.Path()), "made-"), first);
  EXPECT_THAT(Names(temp.Path()), Each(MatchesRegex("made-......")));
}

TEST(StateFolder, IsMadeWithItsParentsOrNamesWhatIsInTheWay) {
  EXPECT_TRUE(IsSameHostName(StateFolder().Name(), "quillbox") || StateFolder().Name() == "Quillbox");
  TempFolder temp;
  const HostPath folder = HostPath(temp.Path()) / "a/b";
  EXPECT_EQ(StateFolderFault(folder), std::nullopt);
  AppendToFile(folder / "log", "one\n");
  AppendToFile(folder / "log", "two\n");
  EXPECT_THAT(ReadStateFile(folder / "log"), ElementsAre("one", "two"));
  EXPECT_EQ(StateFolderFault(folder / "log/c"), (folder / "log").Text() + " cannot be written: Not a directory");
}

TEST(SystemFacts, HaveTheTimeAndRandomBytes) {
  EXPECT_GT(Now().seconds, 1'700'000'000);
  std::array<std::uint8_t, 16> first = {};
  std::array<std::uint8_t, 16> second = {};
  FillRandom(first);
  FillRandom(second);
  EXPECT_NE(first, second);
}

}  // namespace
}  // namespace quillbox
