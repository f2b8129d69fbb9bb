// One description of a setting that a person can edit, so that all settings are rows of tables: what its label and
// control are called and say, where its value lies, what is shown for it and what is written. What only some settings
// do is named in the row too; neither the loader nor the windows know any setting by its name.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace quillbox {

/// The key that a setting's value lies in; PathOf tells its path.
enum class SettingKey {
  None,       ///< a control without a value
  Settings,   ///< the identity's key "5.0"
  Mail,       ///< "Mail" below it
  News,       ///< "News" below it
  Rules,      ///< "Rules" below it
  Machine,    ///< the machine's Outlook Express key
  WebMain,    ///< the person's Internet Explorer key "Main"
  WebToolbar  ///< "Toolbar" beside it
};

struct Choice {
  std::string_view text;
  std::int32_t number;
};

/// In a table of what is written: every text that no row before names.
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
  std::span<const std::string_view> items = {};  ///< of the combo box, where they are not the choices' texts in order
};

/// How a number is entered in a text box.
struct NumberEntry {
  std::string_view expected;   ///< the message for a text that is not such a number
  std::int32_t unit = 1;       ///< the stored number for an entered 1
  bool minusOneIsOff = false;  ///< -1 is stored as it is and the box then shows "Off"
  std::int32_t lowest = 0;     ///< with `highest`: others bring the message, and `replacement` takes their place
  std::int32_t highest = 0;    ///< 0: any number is taken
  std::int32_t replacement = 0;
};

enum class WrittenAs { Nothing, Choice, Number, Text };

struct Written {
  WrittenAs as = WrittenAs::Nothing;
  std::span<const Choice> choices = {};  ///< where they are not the choices shown
  NumberEntry entry = {};
};

/// What a missing value means.
struct Missing {
  constexpr Missing(const char* text) : shown(text) {}
  /// The value is made when the window opens, a text as the empty one. While other identities are chosen it counts as
  /// 0 or the empty text.
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
  std::span<const std::string_view> enabledBy;  ///< the texts that enable it; every other one disables it
  std::string_view whenDisabled = {};           ///< shown in it when it is disabled, and written when that was picked
  std::string_view whenEnabled = {};            ///< written to it when a pick has enabled it and it holds 0
};

/// What only some settings have.
struct Exceptions {
  std::string_view label = {};        ///< its name, where it is not the control's with "lbl" in front
  std::string_view writtenName = {};  ///< the value's name for writing, where its case is another one
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

/// Settings that stand together in a tab, below each other.
struct Section {
  LabelText heading = {};  ///< without a name: none
  std::size_t column = 0;  ///< 0 on the left, 1 on the right
};

struct SettingsTab {
  std::string_view caption;
  std::span<const Setting> rows;           ///< in the order in which they are read
  std::span<const Section> sections = {};  ///< none: the rows fill the left column first
  std::span<const LabelText> notes = {};   ///< at the tab's foot
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
/// The number of the choice that reads so.
inline constexpr Written kWritesChoice{WrittenAs::Choice};
inline constexpr Written kWritesText{WrittenAs::Text};
inline constexpr Written kWritesNothing{};

}  // namespace quillbox
