#include "platform/offline/drive_map.h"

#include <gtest/gtest.h>

#include "platform/offline/windows_names.h"
#include "support/temp_folder.h"
#include "text/unicode.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

TEST(WindowsName, NamesThatWindowsCannotHoldSurviveBothWays) {
  const std::string names[] = {"plain.dbx",        "a:b?c\"<>|*\\d",   "tab\there",
                               "ends with blank ", "ends.with.stop.",  "...",
                               "\xE4\xF6\xFC",     "cut\xE2\x82",      "\xED\xA0\x80",
                               "\xC0\xAF",         "\xF4\x90\x80\x80", "\xE2\x82\xAC\xFF\xF0\x9F\x98\x80",
                               ".hidden"};
  for (const std::string& name : names) {
    const std::string shown = WindowsName(name);
    EXPECT_FALSE(FileNameFault(shown)) << name;
    EXPECT_EQ(HostName(shown), name);
  }
  EXPECT_EQ(WindowsName("a:b"),
            "a\xEF\x80\xBA"
            "b");
  EXPECT_EQ(ToUtf16(WindowsName("x\xFF")), (std::u16string{u'x', 0xDCFF}));
}

TEST(WindowsName, NoNameLeavesItsFolder) {
  const std::string stop = "\xEF\x80\xAE";
  for (const std::string& name : {stop, "." + stop, std::string("\xEF\x80\xAF")}) EXPECT_EQ(HostName(name), name);
}

struct DriveMapTest : testing::Test {
  TempFolder temp;
  std::filesystem::path c = temp.Folder("c");
  std::filesystem::path d = temp.Folder("c/mounted/d");
  DriveMap map{c, {{'D', d}}};

  std::string Below(const std::string& path) {
    const PlaceResult place = map.PlaceOf(WinPath(path));
    return place ? place->Path().lexically_relative(temp.Path()).string() : "(none)";
  }
};

TEST_F(DriveMapTest, NamesMatchWithoutRegardToCaseAndAreKeptAsStored) {
  temp.File("c/Documents and Settings/J\xC3\xBCrgen/Inbox.DBX");
  temp.File("c/both/readme");
  temp.File("c/both/README");
  temp.File("c/odd/a:\xFF");
  EXPECT_EQ(Below("C:\\DOCUMENTS and settings\\J\xC3\x9CRGEN\\inbox.dbx"),
            "c/Documents and Settings/J\xC3\xBCrgen/Inbox.DBX");
  EXPECT_EQ(Below("c:\\both\\README"), "c/both/README") << "the exact name goes first";
  EXPECT_EQ(Below("c:\\both\\readme"), "c/both/readme");
  EXPECT_EQ(Below("C:\\odd\\" + WindowsName("A:\xFF")), "c/odd/a:\xFF");
  EXPECT_EQ(Below("C:\\BOTH\\New Folder\\Both"), "c/both/New Folder/Both") << "what is not there is kept as given";
  EXPECT_EQ(Below("D:\\"), "c/mounted/d");
}

TEST_F(DriveMapTest, PathsOutsideTheDrivesHaveNoPlace) {
  for (const char* path : {"E:\\x", "relative", "C:x", "\\\\server\\share\\x", "C:\\..\\x", "C:\\a\\..\\..\\x", ""}) {
    EXPECT_EQ(Below(path), "(none)") << path;
  }
  EXPECT_EQ(Below(std::string("C:\\a\0b", 6)), "(none)");
}

TEST_F(DriveMapTest, HostPathsAreShownInTheClosestDrive) {
  const auto shown = [this](const std::filesystem::path& host) { return map.WindowsPathOf(host).value().Text(); };
  EXPECT_EQ(shown(c / "a" / "b:c"), "C:\\a\\" + WindowsName("b:c"));
  EXPECT_EQ(shown(d / "a"), "D:\\a");
  EXPECT_EQ(shown(d), "D:\\");
  EXPECT_EQ(shown("/"), "Z:\\");
  EXPECT_EQ(shown("/no/such/place"), "Z:\\no\\such\\place");
  std::filesystem::create_directory_symlink(c, temp / "link");
  EXPECT_EQ(shown(temp / "link/x"), "C:\\x");
  EXPECT_EQ(map.PlaceOf(WinPath(shown(d / "a")))->Path(), d / "a");
}

}  // namespace
}  // namespace quillbox
