#include "platform/offline/windows_disk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sample_disk.h"

namespace quillbox {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string WhyNot(const std::filesystem::path& folder) {
  return FaultOf([&] { FindWindowsDisk(folder); });
}

std::vector<std::filesystem::path> Near(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> folders;
  for (const WindowsDisk& disk : FindDisksNear(folder)) folders.push_back(disk.folder);
  return folders;
}

TEST(WindowsDisk, FindsThePeopleWhereverWindowsKeptThem) {
  const struct {
    const char *windows, *root;
  } rows[] = {{"winnt", "WinNT/profiles"}, {"Windows", "USERS"}, {"WINXP", "documents AND settings"}};
  for (const auto& row : rows) {
    TempFolder disk;
    disk.File(std::string(row.windows) + "/SYSTEM32/Config/Software");
    if (std::string(row.root).starts_with("WinNT")) std::filesystem::rename(disk / "winnt", disk / "WinNT");
    disk.File(std::string(row.root) + "/zoe/NTUSER.DAT");
    disk.File(std::string(row.root) + "/Anna/ntuser.dat");
    for (const char* other : {"default user", "Public", "NetworkService"}) {
      disk.File(std::string(row.root) + "/" + other + "/NTUSER.DAT");
    }
    disk.Folder(std::string(row.root) + "/no hive");
    const WindowsDisk found = FindWindowsDisk(disk.Path());
    ASSERT_EQ(found.profiles.size(), 2u) << row.root;
    EXPECT_EQ(found.profiles[0].name, "Anna");
    EXPECT_TRUE(std::filesystem::exists(found.profiles[0].hive.Place().Path()));
    EXPECT_EQ(found.profiles[1].winFolder.Text().substr(0, 3), "C:\\");
    EXPECT_EQ(found.profiles[1].winFolder.Name(), "zoe");
    EXPECT_TRUE(EqualIgnoreCase(found.windowsPath.Text(), std::string("C:\\") + row.windows));
    EXPECT_TRUE(std::filesystem::exists(found.softwareHive.value().Place().Path()));
  }
}

TEST(WindowsDisk, SaysWhatIsWrongWithAFolder) {
  TempFolder temp;
  EXPECT_THAT(WhyNot(temp / "none"), HasSubstr("there is no such folder"));
  EXPECT_THAT(WhyNot(temp.File("file")), HasSubstr("it is a file, not a folder"));
  EXPECT_THAT(WhyNot(temp.Folder("empty")), HasSubstr("looked for a folder WINDOWS or WINNT"));
  temp.Folder("nobody/Documents and Settings/Anna");
  EXPECT_THAT(WhyNot(temp / "nobody"), HasSubstr("nobody/Documents and Settings"));
  temp.File("98/WINDOWS/USER.DAT");
  EXPECT_THAT(WhyNot(temp / "98"), HasSubstr("not supported yet"));
  temp.File("98/WINNT/System32/config/software");
  temp.File("98/Documents and Settings/Anna/NTUSER.DAT");
  EXPECT_EQ(WhyNot(temp / "98"), "(done)") << "a newer Windows beside it";
  temp.File("xp/windows/System32/config/software");
  temp.File("xp/Documents and Settings/Anna/NTUSER.DAT");
  for (const char* part : {"xp/windows", "xp/Documents and Settings", "xp/Documents and Settings/Anna"}) {
    EXPECT_THAT(WhyNot(temp / part), HasSubstr("choose the disk itself, " + (temp / "xp").string())) << part;
    EXPECT_THAT(Near(temp / part), ElementsAre(temp / "xp")) << part;
  }
  temp.File("image", std::string("\xEB\x52\x90NTFS    ") + std::string(600, '\0'));
  EXPECT_THAT(WhyNot(temp / "image"), HasSubstr("mount it with \"sudo mount -o ro,loop '" + (temp / "image").string()));
  temp.File("other/Users/Ben/NTUSER.DAT");
  EXPECT_THAT(Near(temp.Path()), ElementsAre(temp / "98", temp / "other", temp / "xp")) << "one level too high";
  EXPECT_THAT(Near(temp / "none"), ElementsAre());
}

TEST(WindowsDisk, OneOfSeveralProfilesHasToBeNamed) {
  TempFolder temp;
  for (const char* name : {"Anna", "Ben"}) temp.File(std::string("Users/") + name + "/NTUSER.DAT");
  const WindowsDisk disk = FindWindowsDisk(temp.Path());
  EXPECT_EQ(ChooseProfile(disk, "BEN").name, "Ben");
  for (const char* name : {"", "Carl"}) {
    EXPECT_THAT(FaultOf([&] { ChooseProfile(disk, name); }), HasSubstr("Anna, Ben"));
  }
}

TEST(WindowsDisk, HivesThatLeadOutOfTheDiskAreRefused) {
  const XpDisk disk;
  std::filesystem::rename(disk.anna / "ntuser.dat", disk.temp / "outside.dat");
  std::filesystem::create_symlink("../../../outside.dat", disk.anna / "ntuser.dat");
  const std::filesystem::path config = disk.folder / "WINDOWS/system32/config";
  std::filesystem::rename(config, disk.temp / "config");
  std::filesystem::create_directory_symlink(disk.temp / "config", config);
  disk.temp.File("people/Eve/NTUSER.DAT");
  std::filesystem::create_directory_symlink(disk.temp / "people/Eve", disk.folder / "Documents and Settings/Eve");
  std::filesystem::create_directory_symlink(disk.temp / "people", disk.folder / "Users");

  const WindowsDisk found = FindWindowsDisk(disk.folder);
  ASSERT_EQ(found.profiles.size(), 1u) << "nobody outside is a person of this disk";
  const IdentityCount count = CountIdentities(found.profiles[0]);
  ASSERT_TRUE(count.error.has_value());
  EXPECT_EQ(Describe(*count.error),
            (disk.anna / "ntuser.dat").string() + ": it leads out of the disk (while opening the hive)");
  EXPECT_EQ(found.windowsPath.Text(), "C:\\WINDOWS");
  EXPECT_THAT(FaultOf([&] { found.softwareHive.value().Place(); }),
              HasSubstr("/config/software: it leads out of the disk"));
}

TEST(WindowsDisk, ProfilesOnAnotherDriveAreFoundThroughALink) {
  TempFolder temp;
  temp.File("c/WINDOWS/system32/config/software");
  temp.File("d/People/Anna/NTUSER.DAT");
  std::filesystem::create_directory_symlink(temp / "d/People", temp / "c/Documents and Settings");
  EXPECT_THAT(WhyNot(temp / "c"),
              HasSubstr((temp / "c/Documents and Settings").string() + ": it leads out of the disk"));
  const WindowsDisk disk = FindWindowsDisk(temp / "c", {{'D', temp / "d"}});
  ASSERT_EQ(disk.profiles.size(), 1u);
  EXPECT_EQ(disk.profiles[0].winFolder.Text(), "C:\\Documents and Settings\\Anna");
  EXPECT_EQ(disk.profiles[0].hive.Place().Path(), temp / "d/People/Anna/NTUSER.DAT");
}

}  // namespace
}  // namespace quillbox
