// SPDX-License-Identifier: GPL-3.0-or-later
// The tabs "Connection" and "Maintenance".
#include "settings/settings_tabs.h"

namespace quillbox {
namespace {

using enum SettingKey;

constexpr Setting kConnection[] = {
    {"SwitchConnectionPrompt", "Ask before switching dial-up connections", "cmbSwitchConnectionPrompt", Settings,
     "SwitchConnectionPrompt", kOffOn, "Disabled", kWritesOnOff},
    {"Hangup After Spool", "Hang up after sending and receiving", "cmbHangupAfterSpool", Settings, "Hangup After Spool",
     kOffOn, "Disabled", kWritesOnOff},
};

constexpr Exceptions kPopLabel{.label = "lblLogFileSMTP"};
constexpr Exceptions kImapLabel{.label = "lblLogIMAP"};

constexpr Setting kMaintenance[] = {
    {"Delete Wastebasket On Exit", "Empty messages from the 'Deleted Items' folder on exit",
     "cmbDeleteWastebasketOnExit", Mail, "Delete Wastebasket On Exit", kOnOff, "Disabled", kWritesOnOff},
    {"Background Compaction", "Compact messages in background", "cmbBackgroundCompaction", Settings,
     "Background Compaction", kOnOff, "Disabled", kWritesOnOff},
    {"ExpungeFolders", "Purge deleted messages when leaving IMAP folders", "cmbExpungeFolders", Settings,
     "ExpungeFolders", kOnOff, "Disabled", kWritesOnOff},
    {"Cache Read Messages", "Delete read messages in newsgroups", "cmbCacheReadMessages", News, "Cache Read Messages",
     kOnOff, "Disabled", kWritesOnOff},
    {"Cache Delete Message Days", "Delete news messages X days after being downloaded", "txtCacheDeleteMessageDays",
     News, "Cache Delete Message Days", kDigits, "Disabled", kWritesNothing},
    {"Cache Compact Percent", "Compact messages when there is X percent wasted space", "txtCacheCompactPercent", News,
     "Cache Compact Percent", kDigits, "Disabled", kWritesNothing},
    {"Log (news)", "News", "cmbLog", News, "Log", kOnOff, "Disabled", kWritesOnOff},
    {"Log HTTPMail (0/1)", "HTTP", "cmbLogHTTPMail", Mail, "Log HTTPMail (0/1)", kOnOff, "Disabled", kWritesOnOff},
    {"Log IMAP4 (0/1)", "IMAP", "cmbLogIMAP4", Mail, "Log IMAP4 (0/1)", kOnOff, "Disabled", kWritesOnOff},
    {"Log POP3 (0/1)", "Mail", "cmbLogPOP3", Mail, "Log POP3 (0/1)", kOnOff, "Disabled", kWritesOnOff},
    {"Log File (HTTPMAIL)", "", "txtLogFileHTTP", Mail, "Log File (HTTPMAIL)", kText, "No Active File", kWritesNothing},
    {"Log File (POP3)", "", "txtLogFilePOP", Mail, "Log File (POP3)", kText, "No Active File", kWritesNothing,
     kPopLabel},
    {"Log File (IMAP4)", "", "txtLogFileIMAP", Mail, "Log File (IMAP4)", kText, "No Active File", kWritesNothing,
     kImapLabel},
};

}  // namespace

constexpr SettingsTab kConnectionTab{"Connection", kConnection};
constexpr SettingsTab kMaintenanceTab{"Maintenance", kMaintenance};

}  // namespace quillbox
