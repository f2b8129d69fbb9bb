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
    WriteHive(
        folder / "WINDOWS/system32/config/system",
        {{"ControlSet002\\Control\\Nls\\CodePage", "ACP", 1, "1250"},
         {"ControlSet002\\Control\\Session Manager\\Environment", "TEMP", 2, "%SystemRoot%\\TEMP"},
         {"ControlSet002\\Control\\Session Manager\\Environment", "ComSpec", 2, "%SystemRoot%\\system32\\CMD.EXE"},
         {"Select", "Current", 4, "\2"}});
    for (const char* nobody : {"All Users", "Default User", "LocalService"}) {
      temp.File(std::string("c/Documents and Settings/") + nobody + "/NTUSER.DAT");
    }
  }
};

}  // namespace quillbox
