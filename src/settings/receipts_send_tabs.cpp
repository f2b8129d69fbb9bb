// SPDX-License-Identifier: GPL-3.0-or-later
// The tabs "Reciepts" (the caption is spelt this way) and "Send".
#include <string_view>

#include "settings/settings_tabs.h"

namespace quillbox {
namespace {

using enum SettingKey;

constexpr std::string_view kAlwaysSend = "Always send a read receipt";

constexpr Choice kSendReceiptNumbers[] = {
    {kAlwaysSend, 1},
    {"Never send a read receipt", 2},
    {"Notify me for each read receipt", 4},
};
constexpr Shown kSendReceipt{ShownAs::Choice, kSendReceiptNumbers};
constexpr Choice kToListNumbers[] = {{"Yes, send.", 0}, {"No, Do not send.", 1}};
constexpr Shown kToList{ShownAs::Choice, kToListNumbers};

constexpr std::string_view kEnabling[] = {kAlwaysSend};
constexpr Exceptions kEnablesToList{.governs = {"cmbSendReceiptToList", kEnabling}};

constexpr Setting kReceipts[] = {
    {"RequestMDN", "Request a read receipt for all sent messages.", "cmbRequestMDN", Settings, "RequestMDN", kOnOff,
     "Disabled", kWritesOnOff},
    {"SendMDN", "Returning Read receipts", "cmbSendMDN", Settings, "SendMDN", kSendReceipt, "Disabled", kWritesChoice,
     kEnablesToList},
    {"SendReceiptToList",
     "Unless it is sent to a mailing list and my name is not on the To: or Cc: lines of the message.",
     "cmbSendReceiptToList", Settings, "SendReceiptToList", kToList, "Disabled", kWritesChoice},
};

constexpr Setting kSend[] = {
    {"Reply To Messages In Original Format", "Reply to messages using the format in which they were sent",
     "cmbReplyToMessagesInOriginalFormat", Settings, "Reply To Messages In Original Format", kOnOff, "Disabled",
     kWritesOnOff},
    {"Use AutoComplete", "Automatically complete e=mail address when composing", "cmbUseAutoComplete", Settings,
     "Use AutoComplete", kOnOff, "Disabled", kWritesOnOff},
    {"SaveInSentItems", "Save copy of sent items in 'Sent Items' folder", "cmbSaveInSentitems", Mail, "SaveInSentItems",
     kOnOff, "Disabled", kWritesOnOff},
    {"Send Mail Immediately", "Send messages immediately", "cmbSendMailImmediately", Mail, "Send Mail Immediately",
     kOnOff, "Disabled", kWritesOnOff},
    {"Auto Add Replies To WAB", "Automatically put people I replly to in my Address Book", "cmbAutoAddRepliesToWAB",
     Mail, "Auto Add Replies To WAB", kOnOff, "Disabled", kWritesOnOff},
    {"Include Reply Msg", "Include message in reply", "cmbIncludeReplyMsg", Mail, "Include Reply Msg", kOnOff,
     "Disabled", kWritesOnOff},
};

}  // namespace

constexpr SettingsTab kReceiptsTab{"Reciepts", kReceipts};
constexpr SettingsTab kSendTab{"Send", kSend};

}  // namespace quillbox
