// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/windows98_rows.h"

namespace quillbox {
namespace {

constexpr std::string_view kWindows = "Software\\Microsoft\\Windows\\CurrentVersion";
constexpr std::string_view kMachineFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr std::string_view kMail = "Software\\Microsoft\\Outlook Express";
constexpr std::string_view kMailClient = "Software\\Clients\\Mail\\Outlook Express";
constexpr std::string_view kCodePage = "System\\CurrentControlSet\\Control\\Nls\\CodePage";
constexpr std::string_view kComputer = "System\\CurrentControlSet\\Control\\ComputerName\\ComputerName";

constexpr ValueRow kSystem[] = {
    Sz(kWindows, "ProductName", "<product>"),
    Sz(kWindows, "Version", "Windows 98"),
    Sz(kWindows, "VersionNumber", "4.10.1998"),
    Sz(kWindows, "SystemRoot", "C:\\WINDOWS"),
    Sz(kWindows, "RegisteredOwner", "<profile>"),
    Sz(kWindows, "RegisteredOrganization", ""),
    Sz(kWindows, "ProgramFilesDir", "C:\\Program Files"),
    Sz(kWindows, "CommonFilesDir", "C:\\Program Files\\Common Files"),
    Binary(kWindows, "FirstInstallDateTime", "4D928530"),
    Sz(kMachineFolders, "Common Desktop", "C:\\WINDOWS\\All Users\\Desktop"),
    Sz(kMail, "InstallRoot", "C:\\Program Files\\Outlook Express"),
    Sz(kMail, "MediaVer", "5,0,2314,1300"),
    Dword(kMail, "VerStamp", 5),
    Sz("Software\\Microsoft\\Outlook Express\\Inetcomm", "DllPath", "C:\\WINDOWS\\SYSTEM\\INETCOMM.DLL"),
    Sz("Software\\Microsoft\\WAB\\DLLPath", "", "C:\\Program Files\\Common Files\\System\\wab32.dll"),
    Sz("Software\\Clients\\Mail", "", "Outlook Express"),
    Sz(kMailClient, "", "Outlook Express"),
    Sz(kMailClient, "DLLPath", "C:\\PROGRA~1\\OUTLOO~1\\MSOE.DLL"),
    Sz("Software\\CLASSES\\.eml", "", "Microsoft Internet Mail Message"),
    Sz(kCodePage, "ACP", "<codepage>"),
    Sz(kCodePage, "OEMCP", "850"),
    Sz(kCodePage, "MACCP", "10000"),
    Sz(kComputer, "ComputerName", "HOMEDESK"),
    Sz("Network\\Logon", "username", "<profile>"),
    Dword("Network\\Logon", "UserProfiles", 0),
};

constexpr std::string_view kFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr std::string_view kBook = "Software\\Microsoft\\WAB\\WAB4";
constexpr std::string_view kBookFile = "Software\\Microsoft\\WAB\\WAB4\\Wab File Name";
constexpr std::string_view kBrowser = "Software\\Microsoft\\Internet Explorer\\Main";

constexpr ValueRow kUser[] = {
    Sz("Control Panel\\International", "Locale", "00000409"),
    Sz("Control Panel\\Appearance", "Current", "Windows Standard"),
    Sz(kFolders, "AppData", "<home>\\Application Data"),
    Sz(kFolders, "Local AppData", "<home>\\Local Settings\\Application Data"),
    Sz(kFolders, "Cache", "C:\\WINDOWS\\Temporary Internet Files"),
    Sz(kFolders, "Desktop", "<home>\\Desktop"),
    Sz(kFolders, "Favorites", "<home>\\Favorites"),
    Sz(kFolders, "Personal", "<documents>"),
    Sz(kFolders, "Start Menu", "<home>\\Start Menu"),
    Dword(kBook, "OlkContactRefresh", 0),
    Dword(kBook, "OlkFolderRefresh", 0),
    Dword(kBook, "FirstRun", 1),
    Sz(kBookFile, "", "<book>"),
    Sz(kBrowser, "Start Page", "http://www.example.com/"),
    Binary("Software\\Microsoft\\Internet Explorer\\Toolbar", "Theater", "0C0000004C0000007400000018000000"),
};

}  // namespace

std::span<const ValueRow> Windows98SystemRows() {
  return kSystem;
}

std::span<const ValueRow> Windows98UserRows() {
  return kUser;
}

}  // namespace quillbox
