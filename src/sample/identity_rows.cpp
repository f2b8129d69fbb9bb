// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/identity_rows.h"

#include "sample/user_rows.h"

namespace quillbox {
namespace {

constexpr ValueRow kList[] = {
    Dword("", "Identity Ordinal", 4),
    Dword("", "Migrated5", 1),
    Dword("", "Identity Login", 0x00098053),
    Sz("", "Last Username", "Main Identity"),
    Sz("", "Last User ID", "<default>"),
    Sz("", "Default User ID", "<default>"),
    Sz("", "Start As", "<default>"),
    Dword("", "Changing", 0),
    Sz("", "IncomingID", ""),
    Sz("", "OutgoingID", ""),
};

constexpr std::string_view kQuiet = "Dont Show Dialogs";
constexpr std::string_view kSignatures = "signatures";

constexpr ValueRow kHomeSettings[] = {
    Dword("", "Running", 0),
    Dword("", "StoreMigratedV5", 1),
    Dword("", "Settings Upgraded", 7),
    Dword("", "ConvertedToDBX", 1),
    Dword("", "VerStamp", 3),
    Dword("", "Compact Check Count", 42),
    Dword("", "Launch Inbox", 1),
    Dword("", "Expand Unread", 1),
    Dword("", "Watched Message Color", 10),
    Dword("", "Dial During Poll", 2),
    Dword("", "Show Source Edit Color", 1),
    Dword("", "Read In Plain Text Only", 0),
    Dword("", "RequestMDN", 0),
    Dword("", "SendMDN", 4),
    Dword("", "SendReceiptToList", 1),
    Dword("", "Reply To Messages In Original Format", 1),
    Dword("", "Use AutoComplete", 1),
    Dword("", "Signature Flags", 3),
    Dword("", "SpellCheckOnSend", 1),
    Dword("", "SpellDontIgnoreProtect", 0),
    Dword("", "SpellIgnoreNumbers", 1),
    Dword("", "SpellIgnoreUpper", 1),
    Dword("", "SpellIgnoreURLs", 1),
    Dword("", "Email Security Zone", 4),
    Dword("", "Dont Encrypt For Self", 0),
    Dword("", "Revocation checking", 1),
    Dword("", "Opaque Signing", 0),
    Dword("", "Auto Add Senders Cert To WAB", 1),
    Dword("", "SwitchConnectionPrompt", 1),
    Dword("", "Hangup After Spool", 0),
    Dword("", "Background Compaction", 1),
    Dword("", "ExpungeFolders", 0),
    Sz("", "WindowTitle", "Outlook Express at home"),
    Binary("", "BrowserCoords", "2C0000002C0000000100000000000000", 28),
    Binary("", "Tree Width", "C8000000"),
    Binary("", "Saved Toolbar Settings", "12000000", 60),
    Dword("Mail", "Accounts Checked", 1),
    Dword("Mail", "Welcome Message", 0),
    Dword("Mail", "PlaySoundOnNewMail", 1),
    Dword("Mail", "Check Mail on Startup", 1),
    Dword("Mail", "Poll For Mail", 1800000),
    Dword("Mail", "MarkPreviewAsRead", 5),
    Dword("Mail", "SaveInSentItems", 1),
    Dword("Mail", "Send Mail Immediately", 1),
    Dword("Mail", "Auto Add Replies To WAB", 1),
    Dword("Mail", "Include Reply Msg", 1),
    Dword("Mail", "Attach VCard", 0),
    Dword("Mail", "Compose Use Stationery", 1),
    Sz("Mail", "VCard Display Name", ""),
    Sz("Mail", "Wide Stationery Name", "C:\\Program Files\\Common Files\\Microsoft Shared\\Stationery\\Ivy.htm"),
    Dword("Mail", "Include Certificate", 1),
    Dword("Mail", "Digitally Sign Messages", 0),
    Dword("Mail", "Encrypt Messages", 0),
    Dword("Mail", "Encryption Warning Bits", 0),
    Dword("Mail", "Warn on Mapi Send", 1),
    Dword("Mail", "Safe Attachments", 1),
    Dword("Mail", "Delete Wastebasket On Exit", 0),
    Dword("Mail", "Automatically Inline Images", 1),
    Dword("Mail", "Automatic Slide Show Delay", 5),
    Dword("Mail", "Log POP3 (0/1)", 1),
    Dword("Mail", "Log IMAP4 (0/1)", 0),
    Dword("Mail", "Log HTTPMail (0/1)", 0),
    Sz("Mail", "Log File (POP3)", "Pop3.log"),
    Binary("Mail\\ColumnInfo", "Inbox", "01000000", 72),
    Dword("News", "New group notification", 1),
    Dword("News", "Auto Expand Threads", 1),
    Dword("News", "Auto Fill Preview", 1),
    Dword("News", "Download at a time", 300),
    Dword("News", "Mark All Read", 0),
    Dword("News", "Attach VCard", 0),
    Dword("News", "Compose Use Stationery", 0),
    Dword("News", "Cache Read Messages", 0),
    Dword("News", "Cache Delete Message Days", 5),
    Dword("News", "Cache Compact Percent", 20),
    Dword("News", "Log", 0),
    Binary("News\\comp.lang.c++", "Subscribed", "01000000", 8),
    Sz("Trident\\Main", "Move System Caret", "yes"),
    Sz("Trident\\Main", "Display Inline Images", "yes"),
    Dword("Trident\\Settings", "Anchor Color", 0x00FF0000),
    Binary("Trident\\International\\1252", "IEFontSize", "02000000"),
    Sz("Trident\\International\\1252", "IEPropFontName", "Arial"),
    Sz("Trident\\International\\1252", "IEFixedFontName", "Courier New"),
    Dword(kQuiet, "Delete Folder", 1),
    Dword(kQuiet, "Ask For Compact", 1),
    Dword(kQuiet, "Saved in Drafts", 6),
    Dword(kQuiet, "Empty Subject Warning", 6),
    Dword(kQuiet, "Message Watched", 1),
    Sz(kSignatures, "Default Signature", "00000000"),
    Sz("signatures\\00000000", "name", "Home"),
    Dword("signatures\\00000000", "type", 1),
    Sz("signatures\\00000000", "text", "Best wishes\r\nAnn"),
    Sz("signatures\\00000000", "file", ""),
    Sz("signatures\\00000001", "name", "Choir"),
    Dword("signatures\\00000001", "type", 1),
    Sz("signatures\\00000001", "text", "Ann Miller, alto\r\n\"Sing \\ and be merry\""),
    Sz("signatures\\00000001", "file", ""),
    Sz("signatures\\00000002", "name", "Business card"),
    Dword("signatures\\00000002", "type", 2),
    Sz("signatures\\00000002", "text", ""),
    Sz("signatures\\00000002", "file", "<documents>\\card.htm"),
};

constexpr ValueRow kOfficeSettings[] = {
    Dword("", "Running", 0),
    Dword("", "StoreMigratedV5", 1),
    Dword("", "Settings Upgraded", 7),
    Dword("", "VerStamp", 3),
    Dword("", "Launch Inbox", 0),
    Dword("", "Dial During Poll", 0),
    Dword("", "RequestMDN", 1),
    Dword("", "SendMDN", 2),
    Dword("", "Signature Flags", 1),
    Dword("", "Email Security Zone", 3),
    Dword("Mail", "Poll For Mail", 0xFFFFFFFF),
    Dword("Mail", "MarkPreviewAsRead", 0xFFFFFFFF),
    Dword("Mail", "Encryption Warning Bits", 128),
    Dword("Mail", "Safe Attachments", 0),
    Dword("News", "Download at a time", 0xFFFFFFFF),
    Dword(kQuiet, "Delete Folder", 1),
    Sz(kSignatures, "Default Signature", "00000000"),
    Sz("signatures\\00000000", "name", "Büro"),
    Dword("signatures\\00000000", "type", 1),
    Sz("signatures\\00000000", "text", "Freundliche Grüße\r\nA. Miller"),
    Sz("signatures\\00000000", "file", ""),
};

constexpr SampleIdentity kIdentities[] = {
    {"{2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}", 0x2B7C0E64, "Main Identity", StorePlace::Home, kHomeSettings, nullptr},
    {"{8F41D3C2-5B0A-4E76-A9D8-13C7E2046FB5}", 0x8F41D3C2, "Büro", StorePlace::DriveD, kOfficeSettings,
     OfficeAccountRows},
    {"{C65A0B97-2E18-4D03-B7F4-90AC61D85E3C}", 0xC65A0B97, "Guest", StorePlace::None, {}, nullptr},
};

}  // namespace

std::span<const SampleIdentity> SampleIdentities() {
  return kIdentities;
}

std::span<const ValueRow> IdentityListRows() {
  return kList;
}

}  // namespace quillbox
