// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/machine_rows.h"

namespace quillbox {
namespace {

constexpr std::string_view kWindowsNt = "Microsoft\\Windows NT\\CurrentVersion";
constexpr std::string_view kWindows = "Microsoft\\Windows\\CurrentVersion";
constexpr std::string_view kProfiles = "Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
constexpr std::string_view kSystemProfile = "Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-18";
constexpr std::string_view kProfile =
    "Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-1417001333-682003330-839522115-1003";
constexpr std::string_view kMachineFolders = "Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr std::string_view kMail = "Microsoft\\Outlook Express";
constexpr std::string_view kMailClient = "Clients\\Mail\\Outlook Express";

constexpr ValueRow kSoftware[] = {
    Sz(kWindowsNt, "ProductName", "<product>"),
    Sz(kWindowsNt, "CurrentVersion", "5.1"),
    Sz(kWindowsNt, "CurrentBuildNumber", "2600"),
    Sz(kWindowsNt, "CurrentType", "Uniprocessor Free"),
    Sz(kWindowsNt, "CSDVersion", "Service Pack 2"),
    Sz(kWindowsNt, "SystemRoot", "C:\\WINDOWS"),
    Sz(kWindowsNt, "PathName", "C:\\WINDOWS"),
    Sz(kWindowsNt, "SourcePath", "D:\\I386"),
    Sz(kWindowsNt, "RegisteredOwner", "<profile>"),
    Sz(kWindowsNt, "RegisteredOrganization", ""),
    Dword(kWindowsNt, "InstallDate", 0x41220B40),
    ExpandSz(kProfiles, "ProfilesDirectory", "%SystemDrive%\\Documents and Settings"),
    Sz(kProfiles, "DefaultUserProfile", "Default User"),
    Sz(kProfiles, "AllUsersProfile", "All Users"),
    ExpandSz(kSystemProfile, "ProfileImagePath", "%systemroot%\\system32\\config\\systemprofile"),
    Dword(kSystemProfile, "Flags", 0x0C),
    Dword(kSystemProfile, "State", 0),
    ExpandSz(kProfile, "ProfileImagePath", "%SystemDrive%\\Documents and Settings\\<profile>"),
    Binary(kProfile, "Sid", "010500000000000515000000B5D77454827CA62883970A32EB030000"),
    Dword(kProfile, "Flags", 0),
    Dword(kProfile, "State", 0x100),
    Sz(kProfile, "CentralProfile", ""),
    Sz(kWindows, "ProgramFilesDir", "C:\\Program Files"),
    Sz(kWindows, "CommonFilesDir", "C:\\Program Files\\Common Files"),
    ExpandSz(kWindows, "ProgramFilesPath", "%ProgramFiles%"),
    ExpandSz(kWindows, "DevicePath", "%SystemRoot%\\inf"),
    ExpandSz(kWindows, "MediaPathUnexpanded", "%SystemRoot%\\Media"),
    Sz(kMachineFolders, "Common AppData", "C:\\Documents and Settings\\All Users\\Application Data"),
    Sz(kMachineFolders, "Common Desktop", "C:\\Documents and Settings\\All Users\\Desktop"),
    Sz(kMachineFolders, "Common Documents", "C:\\Documents and Settings\\All Users\\Documents"),
    ExpandSz(kMail, "InstallRoot", "%ProgramFiles%\\Outlook Express"),
    Sz(kMail, "MediaVer", "6,0,2900,2180"),
    Dword(kMail, "VerStamp", 7),
    Dword(kMail, "BlockExeAttachments", 1),
    Dword(kMail, "HTTP Mail Enabled", 1),
    Sz("Microsoft\\Outlook Express\\Inetcomm", "DllPath", "C:\\WINDOWS\\system32\\inetcomm.dll"),
    Sz("Microsoft\\WAB\\DLLPath", "", "C:\\Program Files\\Common Files\\System\\wab32.dll"),
    Sz("Clients\\Mail", "", "Outlook Express"),
    Sz(kMailClient, "", "Outlook Express"),
    ExpandSz(kMailClient, "DLLPath", "%ProgramFiles%\\Outlook Express\\msoe.dll"),
};

constexpr std::string_view kControl = "ControlSet001\\Control";
constexpr std::string_view kCodePage = "ControlSet001\\Control\\Nls\\CodePage";
constexpr std::string_view kEnvironment = "ControlSet001\\Control\\Session Manager\\Environment";

constexpr ValueRow kSystem[] = {
    Dword("Select", "Current", 1),
    Dword("Select", "Default", 1),
    Dword("Select", "Failed", 0),
    Dword("Select", "LastKnownGood", 1),
    Sz(kControl, "CurrentUser", "USERNAME"),
    Sz(kControl, "SystemBootDevice", "multi(0)disk(0)rdisk(0)partition(1)"),
    Sz(kControl, "SystemStartOptions", "NOEXECUTE=OPTIN  FASTDETECT"),
    Sz("ControlSet001\\Control\\ComputerName\\ComputerName", "ComputerName", "HOMEDESK"),
    Sz(kCodePage, "ACP", "<codepage>"),
    Sz(kCodePage, "OEMCP", "850"),
    Sz(kCodePage, "MACCP", "10000"),
    Sz("ControlSet001\\Control\\Nls\\Language", "Default", "0409"),
    Sz("ControlSet001\\Control\\Nls\\Language", "InstallLanguage", "0409"),
    ExpandSz(kEnvironment, "ComSpec", "%SystemRoot%\\system32\\cmd.exe"),
    ExpandSz(kEnvironment, "Path", "%SystemRoot%\\system32;%SystemRoot%;%SystemRoot%\\System32\\Wbem"),
    ExpandSz(kEnvironment, "windir", "%SystemRoot%"),
    ExpandSz(kEnvironment, "TEMP", "%SystemRoot%\\TEMP"),
    ExpandSz(kEnvironment, "TMP", "%SystemRoot%\\TEMP"),
    Sz(kEnvironment, "OS", "Windows_NT"),
    Sz(kEnvironment, "PATHEXT", ".COM;.EXE;.BAT;.CMD;.VBS;.VBE;.JS;.JSE;.WSF;.WSH"),
    Sz(kEnvironment, "PROCESSOR_ARCHITECTURE", "x86"),
    Sz(kEnvironment, "NUMBER_OF_PROCESSORS", "1"),
    {"ControlSet001\\Control\\Session Manager", "BootExecute", RowType::MultiSz, "autocheck autochk *", 0},
};

}  // namespace

std::span<const ValueRow> SoftwareRows() {
  return kSoftware;
}

std::span<const ValueRow> SystemRows() {
  return kSystem;
}

}  // namespace quillbox
