// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/settings_editor.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "core/identity_catalogue.h"
#include "settings/number_text.h"
#include "settings/setting_path.h"
#include "settings/settings_tabs.h"

namespace quillbox {
namespace {

constexpr std::int32_t kMinusOne = -1;

std::optional<std::string> ShowNumber(const Shown& shown, std::int32_t number) {
  switch (shown.as) {
    case ShownAs::Choice: {
      const auto found = std::find_if(shown.choices.begin(), shown.choices.end(),
                                      [&](const Choice& choice) { return choice.number == number; });
      return found == shown.choices.end() ? std::nullopt : std::optional(std::string(found->text));
    }
    case ShownAs::DigitsOrOff:
      return number < 0 ? kOff : std::to_string(number);
    case ShownAs::Minutes:
      return MinutesText(number);
    default:
      return std::to_string(number);
  }
}

std::optional<std::int32_t> NumberWritten(const Setting& setting, const std::string& text) {
  const auto& choices = setting.written.choices.empty() ? setting.shown.choices : setting.written.choices;
  const auto found = std::find_if(choices.begin(), choices.end(), [&](const Choice& choice) {
    return choice.text == text || choice.text == kAnyOther;
  });
  return found == choices.end() ? std::nullopt : std::optional(found->number);
}

}  // namespace

std::vector<std::string> ItemsOf(const Setting& setting) {
  std::vector<std::string> items(setting.shown.items.begin(), setting.shown.items.end());
  if (!items.empty()) return items;
  for (const Choice& choice : setting.shown.choices) items.emplace_back(choice.text);
  return items;
}

std::string SettingsEditor::Load(const Setting& setting, const std::string& userId, Occasion occasion) {
  if (setting.key == SettingKey::None) return std::string(setting.missing.shown);
  const RegistryPath path = PathOf(setting.key, userId);
  const Presence presence = Probe(path, setting.value);
  RegValue value;
  if (!setting.missing.isStored) {
    if (presence == Presence::NoKey) return std::string(setting.exceptions.withoutKey);
    if (presence == Presence::Missing) return std::string(setting.missing.shown);
    value = store_.RegistryGetKeyValue(path, setting.value);
  } else {
    value = store_.RegistryGetKeyValue(path, setting.value);
    if (value.IsEmpty() && presence != Presence::Present) {
      const bool makes = presence == Presence::Missing && occasion == Occasion::Opening;
      value = setting.IsText() ? RegValue("") : RegValue(makes ? setting.missing.stored : 0);
      if (makes) Store(setting, userId, value);
    }
  }
  const std::optional<std::string> text = Show(setting, value);
  if (!text) {
    log_.Write(FullName(path) + ": the value \"" + std::string(setting.value) +
               "\" is shown as an empty text because none is known for its data");
  }
  return text.value_or("");
}

/// Opens the key with full access, as a write does.
SettingsEditor::Presence SettingsEditor::Probe(const RegistryPath& path, std::string_view name) {
  if (store_.OpenKey(path).status != Status::Success) return Presence::NoKey;
  return store_.ProbeValue(path, name) == probe::kMissing ? Presence::Missing : Presence::Present;
}

std::optional<std::string> SettingsEditor::Show(const Setting& setting, const RegValue& value) const {
  if (!setting.IsText()) {
    const auto number = value.AsNumber();
    return number ? ShowNumber(setting.shown, *number) : std::nullopt;
  }
  if (value.IsEmpty() || value.Data()) return std::nullopt;
  const std::string text = value.AsText();
  return text.empty() && setting.shown.as == ShownAs::TextOrNoneSelected ? "None Selected" : text;
}

SettingsEditor::Outcome SettingsEditor::Write(const Setting& setting, const std::string& userId,
                                              const std::string& text) {
  switch (setting.written.as) {
    case WrittenAs::Nothing:
      break;
    case WrittenAs::Choice:
      if (const auto number = NumberWritten(setting, text)) {
        Store(setting, userId, *number);
        return {.isWritten = true};
      }
      break;
    case WrittenAs::Number:
      return WriteNumber(userId, setting, text);
    case WrittenAs::Text:
      Store(setting, userId, text);
      return {.isWritten = true};
  }
  return {};
}

SettingsEditor::Outcome SettingsEditor::WriteNumber(const std::string& userId, const Setting& setting,
                                                    const std::string& text) {
  const NumberEntry& entry = setting.written.entry;
  const auto refused = [&] { return Outcome{.message = std::string(entry.expected)}; };
  const std::optional<double> entered = NumberFromText(text);
  if (!entered) return refused();
  if (entry.minusOneIsOff && *entered == kMinusOne) {
    Store(setting, userId, kMinusOne);
    return {.isWritten = true, .shown = kOff};
  }
  if (entry.highest != 0 && !(*entered >= entry.lowest && *entered <= entry.highest)) {
    Store(setting, userId, entry.replacement);
    return {.isWritten = true, .shown = std::to_string(entry.replacement), .message = std::string(entry.expected)};
  }
  const std::optional<std::int32_t> number = WholeNumber(*entered * entry.unit);
  if (!number) return refused();
  Store(setting, userId, *number);
  return {.isWritten = true, .shown = ShowNumber(setting.shown, *number)};
}

void SettingsEditor::Store(const Setting& setting, const std::string& userId, const RegValue& value) {
  const RegistryPath path = PathOf(setting.key, userId);
  const std::string_view otherName = setting.exceptions.writtenName;
  const std::string_view name = otherName.empty() ? setting.value : otherName;
  const ValueType type = setting.IsText() ? ValueType::Sz : ValueType::Dword;
  if (path.root == RegistryRoot::LocalMachine) {
    store_.SetKeyValue2(path.subkey, name, value, type);
  } else {
    store_.SetKeyValue(path.subkey, name, value, type);
  }
}

void SettingsEditor::RestoreBrowserLogo() {
  for (const EmptiedValue& value : BrowserLogoValues()) {
    store_.SetKeyValue(PathOf(value.key, "").subkey, value.value, "", ValueType::Sz);
  }
}

bool SettingsEditor::IsSetUp(const std::string& userId) {
  const RegistryPath path = PathOf(SettingKey::Settings, userId);
  if (store_.OpenKey(path).status != Status::Success) return false;
  const RegValue storeRoot = store_.RegistryGetKeyValue(path, "Store Root");
  return storeRoot != RegValue(kEmptyIdentityMarker);
}

std::string SettingsEditor::Username(const std::string& userId) {
  const RegValue name = store_.RegistryGetKeyValue(CurrentUser(IdentityKey(userId)), "Username");
  return name.Data() ? std::string() : name.AsText();
}

}  // namespace quillbox
