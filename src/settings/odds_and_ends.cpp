// SPDX-License-Identifier: GPL-3.0-or-later
// The settings of the window "Odds and Ends", which no option dialog offers: first those of one identity, below them
// those of the user and the machine.
#include <span>
#include <string_view>

#include "settings/settings_tabs.h"

namespace quillbox {
namespace {

using enum SettingKey;

constexpr Section kSections[] = {{}, {}};
constexpr Exceptions kGlobal{.section = 1};

constexpr Choice kEnabledByOneNumbers[] = {{"Disabled", 0}, {"Enabled", 1}};
constexpr Shown kEnabledByOne{ShownAs::Choice, kEnabledByOneNumbers};
constexpr Choice kEnabledByTwoNumbers[] = {{"Disabled", 0}, {"Enabled", 2}};
constexpr Shown kEnabledByTwo{ShownAs::Choice, kEnabledByTwoNumbers};
constexpr Choice kOnByZeroNumbers[] = {{"On", 0}, {"Off", 1}};
constexpr Shown kOnByZero{ShownAs::Choice, kOnByZeroNumbers};
constexpr Choice kImagesNumbers[] = {{"Disabled", 0}, {"Top to Bottom", 1}, {"Slide Show", 2}};
constexpr Shown kImages{ShownAs::Choice, kImagesNumbers};
constexpr std::string_view kImagesShown[] = {"Top to Bottom", "Slide Show"};

constexpr Exceptions kGovernsDelay{
    .governs = {
        .control = "txtAutomaticSlideShowDelay", .enabledBy = kImagesShown, .whenDisabled = "0", .whenEnabled = "6"}};
constexpr Exceptions kChangesDelay{.button = {"cmdChmgDelay", "Change Delay"}};
constexpr Exceptions kChangesMailTitle{.label = "lblOETitleBar", .button = {"cmdChngOETitle", "Change"}};
constexpr Exceptions kChangesWebTitle{.label = "lblIETitleBar", .button = {"cmdChngIETitle", "Change"}, .section = 1};
constexpr Shown kNothing{ShownAs::Choice};
constexpr Written kWritesSeconds{
    WrittenAs::Number, {}, {.expected = "Please enter a number of seconds between -2147483648 and 2147483647."}};

constexpr Setting kRows[] = {
    {"NoSplash", "", "cmbNoSplash", Settings, "NoSplash", kOnByZero, Missing::Stores(0), kWritesChoice},
    {"Show Source Edit Color", "", "cmbShowSourceEditColor", Settings, "Show Source Edit Color", kOnOff,
     Missing::Stores(1), kWritesOnOff},
    {"BlockExeAttachments (global setting)",
     "Undocumented. Disables check box for Tools | Options | Security tab | Do not allow attachments to be saved or "
     "opens that could potientially be a virus.",
     "cmbBlockExeAttachments", Machine, "BlockExeAttachments", kOnOff, Missing::Stores(0), kWritesOnOff, kGlobal},
    {"Disable Hotmail (global setting)", "Undocumented - Disable Hotmail accounts", "cmbDisableHotmail", Machine,
     "Disable Hotmail", kEnabledByTwo, Missing::Stores(2), kWritesChoice, kGlobal},
    {"Outlook Express Title Bar Text (for current Identity)", "", "OETitle", Settings, "WindowTitle", kText,
     Missing::Stores(0), kWritesText, kChangesMailTitle},
    {"Internet Explorer Title Bar Text (global setting)", "", "IETitle", WebMain, "Window Title", kText,
     Missing::Stores(0), kWritesText, kChangesWebTitle},
    {"Hide Messenger (global setting)", "", "cmbHideMessenger", Machine, "Hide Messenger", kOnOff, Missing::Stores(0),
     kWritesOnOff, kGlobal},
    {"No modify accts (global setting)", "Undocumneted - Does not allow for Accounts (mail and news) to be changed.",
     "cmbNomodifyaccts", Machine, "No modify accts", kOnOff, Missing::Stores(0), kWritesOnOff, kGlobal},
    {"Automatically Inline Images", "", "cmbAutomaticallyInlineImages", Mail, "Automatically Inline Images", kImages,
     Missing::Stores(0), kWritesChoice, kGovernsDelay},
    {"Automatic Slide Show Delay", "", "txtAutomaticSlideShowDelay", Mail, "Automatic Slide Show Delay", kDigits,
     Missing::Stores(0), kWritesSeconds, kChangesDelay},
    {"HTTP Mail Enabled (global setting)", "Undocumented - Allows Outlook Express to be used with an HTTP mail server.",
     "cmbDisableHTTP", Machine, "HTTP Mail Enabled", kEnabledByOne, Missing::Stores(1), kWritesChoice, kGlobal},
    {"Moderator", "", "cmbModerator", None, "", kNothing, "Disabled", kWritesNothing},
};

constexpr EmptiedValue kLogo[] = {{WebToolbar, "BrandBitmap"}, {WebToolbar, "SmBrandBitmap"}};

}  // namespace

constexpr SettingsTab kOddsAndEnds{"Odds and Ends", kRows, kSections};

std::span<const EmptiedValue> BrowserLogoValues() {
  return kLogo;
}

}  // namespace quillbox
