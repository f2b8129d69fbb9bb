// SPDX-License-Identifier: GPL-3.0-or-later
// What only Windows has: files that somebody keeps for himself, drives, attributes.
#include <windows.h>

#include "host/file_attributes.h"
#include "host/host_fault.h"
#include "host/host_handle.h"
#include "host/host_paths.h"
#include "host/new_file.h"
#include "host/test_host.h"
#include "host/volume.h"
#include "host/win32/reparse_point.h"
#include "support/matchers.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

using WindowsTest = InTempFolder;

/// Opened as other programs do.
HostHandle OpenedElsewhere(const std::filesystem::path& file, DWORD share) {
  return HostHandle(reinterpret_cast<HandleNumber>(
      CreateFileW(file.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr)));
}

TEST_F(WindowsTest, FilesThatAnotherProgramKeepsAreInUse) {
  const auto file = temp_.File("file", "before");
  const HostFolder folder = HostFolder::Open(path_);
  const HostHandle other = OpenedElsewhere(file, 0);
  ASSERT_TRUE(other);
  EXPECT_TRUE(folder.InfoOf("file").IsFile());
  const std::error_code reading = CodeOf([&] { folder.OpenFile("file"); });
  EXPECT_EQ(reading, HostFault::InUse);
  EXPECT_EQ(ReasonOf(reading), "another program is using it; close that program and try again");
  EXPECT_EQ(folder.WriteFaultOf("file", Links::Keep), HostFault::InUse);
  EXPECT_EQ(CodeOf([&] { NewFile target(path_ / "file"); }), HostFault::InUse);
  EXPECT_EQ(folder.Remove("file"), HostFault::InUse);
}

TEST_F(WindowsTest, AFileThatIsOpenedMeanwhileIsNotReplaced) {
  const auto file = temp_.File("file", "before");
  {
    NewFile target(path_ / "file");
    target.Write("after");
    const HostHandle other = OpenedElsewhere(file, FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_EQ(CodeOf([&] { target.Commit(); }), HostFault::InUse);
  }
  EXPECT_EQ(temp_.Read("file"), "before");
  EXPECT_THAT(Names(temp_.Path()), ElementsAre("file"));
}

TEST_F(WindowsTest, KeepsAttributesOfAReplacedFileAndLeavesAReadOnlyOne) {
  const auto file = temp_.File("file", "before");
  SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  NewFile(path_ / "file").Commit();
  const HostFolder folder = HostFolder::Open(path_);
  const FileAttributes attributes = AttributeReader(folder).Of("file");
  EXPECT_TRUE(attributes.isHidden && attributes.isSystem);
  EXPECT_FALSE(AttributeReader(folder).Of("missing").isHidden);

  SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
  const std::error_code fault = CodeOf([&] { NewFile target(path_ / "file"); });
  EXPECT_EQ(fault, std::errc::permission_denied);
  EXPECT_EQ(ReasonOf(fault), "Permission denied");
  {  // A copy in the making has the attributes, and can be removed all the same.
    NewFile copy(path_ / "copy");
    copy.TakeAttributesOf(folder.OpenFile("file"));
  }
  EXPECT_THAT(Names(temp_.Path()), ElementsAre("file"));
  NewFile copy(path_ / "copy");
  copy.TakeAttributesOf(folder.OpenFile("file"));
  copy.Commit();
  EXPECT_EQ(GetFileAttributesW((temp_ / "copy").c_str()) & FILE_ATTRIBUTE_READONLY, DWORD{FILE_ATTRIBUTE_READONLY});
  for (const char* name : {"file", "copy"}) SetFileAttributesW((temp_ / name).c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WindowsTest, AFolderThatIsOpenKeepsItsName) {
  temp_.Folder("a/b");
  HostFolder folder = HostFolder::Open(path_ / "a/b");
  EXPECT_EQ(Move(path_ / "a/b", path_ / "a/c"), HostFault::InUse);
  folder.Close();
  EXPECT_EQ(Move(path_ / "a/b", path_ / "a/c"), std::error_code());
}

/// A reparse point by hand: its tag, what comes before the names, and the two names without a zero between.
std::vector<std::uint8_t> Stored(std::uint32_t tag, std::size_t flags, std::u16string_view name) {
  const auto length = static_cast<std::uint8_t>(2 * name.size());
  std::vector<std::uint8_t> bytes = {0, 0, 0, 0, 0, 0, 0, 0, 2, 0, length, 0, 0, 0, 2, 0};
  for (std::size_t at = 0; at < 4; ++at) bytes[at] = static_cast<std::uint8_t>(tag >> (8 * at));
  bytes.resize(bytes.size() + flags);
  for (const char16_t unit : u"?" + std::u16string(name)) {
    bytes.push_back(static_cast<std::uint8_t>(unit));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

TEST_F(WindowsTest, LinksLeadWhereTheyAreWrittenTo) {
  constexpr std::uint32_t kJunction = 0xA000'0003;
  constexpr std::uint32_t kSymbolicLink = 0xA000'000C;
  EXPECT_EQ(TargetOfReparsePoint(Stored(kJunction, 0, u"\\??\\D:\\Mail")), HostPath("D:\\Mail"));
  EXPECT_EQ(TargetOfReparsePoint(Stored(kSymbolicLink, 4, u"\\??\\UNC\\s\\f")), HostPath("\\\\s\\f"));
  EXPECT_EQ(TargetOfReparsePoint(Stored(kSymbolicLink, 4, u"..\\Mail")), HostPath("..\\Mail"));
  EXPECT_EQ(TargetOfReparsePoint(Stored(0x8000'0013, 0, u"D:\\Mail")), std::nullopt);
  std::vector<std::uint8_t> cut = Stored(kJunction, 0, u"D:\\Mail");
  while (!cut.empty()) {
    cut.pop_back();
    EXPECT_EQ(TargetOfReparsePoint(cut), std::nullopt) << cut.size();
  }
}

TEST_F(WindowsTest, TheRootHoldsTheDrives) {
  const HostFolder root = HostFolder::Open(HostPath("\\"));
  std::vector<ListedEntry> entries;
  ASSERT_TRUE(root.ListSome(entries));
  EXPECT_THAT(entries, Contains(testing::Field(&ListedEntry::name, "C")));
  EXPECT_FALSE(root.ListSome(entries));
  EXPECT_TRUE(root.Info().IsFolder() && root.InfoOf("C").IsFolder() && root.InfoOf("UNC").IsFolder());
  EXPECT_EQ(root.InfoOf("C").id, InfoOf(HostPath("c:")).info->id);
  EXPECT_EQ(CodeOf([&] { root.InfoOf("file"); }), std::errc::no_such_file_or_directory);
  EXPECT_TRUE(HostFolder::OpenBeneath(HostPath("\\"), HostPath("C/windows")).Find("system32"));
  EXPECT_TRUE(root.OpenFolder("C").Find("windows"));
  EXPECT_FALSE(root.CanMakeFiles() || root.MayWrite() || root.OpenFolder("UNC").ListSome(entries));
  EXPECT_NE(root.MakeFolder("Q"), std::error_code());
  EXPECT_FALSE(AttributeReader(root).Of("C").isHidden);
}

}  // namespace
}  // namespace quillbox
