// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/settings_tabs.h"

namespace quillbox {
namespace {

constexpr const SettingsTab* kTabs[] = {
    &kGeneralTab,    &kReadTab,     &kReceiptsTab, &kSendTab,       &kComposeTab,
    &kSignaturesTab, &kSpellingTab, &kSecurityTab, &kConnectionTab, &kMaintenanceTab,
};

}  // namespace

std::span<const SettingsTab* const> SettingsTabs() {
  return kTabs;
}

}  // namespace quillbox
