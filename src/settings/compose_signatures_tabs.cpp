// SPDX-License-Identifier: GPL-3.0-or-later
// The tabs "Compose", with a column for mail and one for news, and "Signatures".
#include "settings/settings_tabs.h"

namespace quillbox {
namespace {

using enum SettingKey;

constexpr Shown kTextOrNone{ShownAs::TextOrNoneSelected};

constexpr Section kMailAndNews[] = {{{"lblMail", "Mail"}, 0}, {{"lblNews", "News"}, 1}};
constexpr Exceptions kForNews{.section = 1};

constexpr Setting kCompose[] = {
    {"Attach VCard", "", "cmbAttachVCardMail", Mail, "Attach VCard", kOnOff, "Disabled", kWritesOnOff},
    {"Compose Use Stationery", "", "cmbComposeUseStationeryMail", Mail, "Compose Use Stationery", kOnOff, "Disabled",
     kWritesOnOff},
    {"VCard Display Name", "", "txtVCardDisplayNameMail", Mail, "VCard Display Name", kTextOrNone, "Disabled",
     kWritesNothing},
    {"Stationery Name", "", "txtWideStationeryNameMail", Mail, "Wide Stationery Name", kTextOrNone, "Disabled",
     kWritesNothing},
    {"Attach VCard", "", "cmbAttachVCardNews", News, "Attach VCard", kOnOff, "Disabled", kWritesOnOff, kForNews},
    {"Compose Use Stationery", "", "cmbComposeUseStationeryNews", News, "Compose Use Stationery", kOnOff, "Disabled",
     kWritesOnOff, kForNews},
    {"VCard Display Name", "", "txtVCardDisplayNameNews", News, "VCard Display Name", kTextOrNone, "Disabled",
     kWritesNothing, kForNews},
    {"Stationery Name", "", "txtWideStationeryNameNews", News, "Wide Stationery Name", kTextOrNone, "Disabled",
     kWritesNothing, kForNews},
};

constexpr Choice kSignatureFlagsNumbers[] = {
    {"Do not add signatures", 0},
    {"Do not add signatures to replies and forwards", 1},
    {"Add signatures to all outgoing messages", 3},
};
constexpr Shown kSignatureFlags{ShownAs::Choice, kSignatureFlagsNumbers};

constexpr Setting kSignatures[] = {
    {"Signature Flags", "Signature Settings", "cmbSignatureFlags", Settings, "Signature Flags", kSignatureFlags,
     "Disabled", kWritesChoice},
};

}  // namespace

constexpr SettingsTab kComposeTab{"Compose", kCompose, kMailAndNews};
constexpr SettingsTab kSignaturesTab{"Signatures", kSignatures};

}  // namespace quillbox
