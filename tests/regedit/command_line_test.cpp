#include "regedit/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbox {
namespace {

/// A request in one line: what would be done with which file and key, or the fault.
std::string Told(const RegeditRequest& request) {
  if (request.fault) return "fault";
  const RegeditCommand& command = request.command;
  std::string text = command.silent ? "silent " : "";
  if (command.action == RegeditAction::Merge) {
    text += "merge <" + command.file + ">";
  } else {
    text += command.form == RegFileForm::Regedit4 ? "export8 <" : "export16 <";
    text += command.file + "> <" + FullName(command.key) + ">";
  }
  return command.isHostFile ? text + " host" : text;
}

TEST(RegeditCommandLine, TakesWindowsCommandLinesApart) {
  constexpr std::pair<const char*, const char*> kRows[] = {
      {R"(regedit /s /e:A "WAB.reg"  "HKEY_CURRENT_USER\Software\Microsoft\WAB")",
       R"(silent export8 <WAB.reg> <HKEY_CURRENT_USER\Software\Microsoft\WAB>)"},
      {R"(regedit /s /e:A "B:\My Mail\u.reg" HKEY_CURRENT_USER\Identities\{0-1} x )",
       R"(silent export8 <B:\My Mail\u.reg> <HKEY_CURRENT_USER\Identities\{0-1} x>)"},
      {R"(regedit /s /e:A "All.reg"  "HKEY_CURRENT_USER\Identities\")",
       R"(silent export8 <All.reg> <HKEY_CURRENT_USER\Identities>)"},
      {R"("C:\My Windows\regedit.exe" /S /E a.reg "hkcu\Identities)",
       R"(silent export16 <a.reg> <HKEY_CURRENT_USER\Identities>)"},
      {R"(regedit /s /c "C:\My Mail\All Identities.reg)", R"(silent merge <C:\My Mail\All Identities.reg>)"},
      {R"(regedit /s /c C:\My Mail\a.reg  )", R"(silent merge <C:\My Mail\a.reg>)"},
      {R"(regedit "a.reg")", "merge <a.reg>"},
      {R"(regedit /s /e:A "never closed HKEY_CURRENT_USER\Identities)", "fault"},
      {R"(regedit /s /e:A "a.reg"  "HKEY_NOWHERE\Identities")", "fault"},
      {R"(regedit /s /e:A "a.reg")", "fault"},
      {R"(regedit /s /e:A "a.reg" "HKEY_CURRENT_USER\A" more)", "fault"},
      {R"(regedit /x "a.reg")", "fault"},
      {R"(regedit /s /c ")", "fault"},
      {"regedit", "fault"},
      {"", "fault"},
  };
  for (const auto& [line, told] : kRows) EXPECT_EQ(Told(ParseCommandLine(line)), told) << line;
}

TEST(RegeditCommandLine, TakesHostArgumentsApart) {
  const std::pair<std::vector<std::string>, const char*> rows[] = {
      {{"--disk", "/mnt", "/e:A", "/tmp/a b.reg", R"(HKEY_CURRENT_USER\Identities\)"},
       R"(export8 </tmp/a b.reg> <HKEY_CURRENT_USER\Identities> host)"},
      {{"/s", "x.reg", "--disk", "c"}, "silent merge <x.reg> host"},
      {{"--disk", "c", "/c", R"(D:\x.reg)"}, R"(merge <D:\x.reg>)"},
      {{"--disk", "c", "--command-line", R"(regedit /s /c "a b.reg)"}, "silent merge <a b.reg>"},
      {{"x.reg"}, "fault"},
      {{"--disk"}, "fault"},
      {{"--disk", "c"}, "fault"},
      {{"--disk", "c", "a.reg", "b.reg"}, "fault"},
      {{"--disk", "c", "/e", "a.reg"}, "fault"},
      {{"--disk", "c", "--depth", "3", "a.reg"}, "fault"},
      {{"--disk", "c", "--drive", "D", "a.reg"}, "fault"},
      {{"--disk", "c", "--drive", "Z=/mnt", "a.reg"}, "fault"},
      {{"--disk", "c", "--lock-fd", "7x", "a.reg"}, "fault"},
      {{"--disk", "c", "--command-line", "regedit /x", "a.reg"}, "fault"},
  };
  for (const auto& [arguments, told] : rows) {
    EXPECT_EQ(Told(ParseArguments(arguments)), told) << testing::PrintToString(arguments);
  }
}

TEST(RegeditCommandLine, NamesTheDisk) {
  const RegeditDisk disk = ParseArguments({"--disk", "c", "--drive", "d=/mnt/d", "--drive", "E=e", "--lock-fd", "3",
                                           "--lock-fd", "4", "--directory", "D:\\bk", "a.reg"})
                               .disk;
  EXPECT_EQ(disk.drives, (std::map<char, std::string>{{'D', "/mnt/d"}, {'E', "e"}}));
  EXPECT_EQ(disk.lockFds, (std::vector<int>{3, 4}));
  EXPECT_EQ(disk.directory, WinPath("D:\\bk"));
}

}  // namespace
}  // namespace quillbox
