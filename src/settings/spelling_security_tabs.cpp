// SPDX-License-Identifier: GPL-3.0-or-later
// The tabs "Spelling" and "Security".
#include <string_view>

#include "settings/settings_tabs.h"

namespace quillbox {
namespace {

using enum SettingKey;

constexpr Section kSpellingSections[] = {
    {{"lblSettings", "Settings"}, 0},
    {{"lblignore", "When checking spelling, always ignore"}, 1},
};
constexpr Exceptions kIgnored{.section = 1};
constexpr LabelText kSpellingNotes[] = {
    {"lblSpelling", "If there is not an applicable spell check program installed, these settings will not be used."},
};

constexpr Setting kSpelling[] = {
    {"SpellCheckOnSend", "Always check spelling before sending", "cmbSpellCheckOnSend", Settings, "SpellCheckOnSend",
     kOnOff, "Disabled", kWritesOnOff},
    {"SpellCheckOnType", "Not implemented", "cmbSpellCheckOnType", Settings, "SpellCheckOnType", kOnOff, "Disabled",
     kWritesOnOff},
    {"SpellDontAlwaysSuggest", "Suggest replacements for misspelled words", "cmbSpellDontAlwaysSuggest", Settings,
     "SpellDontAlwaysSuggest", kOnOff, "Disabled", kWritesOnOff},
    {"SpellDontIgnoreDBCS", "", "cmbSpellDontIgnoreDBCS", Settings, "SpellDontIgnoreDBCS", kOnOff, "Disabled",
     kWritesOnOff, kIgnored},
    {"SpellDontIgnoreProtect", "The original text in a reply or forward", "cmbSpellDontIgnoreProtect", Settings,
     "SpellDontIgnoreProtect", kOnOff, "Disabled", kWritesOnOff, kIgnored},
    {"SpellIgnoreNumbers", "Words with numbers", "cmbSpellIgnoreNumbers", Settings, "SpellIgnoreNumbers", kOnOff,
     "Disabled", kWritesOnOff, kIgnored},
    {"SpellIgnoreUpper", "Words in UPPERCASE", "cmbSpellIgnoreUpper", Settings, "SpellIgnoreUpper", kOnOff, "Disabled",
     kWritesOnOff, kIgnored},
    {"SpellIgnoreURLs", "Internet Addresses", "cmbSpellIgnoreURLs", Settings, "SpellIgnoreURLs", kOnOff, "Disabled",
     kWritesOnOff, kIgnored},
};

constexpr Section kSecuritySections[] = {
    {{"lblSecurity1", "Virus Protection"}, 0},
    {{}, 0},
    {{"lblAdvanceBtn", "Advanced"}, 1},
};
constexpr Exceptions kVirus{.section = 0};
constexpr Exceptions kSecureMail{.section = 1};
constexpr Exceptions kAdvanced{.section = 2};

constexpr Choice kZonesNumbers[] = {{"Internet Zone", 3}, {"Restricted Sites Zone", 4}};
constexpr Shown kZones{ShownAs::Choice, kZonesNumbers};
constexpr Choice kNoYesNumbers[] = {{"No", 0}, {"Yes", 1}};
constexpr Shown kNoYes{ShownAs::Choice, kNoYesNumbers};
constexpr Choice kRevocationNumbers[] = {{"Only when offline", 1}, {"Never", 0}};
constexpr Shown kRevocation{ShownAs::Choice, kRevocationNumbers};
constexpr Choice kOneForOffline[] = {{"Only when offline", 1}, {kAnyOther, 0}};
constexpr Written kWritesRevocation{WrittenAs::Choice, kOneForOffline};

constexpr Choice kOfOnNumbers[] = {{"Of", 0}, {"On", 1}};
constexpr std::string_view kOffThenOn[] = {"Off", "On"};
constexpr Shown kOfOn{ShownAs::Choice, kOfOnNumbers, kOffThenOn};

constexpr std::string_view kBitsItems[] = {"40", "56", "64", "128", "168"};
constexpr Shown kBits{ShownAs::Digits, {}, kBitsItems};
constexpr Choice kBitsNumbers[] = {{"168", 0}, {"128", 128}, {"64", 64}, {"56", 56}, {"40", 40}, {"0", 0}};

constexpr Written kWritesBits{WrittenAs::Choice, kBitsNumbers};

constexpr Setting kSecurity[] = {
    {"Email Security Zone", "Select the Internet Explorer security zone to use", "cmbEmailSecurityZone", Settings,
     "Email Security Zone", kZones, "Disabled", kWritesChoice, kVirus},
    {"Dont Encrypt For Self", "Always encrypt to myself when sending encrypted mail", "cmbDontEncryptForSelf", Settings,
     "Dont Encrypt For Self", kNoYes, "Disabled", kWritesChoice, kAdvanced},
    {"Include Certificate", "Include my digital ID when sending signed messages", "cmbIncludeCertificate", Mail,
     "Include Certificate", kOffOn, "Disabled", kWritesOnOff, kAdvanced},
    {"Revocation Checking", "Check for revoked Digital IDs", "cmbRevocationChecking", Settings, "Revocation checking",
     kRevocation, "Disabled", kWritesRevocation, kAdvanced},
    {"Digitally Sign Messages", "Digitally sign all outgoing messages", "cmbDigitallySignMessages", Mail,
     "Digitally Sign Messages", kOffOn, "Disabled", kWritesOnOff, kSecureMail},
    {"Encrypt Messages", "Encrypt contents and attachments for all outgoing messages", "cmbEncryptMessages", Mail,
     "Encrypt Messages", kOfOn, "Disabled", kWritesOnOff, kSecureMail},
    {"Encryption Warning Bits", "Warn on encrypting messages with less than this strength:", "cmbEncryptionWarningBits",
     Mail, "Encryption Warning Bits", kBits, "Not Set", kWritesBits, kAdvanced},
    {"Security Label", "", "cmbSecurityLabel", Mail, "Security Label", kOffOn, "Disabled", kWritesOnOff, kSecureMail},
    {"Warn on Mapi Send", "Warn me when other applications try to send mail as me", "cmbWarnonMapiSend", Mail,
     "Warn on Mapi Send", kOffOn, "Disabled", kWritesOnOff, kVirus},
    {"Safe Attachments", "Do not allow attachments to be saved or opened that could potientially be a virus",
     "cmbSafeAttachments", Mail, "Safe Attachments", kOffOn, "Disabled", kWritesOnOff, kVirus},
    {"Opaque Signing", "Encode message before signing (opaque signing)", "cmbopaquesigning", Settings, "Opaque Signing",
     kOffOn, "Disabled", kWritesOnOff, kAdvanced},
    {"Auto add senders cert to WAB", "Add senders' certificates to my address book", "cmbAutoAddSndrCert", Settings,
     "Auto Add Senders Cert To WAB", kOffOn, "Disabled", kWritesOnOff, kAdvanced},
};

}  // namespace

constexpr SettingsTab kSpellingTab{"Spelling", kSpelling, kSpellingSections, kSpellingNotes};
constexpr SettingsTab kSecurityTab{"Security", kSecurity, kSecuritySections};

}  // namespace quillbox
