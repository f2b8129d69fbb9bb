// SPDX-License-Identifier: GPL-3.0-or-later
// The tables of all settings: those of the ten tabs of the settings window, and the odds and ends.
#pragma once

#include <span>
#include <string_view>

#include "settings/setting.h"

namespace quillbox {

extern const SettingsTab kGeneralTab;
extern const SettingsTab kReadTab;
extern const SettingsTab kReceiptsTab;
extern const SettingsTab kSendTab;
extern const SettingsTab kComposeTab;
extern const SettingsTab kSignaturesTab;
extern const SettingsTab kSpellingTab;
extern const SettingsTab kSecurityTab;
extern const SettingsTab kConnectionTab;
extern const SettingsTab kMaintenanceTab;

/// The tabs of the settings window, from the left.
std::span<const SettingsTab* const> SettingsTabs();

extern const SettingsTab kOddsAndEnds;

/// A value that a button sets to the empty text.
struct EmptiedValue {
  SettingKey key;
  std::string_view value;
};
/// What "Restore IE Logo" sets, in this order.
std::span<const EmptiedValue> BrowserLogoValues();

}  // namespace quillbox
