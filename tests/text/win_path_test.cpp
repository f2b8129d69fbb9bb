#include "text/win_path.h"

#include <gtest/gtest.h>

#include "text/registry_path.h"

namespace quillbox {
namespace {

TEST(WinPath, ResolvesToAnAbsolutePath) {
  const std::pair<const char*, const char*> cases[] = {
      {"x", "C:\\Data\\x"},
      {"..\\..\\..\\x", "C:\\x"},
      {"\\x\\.\\y\\", "C:\\x\\y"},
      {"D:/a//b/../c", "D:\\a\\c"},
      {"D:x", "D:\\x"},
      {"c:x", "c:\\Data\\x"},
      {"C:\\", "C:\\"},
      {"C:\\a. .\\b \\...\\c", "C:\\a\\b\\c"},
      {"\\\\server\\share\\x", "\\\\server\\share\\x"},
      {"", "C:\\Data"},
  };
  for (const auto& [path, resolved] : cases) {
    EXPECT_EQ(Resolve(WinPath(path), WinPath("C:\\Data\\")).Text(), resolved) << path;
  }
}

TEST(WinPath, TakesPathsApart) {
  EXPECT_EQ(WinPath("C:\\x").Parent().Text(), "C:\\");
  EXPECT_EQ(WinPath("C:\\x\\y").Parent().Text(), "C:\\x");
  EXPECT_TRUE(WinPath("x").Parent().Empty());
  EXPECT_EQ(WinPath("C:x").Name(), "x");
  EXPECT_EQ(WinPath("c:x").Drive(), 'C');
  EXPECT_FALSE(WinPath("C:x").IsAbsolute());
  EXPECT_EQ(WinPath("C:\\").Join("x").Text(), "C:\\x");
  EXPECT_EQ(DirectoryFromFile("  C:\\Data\\book.wab "), "C:\\Data\\");
  EXPECT_EQ(DirectoryFromFile("book.wab"), "");
  EXPECT_EQ(NameFromFullPath("C:\\a\\b.wab"), "b.wab");
  EXPECT_EQ(NameFromFullPath("b.wab"), "");
  EXPECT_EQ(GetFileName("C:\\a.b\\My.File.reg"), "My");
  EXPECT_EQ(GetFileName("File"), "File");
}

TEST(WinPath, FindsNamesThatWindowsCannotHave) {
  for (const char* good : {"Inbox.dbx", "comp.lang.c++.dbx", "CONSOLE", "LPT10", "B\xC3\xBCro", ".x"}) {
    EXPECT_FALSE(FileNameFault(good)) << good;
  }
  const std::string tooLong(256, 'x');
  for (const char* bad : {"", ".", "..", "a\\b", "a/b", "C:x", "a*", "tab\t", "end.", "end ", "con", "Nul.txt",
                          "COM1 .x", "bad\xFF", tooLong.c_str()}) {
    EXPECT_TRUE(FileNameFault(bad)) << bad;
  }
}

TEST(WinPath, MatchesWildcards) {
  EXPECT_TRUE(Wildcard("*.*").Matches("folder"));
  EXPECT_TRUE(Wildcard("comp.*++.d?x").Matches("comp.lang.c++.DBX"));
  EXPECT_TRUE(Wildcard("?").Matches("\xC3\xBC"));
  EXPECT_FALSE(Wildcard("*.dbx").Matches("Inbox.dbx.bak"));
}

TEST(RegistryPath, FullNamesBothWays) {
  const auto path = ParseRegistryPath("hkey_current_user\\\\Identities\\{1}\\");
  ASSERT_TRUE(path);
  EXPECT_EQ(path->subkey, "Identities\\{1}");
  EXPECT_EQ(FullName(path->Child("Software")), "HKEY_CURRENT_USER\\Identities\\{1}\\Software");
  EXPECT_EQ(ParseRegistryPath("HKLM"), (RegistryPath{RegistryRoot::LocalMachine, ""}));
  EXPECT_EQ(FullName({RegistryRoot::Users, ""}), "HKEY_USERS");
  EXPECT_FALSE(ParseRegistryPath("HKEY_CURRENT_USERS\\x"));
  EXPECT_FALSE(ParseRegistryPath("\\HKEY_CURRENT_USER"));
}

}  // namespace
}  // namespace quillbox
