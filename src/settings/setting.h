// SPDX-License-Identifier: GPL-3.0-or-later
// The description of a setting that the user can edit. All settings are rows of tables, which give the label, the
// control, the registry value, and what is shown and written. What only some settings do is in the row too: neither
// the loader nor the windows know any setting by its name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace quillbox {

/// The key that a setting's value is in; PathOf returns its path.
enum class SettingKey {
  None,       ///< a control without a value
  Settings,   ///< the identity's key "5.0"
  Mail,       ///< "Mail" below it
  News,       ///< "News" below it
  Rules,      ///< "Rules" below it
  Machine,    ///< the machine's Outlook Express key
  WebMain,    ///< the user's Internet Explorer key "Main"
  WebToolbar  ///< "Toolbar" beside it
};

struct Choice {
  std::string_view text;
  std::int32_t number;
};

/// In a table of what is written: any text that no earlier row names.
inline constexpr std::string_view kAnyOther = "*";

enum class ShownAs {
  Choice,             ///< the text of the number's choice; nothing for a number without one
  Digits,             ///< the number in decimal
  DigitsOrOff,        ///< the same, "Off" for a negative one
  Minutes,            ///< a number of milliseconds as decimal minutes, "-1" for a negative one
  Text,               ///< the stored text
  TextOrNoneSelected  ///< the same, "None Selected" for an empty one
};

struct Shown {
  ShownAs as;
  std::span<const Choice> choices = {};
  std::span<const std::string_view> items = {};  ///< of the combo box, if they differ from the texts of `choices`
};

/// How a number is entered in a text box.
struct NumberEntry {
  std::string_view expected;   ///< the message for a text that is not such a number
  std::int32_t unit = 1;       ///< the stored number for an entered 1
  bool minusOneIsOff = false;  ///< -1 is stored as it is and the box then shows "Off"
  std::int32_t lowest = 0;     ///< with `highest`: for other numbers the message is shown and `replacement` is stored
  std::int32_t highest = 0;    ///< 0: any number is accepted
  std::int32_t replacement = 0;
};

enum class WrittenAs { Nothing, Choice, Number, Text };

struct Written {
  WrittenAs as = WrittenAs::Nothing;
  std::span<const Choice> choices = {};  ///< if they differ from the choices shown
  NumberEntry entry = {};
};

/// What a missing value means.
struct Missing {
  constexpr Missing(const char* text) : shown(text) {}
  /// The value is made when the window opens: `number`, or an empty text. When another identity is picked later, a
  /// missing value is shown as 0 or an empty text and is not made.
  static constexpr Missing Stores(std::int32_t number) {
    Missing missing("");
    missing.isStored = true;
    missing.stored = number;
    return missing;
  }

  std::string_view shown;
  bool isStored = false;
  std::int32_t stored = 0;
};

struct LabelText {
  std::string_view name;
  std::string_view caption;
};

struct ChangeButton {
  std::string_view name;
  std::string_view caption;
  std::string_view tooltip = {};
};

/// A combo box that another control of its tab depends on.
struct Governs {
  std::string_view control;
  std::span<const std::string_view> enabledBy;  ///< the texts that enable it; any other text disables it
  std::string_view whenDisabled = {};  ///< shown in it while it is disabled, and written when a pick disabled it
  std::string_view whenEnabled = {};   ///< written to it when a pick has enabled it and it holds 0
};

/// What only some settings have.
struct Exceptions {
  std::string_view label = {};        ///< its name, if it is not "lbl" and the control's
  std::string_view writtenName = {};  ///< the value's name when it is written, if its case differs
  std::string_view withoutKey = {};   ///< shown when the key can't be opened
  std::string_view boxTooltip = {};
  ChangeButton button = {};
  Governs governs = {};
  LabelText note = {};      ///< a label right below the control
  std::size_t section = 0;  ///< of the tab's sections
};

struct Setting {
  std::string_view caption;
  std::string_view tooltip;  ///< of the label
  std::string_view control;  ///< a combo box where the name begins with "cmb", a text box otherwise
  SettingKey key;
  std::string_view value;
  Shown shown;
  Missing missing;
  Written written = {};
  Exceptions exceptions = {};

  constexpr bool IsComboBox() const { return control.starts_with("cmb"); }
  constexpr bool IsText() const { return shown.as == ShownAs::Text || shown.as == ShownAs::TextOrNoneSelected; }
};

/// Settings that are together in a tab, one below the other.
struct Section {
  LabelText heading = {};  ///< without a name: none
  std::size_t column = 0;  ///< 0 on the left, 1 on the right
};

struct SettingsTab {
  std::string_view caption;
  std::span<const Setting> rows;           ///< in the order of reading
  std::span<const Section> sections = {};  ///< none: the rows fill the left column first
  std::span<const LabelText> notes = {};   ///< at the bottom of the tab
};

// What many settings have in common.

inline constexpr Choice kOnOffNumbers[] = {{"On", 1}, {"Off", 0}};
inline constexpr Choice kOffOnNumbers[] = {{"Off", 0}, {"On", 1}};
inline constexpr Shown kOnOff{ShownAs::Choice, kOnOffNumbers};
inline constexpr Shown kOffOn{ShownAs::Choice, kOffOnNumbers};
inline constexpr Shown kDigits{ShownAs::Digits};
inline constexpr Shown kText{ShownAs::Text};

inline constexpr Choice kOneForOn[] = {{"On", 1}, {kAnyOther, 0}};
inline constexpr Written kWritesOnOff{WrittenAs::Choice, kOneForOn};
/// The number of the choice with the picked text.
inline constexpr Written kWritesChoice{WrittenAs::Choice};
inline constexpr Written kWritesText{WrittenAs::Text};
inline constexpr Written kWritesNothing{};

}  // namespace quillbox
