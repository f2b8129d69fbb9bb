// SPDX-License-Identifier: GPL-3.0-or-later
// The tabs "General" and "Read".
#include <cstdint>
#include <string_view>

#include "settings/settings_tabs.h"

namespace quillbox {
namespace {

using enum SettingKey;

constexpr std::int32_t kMillisecondsPerMinute = 60000;

constexpr Choice kDialDuringPollNumbers[] = {
    {"Connect even when working offline", 0},
    {"Connect only when not working online", 1},
    {"Do Not Connect", 2},
};
constexpr Shown kDialDuringPoll{ShownAs::Choice, kDialDuringPollNumbers};

constexpr Shown kMinutes{ShownAs::Minutes};
constexpr Written kWritesMinutes{
    WrittenAs::Number,
    {},
    {.expected = "Please enter a number of minutes between -35791 and 35791. Use -1 to turn off checking for mail.",
     .unit = kMillisecondsPerMinute,
     .minusOneIsOff = true},
};
constexpr ChangeButton kChangePollForMail{
    "cmdChangePollForMail", "Change",
    "To change the time that Outlook Express checks for mail,  enter the number of minutes then press the Change "
    "button. Use  -1 to turn off checking for mail."};

constexpr Exceptions kOffWithoutKey{.withoutKey = "Off"};
constexpr Exceptions kChangesPollForMail{.button = kChangePollForMail, .note = {"lblUse", "Use   -1  to disable"}};

constexpr Setting kGeneral[] = {
    {"Launch Inbox", "When starting, go directly to my 'Inbox' folder.", "cmbLaunchInbox", Settings, "Launch Inbox",
     kOnOff, "Off", kWritesOnOff},
    {"New group notification", "Notify me if there are any new newsgroups.", "cmbNewgroupnotification", News,
     "New group notification", kOnOff, "Off", kWritesOnOff},
    {"Expand Unread", "Automatically display folders with unread messages.", "cmbExpandUnread", Settings,
     "Expand Unread", kOnOff, "Off", kWritesOnOff},
    {"Messenger Auto logon", "Automatically log onto MSN Messenger.", "cmbMessengerAutologon", Rules,
     "Messenger Auto logon", kOnOff, "Off", kWritesOnOff, kOffWithoutKey},
    {"PlaySoundOnNewMail", "Play sound when new messages arrive.", "cmbPlaySoundOnNewMail", Mail, "PlaySoundOnNewMail",
     kOnOff, "Off", kWritesOnOff},
    {"Check Mail on Startup", "Send and receive messages at startup.", "cmbCheckMailonStartup", Mail,
     "Check Mail on Startup", kOnOff, "Off", kWritesOnOff},
    {"Poll For Mail      (Minutes)", "Check for new messages every X minutes.", "txtPollForMail", Mail, "Poll For Mail",
     kMinutes, "0", kWritesMinutes, kChangesPollForMail},
    {"Dial During Poll", "If my computer is not connected at this time:", "cmbDialDuringPoll", Settings,
     "Dial During Poll", kDialDuringPoll, "Disabled", kWritesChoice},
};

constexpr std::string_view kEnterPreviewSeconds = "Please enter a value between 0 and 480.";
/// The tooltip names what Outlook Express offers; any number is stored.
constexpr std::string_view kNoPreviewSeconds =
    "Please enter a number of seconds between -2147483648 and 2147483647. Use -1 to turn this off.";
constexpr std::string_view kEnterHeaders = "Please enter a value between 50 and 1000. Use -1 to disable.";

constexpr Shown kDigitsOrOff{ShownAs::DigitsOrOff};
constexpr Written kWritesPreviewSeconds{WrittenAs::Number, {}, {.expected = kNoPreviewSeconds, .minusOneIsOff = true}};
constexpr Written kWritesHeaders{
    WrittenAs::Number,
    {},
    {.expected = kEnterHeaders, .minusOneIsOff = true, .lowest = 50, .highest = 1000, .replacement = 50}};

constexpr Choice kColoursNumbers[] = {
    {"Default", 0}, {"Black", 1}, {"Maroon", 2},    {"Green", 3},  {"Olive", 4},  {"Navy", 5},
    {"Purple", 6},  {"Teal", 7},  {"Gray", 8},      {"Silver", 9}, {"Red", 10},   {"Lime", 11},
    {"Yellow", 12}, {"Blue", 13}, {"Fuchasia", 14}, {"Aqua", 15},  {"White", 16},
};
constexpr Shown kColours{ShownAs::Choice, kColoursNumbers};

constexpr Exceptions kChangesPreviewSeconds{.boxTooltip = kEnterPreviewSeconds,
                                            .button = {"cmdMarkPreviewAsRead", "Change", kEnterPreviewSeconds}};
constexpr Exceptions kChangesHeaders{.boxTooltip = kEnterHeaders,
                                     .button = {"cmdDownloadatatime", "Change", kEnterHeaders}};
constexpr Exceptions kWritesOtherCase{.writtenName = "Read In Plain Text only"};

constexpr Setting kRead[] = {
    {"MarkPreviewAsRead", "Mark message read after displaying X second(s)", "txtMarkPreviewAsRead", Mail,
     "MarkPreviewAsRead", kDigitsOrOff, "", kWritesPreviewSeconds, kChangesPreviewSeconds},
    {"Auto Expand Threads", "Automatically expand grouped messages", "cmbAutoExpandThreads", News,
     "Auto Expand Threads", kOnOff, "Disabled", kWritesOnOff},
    {"Auto Fill Preview", "Automatically download message when viewing in the Preview Pane", "cmbAutoFillPreview", News,
     "Auto Fill Preview", kOnOff, "Disabled", kWritesOnOff},
    {"Read In Plain Text Only", "Read all messages in plain text", "cmbReadInPlainTextOnly", Settings,
     "Read In Plain Text Only", kOnOff, "Disabled", kWritesOnOff, kWritesOtherCase},
    {"Message List Tips", "Show ToolTips in the message list for clipped items", "cmbMessageListTips", Settings,
     "Message List Tips", kOnOff, "Disabled", kWritesOnOff},
    {"Download at a time", "Get X headers at a time", "txtDownloadatatime", News, "Download at a time", kDigitsOrOff,
     "Disabled", kWritesHeaders, kChangesHeaders},
    {"Mark Read on Exit", "Mark all messages as read when exiting a newsgroup", "cmbMarkReadonExit", News,
     "Mark Read on Exit", kOnOff, "Disabled", kWritesOnOff},
    {"Watched Message Color", "Highlight watched messages:", "cmbWatchedMessageColor", Settings,
     "Watched Message Color", kColours, "Disabled", kWritesChoice},
};

}  // namespace

constexpr SettingsTab kGeneralTab{"General", kGeneral};
constexpr SettingsTab kReadTab{"Read", kRead};

}  // namespace quillbox
