// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/user_rows.h"

namespace quillbox {
namespace {

constexpr std::string_view kFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr std::string_view kUserFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
constexpr std::string_view kBook = "Software\\Microsoft\\WAB\\WAB4";
constexpr std::string_view kBookFile = "Software\\Microsoft\\WAB\\WAB4\\Wab File Name";
constexpr std::string_view kBrowser = "Software\\Microsoft\\Internet Explorer\\Main";

constexpr ValueRow kUser[] = {
    ExpandSz("Environment", "TEMP", "%USERPROFILE%\\Local Settings\\Temp"),
    ExpandSz("Environment", "TMP", "%USERPROFILE%\\Local Settings\\Temp"),
    Sz("Control Panel\\International", "Locale", "00000409"),
    Sz("Control Panel\\International", "sCountry", "United States"),
    Sz(kFolders, "AppData", "C:\\Documents and Settings\\<profile>\\Application Data"),
    Sz(kFolders, "Local AppData", "C:\\Documents and Settings\\<profile>\\Local Settings\\Application Data"),
    Sz(kFolders, "Local Settings", "C:\\Documents and Settings\\<profile>\\Local Settings"),
    Sz(kFolders, "Cache", "C:\\Documents and Settings\\<profile>\\Local Settings\\Temporary Internet Files"),
    Sz(kFolders, "Desktop", "C:\\Documents and Settings\\<profile>\\Desktop"),
    Sz(kFolders, "Favorites", "C:\\Documents and Settings\\<profile>\\Favorites"),
    Sz(kFolders, "Personal", "C:\\Documents and Settings\\<profile>\\My Documents"),
    Sz(kFolders, "Start Menu", "C:\\Documents and Settings\\<profile>\\Start Menu"),
    ExpandSz(kUserFolders, "AppData", "%USERPROFILE%\\Application Data"),
    ExpandSz(kUserFolders, "Local AppData", "%USERPROFILE%\\Local Settings\\Application Data"),
    ExpandSz(kUserFolders, "Local Settings", "%USERPROFILE%\\Local Settings"),
    ExpandSz(kUserFolders, "Cache", "%USERPROFILE%\\Local Settings\\Temporary Internet Files"),
    ExpandSz(kUserFolders, "Desktop", "%USERPROFILE%\\Desktop"),
    ExpandSz(kUserFolders, "Favorites", "%USERPROFILE%\\Favorites"),
    ExpandSz(kUserFolders, "Personal", "%USERPROFILE%\\My Documents"),
    ExpandSz(kUserFolders, "Start Menu", "%USERPROFILE%\\Start Menu"),
    Dword(kBook, "OlkContactRefresh", 0),
    Dword(kBook, "OlkFolderRefresh", 0),
    Dword(kBook, "FirstRun", 1),
    Sz(kBookFile, "",
       "C:\\Documents and Settings\\<profile>\\Application Data\\Microsoft\\Address Book\\<profile>.wab"),
    Sz(kBrowser, "Start Page", "http://www.example.com/"),
    Sz(kBrowser, "Window Title", "Internet Explorer"),
    Binary("Software\\Microsoft\\Internet Explorer\\Toolbar", "Theater", "0C0000004C0000007400000018000000"),
};

// The start of a protected password: version and the provider that protected it; the rest is arbitrary.
constexpr std::string_view kSecret = "01000000D08C9DDF0115D1118C7A00C04FC297EB";

constexpr std::string_view kMail1 = "Accounts\\00000001";
constexpr std::string_view kMail2 = "Accounts\\00000002";
constexpr std::string_view kNews = "Accounts\\00000003";
constexpr std::string_view kDirectory = "Accounts\\00000004";

constexpr ValueRow kHomeAccounts[] = {
    Sz("", "Default Mail Account", "00000001"),
    Sz("", "Default News Account", "00000003"),
    Sz("", "Default LDAP Account", "00000004"),
    Dword("", "Account Name", 5),
    Dword("", "Server ID", 1),
    Sz(kMail1, "Account Name", "mail.example.com"),
    Dword(kMail1, "Connection Type", 3),
    Sz(kMail1, "POP3 Server", "pop.example.com"),
    Sz(kMail1, "POP3 User Name", "ann.miller"),
    Binary(kMail1, "POP3 Password2", kSecret, 142),
    Dword(kMail1, "POP3 Use Sicily", 0),
    Dword(kMail1, "POP3 Prompt for Password", 0),
    Dword(kMail1, "POP3 Skip Account", 0),
    Dword(kMail1, "POP3 Timeout", 60),
    Dword(kMail1, "Leave Mail On Server", 0x00050000),
    Sz(kMail1, "SMTP Server", "smtp.example.com"),
    Sz(kMail1, "SMTP Display Name", "Ann Miller"),
    Sz(kMail1, "SMTP Email Address", "ann.miller@example.com"),
    Sz(kMail1, "SMTP Organization Name", ""),
    Dword(kMail1, "SMTP Use Sicily", 0),
    Dword(kMail1, "SMTP Timeout", 60),
    Sz(kMail2, "Account Name", "Choir (IMAP)"),
    Dword(kMail2, "Connection Type", 3),
    Sz(kMail2, "IMAP Server", "imap.example.org"),
    Sz(kMail2, "IMAP User Name", "choir-ann"),
    Binary(kMail2, "IMAP Password2", kSecret, 134),
    Dword(kMail2, "IMAP Port", 993),
    Dword(kMail2, "IMAP Secure Connection", 1),
    Dword(kMail2, "IMAP Timeout", 60),
    Sz(kMail2, "IMAP Root Folder", ""),
    Sz(kMail2, "SMTP Server", "smtp.example.org"),
    Sz(kMail2, "SMTP Display Name", "Ann Miller (alto)"),
    Sz(kMail2, "SMTP Email Address", "ann@choir.example.org"),
    Dword(kMail2, "SMTP Port", 25),
    Sz(kNews, "Account Name", "news.example.net"),
    Dword(kNews, "Connection Type", 3),
    Sz(kNews, "NNTP Server", "news.example.net"),
    Sz(kNews, "NNTP Display Name", "Ann Miller"),
    Sz(kNews, "NNTP Email Address", "ann.miller@example.com"),
    Dword(kNews, "NNTP Port", 119),
    Dword(kNews, "NNTP Use Sicily", 0),
    Dword(kNews, "NNTP Prompt for Password", 0),
    Dword(kNews, "NNTP Timeout", 60),
    Sz(kDirectory, "Account Name", "Town directory"),
    Dword(kDirectory, "LDAP Server ID", 1),
    Sz(kDirectory, "LDAP Server", "ldap.example.net"),
    Sz(kDirectory, "LDAP URL", "http://directory.example.net/"),
    Sz(kDirectory, "LDAP Search Base", "o=Example,c=US"),
    Dword(kDirectory, "LDAP Search Return", 100),
    Dword(kDirectory, "LDAP Timeout", 60),
    Dword(kDirectory, "LDAP Authentication", 0),
    Dword(kDirectory, "LDAP Simple Search", 0),
};

constexpr ValueRow kOfficeAccounts[] = {
    Sz("", "Default Mail Account", "00000001"),
    Dword("", "Account Name", 2),
    Dword("", "Server ID", 1),
    Sz(kMail1, "Account Name", "Büro Zürich"),
    Dword(kMail1, "Connection Type", 0),
    Sz(kMail1, "POP3 Server", "pop.office.example"),
    Sz(kMail1, "POP3 User Name", "miller"),
    Binary(kMail1, "POP3 Password2", kSecret, 150),
    Dword(kMail1, "POP3 Prompt for Password", 0),
    Sz(kMail1, "SMTP Server", "smtp.office.example"),
    Sz(kMail1, "SMTP Display Name", "A. Miller, Büro"),
    Sz(kMail1, "SMTP Email Address", "miller@office.example"),
    Dword(kMail1, "SMTP Use Sicily", 2),
};

}  // namespace

std::span<const ValueRow> UserRows() {
  return kUser;
}

std::span<const ValueRow> HomeAccountRows() {
  return kHomeAccounts;
}

std::span<const ValueRow> OfficeAccountRows() {
  return kOfficeAccounts;
}

}  // namespace quillbox
