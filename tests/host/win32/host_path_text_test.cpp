// SPDX-License-Identifier: GPL-3.0-or-later
#include <windows.h>

#include "host/host_names.h"
#include "host/host_paths.h"
#include "host/path_table.h"

namespace quillbox {
namespace {

TEST(HostPathText, IsThatOfThisHost) {
  CheckPaths({{"\\", true, {}},
              {"/", true, {}, "\\"},
              {"E:\\", true, {"E"}},
              {"e:", true, {"E"}, "E:\\"},
              {"e:/Users\\.\\Ann/", true, {"E", "Users", "Ann"}, "E:\\Users\\Ann"},
              {"\\\\?\\e:\\x", true, {"E", "x"}, "E:\\x"},
              {"\\\\server\\share", true, {"UNC", "server", "share"}},
              {"//server/share/x", true, {"UNC", "server", "share", "x"}, "\\\\server\\share\\x"},
              {"\\\\?\\UNC\\server\\share\\x", true, {"UNC", "server", "share", "x"}, "\\\\server\\share\\x"},
              {"\\\\?\\Volume{12}\\x", true, {"?", "Volume{12}", "x"}},
              {"\\\\.\\PhysicalDrive1", true, {".", "PhysicalDrive1"}},
              {"\\\\.\\e:", true, {".", "e:"}},
              {"..\\Ann", false, {"..", "Ann"}},
              {"U:ncle", true, {"U", "ncle"}, "U:\\ncle"},
              {"\xC3\xA4/\xED\xA0\x80", false, {"\xC3\xA4", "\xED\xA0\x80"}, "\xC3\xA4\\\xED\xA0\x80"},
              {"", false, {}}});
  EXPECT_TRUE(IsSameHostName("\xC3\xA4", "\xC3\x84"));
  EXPECT_TRUE(IsDiskDevice(HostPath("\\\\.\\PhysicalDrive1")) && IsDiskDevice(HostPath("\\\\.\\e:")));
  EXPECT_FALSE(IsDiskDevice(HostPath("\\\\.\\pipe\\PhysicalDrive1")) || IsDiskDevice(HostPath("e:")));
  for (const char* name : {"", ".", "..", "a\\b", "a/b", "a:b"}) EXPECT_TRUE(LeavesItsFolder(name)) << name;
}

TEST(HostPathText, WithoutADriveIsSeenFromTheCurrentFolder) {
  wchar_t before[MAX_PATH] = {};
  GetCurrentDirectoryW(MAX_PATH, before);
  ASSERT_TRUE(SetCurrentDirectoryW(L"C:\\windows\\system32"));
  EXPECT_EQ(HostPath("\\x").Text(), "C:\\x");
  EXPECT_EQ(Absolute(HostPath("..\\x")).Text(), "C:\\windows\\x");
  SetCurrentDirectoryW(before);
}

TEST(HostPathText, IsInTheFormWithoutALimitWhereItIsLong) {
  const std::string name(130, 'n');
  EXPECT_EQ(NativePath(HostPath("E:\\a")).native(), L"E:\\a");
  EXPECT_TRUE(NativePath(HostPath("E:\\" + name + "\\" + name)).native().starts_with(L"\\\\?\\E:\\nn"));
  EXPECT_TRUE(NativePath(HostPath("\\\\s\\" + name + "\\" + name)).native().starts_with(L"\\\\?\\UNC\\s\\nn"));
}

}  // namespace
}  // namespace quillbox
