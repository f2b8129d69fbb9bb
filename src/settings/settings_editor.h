// SPDX-License-Identifier: GPL-3.0-or-later
// Reads and writes any setting by its row: all settings share this loader and this writer. It needs no window; messages
// for the user are returned.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/reg_value.h"
#include "core/registry_store.h"
#include "platform/platform.h"
#include "settings/setting.h"
#include "text/registry_path.h"

namespace quillbox {

class SettingsEditor {
 public:
  SettingsEditor(Platform& platform, RegistryStore& store) : log_(platform.GetLog()), store_(store) {}

  /// Why a setting is read: only the opening of a window makes missing values, where the row says so.
  enum class Occasion { Opening, Shown };
  /// The text that the setting's control shows for the identity `userId`. A stored value that has no text gives an
  /// empty text and a line in the log.
  std::string Load(const Setting& setting, const std::string& userId, Occasion occasion);

  struct Outcome {
    bool isWritten = false;  ///< a value was handed to the registry, which may have refused it (see the log)
    std::optional<std::string> shown = {};    ///< the text that the control has to show now
    std::optional<std::string> message = {};  ///< for the user
  };
  /// Writes what `text` means for the setting. The key must exist; the value is made when it is missing.
  Outcome Write(const Setting& setting, const std::string& userId, const std::string& text);

  /// Sets every value that makes up the browser's own toolbar logo to the empty text.
  void RestoreBrowserLogo();

  /// False for an identity that was never used: it has no settings, or its message store is the empty identity's.
  bool IsSetUp(const std::string& userId);
  std::string Username(const std::string& userId);

 private:
  enum class Presence { NoKey, Missing, Present };
  Presence Probe(const RegistryPath& path, std::string_view name);
  std::optional<std::string> Show(const Setting& setting, const RegValue& value) const;
  void Store(const Setting& setting, const std::string& userId, const RegValue& value);
  Outcome WriteNumber(const std::string& userId, const Setting& setting, const std::string& text);

  Log& log_;
  RegistryStore& store_;
};

/// The items of a setting's combo box, in the list's order.
std::vector<std::string> ItemsOf(const Setting& setting);

}  // namespace quillbox
