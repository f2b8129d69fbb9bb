#include "core/disk_path.h"

#include "core/identity_catalogue.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

class DiskPathTest : public SamplePlatform {
 protected:
  void SetUp() override { MakeDisk(); }
  /// The path that is used, or why none is.
  std::string Decide(const std::string& text) {
    const DiskPath path(platform->GetDrives(), WinPath(text));
    EXPECT_EQ(path.Stored().Text(), text);
    return path.IsUsable() ? path.Path().Text() : path.Refusal().Sentence();
  }
};

TEST_F(DiskPathTest, OnlyFullPathsOnTheDisksOwnDrivesAreUsed) {
  EXPECT_EQ(Decide("C:\\Mail\\"), "C:\\Mail");
  EXPECT_EQ(Decide("d:\\Mail\\.\\x\\..\\a.wab"), "d:\\Mail\\a.wab");
  EXPECT_EQ(Decide("C:/a/../../../b.wab"), "C:\\b.wab") << "no name holds a way out of its folder";
  const std::pair<const char*, std::vector<std::string>> refused[] = {
      {"that Windows has no such drive", {"Z:\\home\\x", "z:/home", "Z:x", "Z:"}},
      {"drive E: is not attached", {"E:\\x", "e:/x", "E:"}},
      {"it is not a full path", {"", "Mail", "..\\x", "\\home\\x", "/home/x", "C:x", "C:", "%X%\\y", ":\\x"}},
      {"it is on another computer", {"\\\\server\\share", "\\\\?\\Z:\\home", "//./Z:/home", "\\/x"}}};
  for (const auto& [why, paths] : refused) {
    for (const std::string& path : paths)
      EXPECT_EQ(Decide(path), "The path \"" + path + "\" is not used: " + why + ".");
  }
}

TEST_F(DiskPathTest, ARefusalNamesTheValueAndThePathInOneLine) {
  Drives& drives = platform->GetDrives();
  EXPECT_EQ(CheckStoreFolder(drives, "{1\n}", WinPath("Z:\\a\nb")).Refusal().Sentence(),
            "The path \"Z:\\a\u240Ab\", which the disk's registry names in the value \"Store Root\" of "
            "HKEY_CURRENT_USER\\Identities\\{1\u240A}\\Software\\Microsoft\\Outlook Express\\5.0, is not used: that "
            "Windows has no such drive.");
  EXPECT_EQ(CheckAddressBook(drives, WinPath("a.wab")).Refusal().Clause(),
            "the path \"a.wab\", which the disk's registry names in the default value of "
            "HKEY_CURRENT_USER\\Software\\Microsoft\\WAB\\WAB4\\Wab File Name, is not used: it is not a full path");
}

TEST_F(DiskPathTest, AVariableOfTheDiskLeadsNowhereElse) {
  Store().CreateKey(CurrentUser("Environment"));
  Store().SetKeyValue("Environment", "HOST", "Z:\\home", ValueType::Sz);
  platform->EndCommand();
  OpenDisk();
  EXPECT_EQ(Decide(ExpandStoreRoot(platform->GetSystemFacts(), "C:\\%HOST%\\x")),
            "The path \"Z:\\home\\x\" is not used: that Windows has no such drive.");
}

}  // namespace
}  // namespace quillbox
