// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/new_file.h"

#include "host/host_fault.h"
#include "host/host_paths.h"
#include "host/test_host.h"
#include "support/matchers.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

using NewFileTest = InTempFolder;

void Put(HostFolder folder, const std::string& name, std::string_view content) {
  NewFile file(std::move(folder), name, Links::Keep);
  file.Write(content);
  file.Commit();
}

TEST_F(NewFileTest, ReplacesAFileWhole) {
  temp_.File("target", "before");
  NewFile file(path_ / "target");
  file.Write("one ");
  std::array<char, 2> middle = {};
  EXPECT_EQ(file.ReadAt(1, middle), 2u);
  EXPECT_EQ(std::string_view(middle.data(), middle.size()), "ne");
  file.Write("two");
  const HostTime time = {.seconds = 1'000'000'000, .nanoseconds = 123'456'700};
  file.SetTimes(time, time);
  EXPECT_EQ(file.Info().size, 7u);
  EXPECT_EQ(temp_.Read("target"), "before");
  file.Commit();
  EXPECT_EQ(temp_.Read("target"), "one two");
  EXPECT_EQ(InfoOf(path_ / "target").info->modified, time);
  EXPECT_THAT(Names(temp_.Path()), ElementsAre("target"));
}

TEST_F(NewFileTest, LeavesNothingWithoutACommit) {
  temp_.File("target", "before");
  NewFile(path_ / "target").Write("after");
  NewFile(path_ / "new").Write("after");
  EXPECT_THAT(Names(temp_.Path()), ElementsAre("target"));
  EXPECT_EQ(temp_.Read("target"), "before");
}

TEST_F(NewFileTest, IsRefusedWhereNoFileCanBe) {
  temp_.Folder("folder");
  const auto make = [&](const char* name) -> std::error_code {
    try {
      NewFile file(path_ / name);
    } catch (const std::system_error& failure) {
      return failure.code();
    }
    return {};
  };
  EXPECT_EQ(make("folder"), std::errc::is_a_directory);
  EXPECT_EQ(make("missing/file"), std::errc::no_such_file_or_directory);
  const std::error_code tooLong = make(std::string(300, 'n').c_str());
  EXPECT_TRUE(tooLong == std::errc::filename_too_long || tooLong == std::errc::invalid_argument) << ReasonOf(tooLong);
  EXPECT_THAT(Names(temp_.Path()), ElementsAre("folder"));
}

TEST_F(NewFileTest, TakesNamesAsTheyAre) {
  for (const char* name : {"NUL", "com1.txt", "dot.", "blank ", "\xC3\xA4\xF0\x9F\x93\xA7"}) {
    Put(HostFolder::Open(path_), name, name);
    EXPECT_EQ(HostFolder::Open(path_).OpenFile(name).ReadWhole(), name);
    std::vector<ListedEntry> entries;
    ASSERT_TRUE(HostFolder::Open(path_).ListSome(entries));
    EXPECT_EQ(entries.front().name, name);
    EXPECT_EQ(HostFolder::Open(path_).Remove(name), std::error_code());
  }
}

TEST_F(NewFileTest, IsMadeInFoldersHoweverLongTheirPathIs) {
  const std::string name(100, 'n');
  HostPath below;
  HostFolder folder = HostFolder::Open(path_);
  while (path_.Join(below).Text().size() < LongestPath()) {
    ASSERT_EQ(folder.MakeFolder(name), std::error_code());
    folder = folder.OpenFolder(name);
    below = below.Join(name);
  }
  Put(HostFolder::OpenBeneath(path_, below), "deep", "content");
  EXPECT_EQ(folder.OpenFile("deep").ReadWhole(), "content");
  EXPECT_EQ(folder.Remove("deep"), std::error_code());
  folder.Close();
  for (; below.HasName(); below = below.Parent()) {  // what removes the rest may know short paths only
    std::error_code ignored;
    std::filesystem::remove(NativePath(path_.Join(below)), ignored);
  }
}

TEST_F(NewFileTest, ThatNobodyWritesAnyMoreIsRemoved) {
  temp_.File(".quillbox-abc123", "left");
  temp_.File(".quillbox-other", "not one");
  NewFile file(path_ / "target");
  file.Write("content");
  RemoveAbandonedFiles(HostFolder::Open(path_));
  file.Commit();
  EXPECT_THAT(Names(temp_.Path()), ElementsAre(".quillbox-other", "target"));
  EXPECT_EQ(temp_.Read("target"), "content");
}

}  // namespace
}  // namespace quillbox
