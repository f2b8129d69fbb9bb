// A Windows XP disk in a test's folder, small and with hives that can be read.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "offline_fixture.h"
#include "registry/hive.h"
#include "support/temp_folder.h"
#include "text/unicode.h"

namespace quillbox {

/// Makes a hive file, filled by rows of key, value name, type and text.
struct HiveRow {
  const char *key, *name;
  std::uint32_t type;
  const char* text;
};
inline void WriteHive(const std::filesystem::path& file, std::initializer_list<HiveRow> rows) {
  Hive hive = Hive::Create("root", kTestTime);
  for (const HiveRow& row : rows) {
    const HiveKey key = hive.CreatePath(hive.Root(), row.key);
    hive.SetValue(key, row.name, row.type, Utf16Bytes(ToUtf16(row.text) + u'\0'));
  }
  WriteHiveFile(file, hive);
}

struct XpDisk {
  TempFolder temp;
  std::filesystem::path folder = temp.Folder("c");
  std::filesystem::path anna = folder / "Documents and Settings/Anna";

  XpDisk() {
    WriteHive(anna / "ntuser.dat",
              {{"Identities\\{1}", "Username", 1, "Main"},
               {"Identities\\{2}", "Username", 1, "Other"},
               {"Environment", "TEMP", 2, "%USERPROFILE%\\Local Settings\\Temp"},
               {"Environment", "MAIL", 2, "%systemdrive%\\Mail"},
               {"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer", "Logon User Name", 1, "anna"},
               {"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders", "AppData", 2,
                "%USERPROFILE%\\Anwendungsdaten"}});
    WriteHive(folder / "WINDOWS/system32/config/software",
              {{"Microsoft\\Windows\\CurrentVersion", "ProgramFilesDir", 1, "C:\\Programme"}});
    Hive system = Hive::Create("root", kTestTime);
    const HiveKey control = system.CreatePath(system.Root(), "ControlSet002\\Control");
    const HiveKey codePage = system.CreatePath(control, "Nls\\CodePage");
    system.SetValue(codePage, "ACP", 1, Utf16Bytes(u"1250"));
    const HiveKey variables = system.CreatePath(control, "Session Manager\\Environment");
    system.SetValue(variables, "TEMP", 2, Utf16Bytes(u"%SystemRoot%\\TEMP"));
    system.SetValue(variables, "ComSpec", 2, Utf16Bytes(u"%SystemRoot%\\system32\\CMD.EXE"));
    system.SetValue(system.CreatePath(system.Root(), "Select"), "Current", 4, Bytes{2, 0, 0, 0});
    WriteHiveFile(folder / "WINDOWS/system32/config/system", system);
    for (const char* nobody : {"All Users", "Default User", "LocalService"}) {
      temp.File(std::string("c/Documents and Settings/") + nobody + "/NTUSER.DAT");
    }
  }
};

}  // namespace quillbox
