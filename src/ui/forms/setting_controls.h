// SPDX-License-Identifier: GPL-3.0-or-later
// The controls of a table of settings, made from its rows: each row has a label and a combo box or a text box, and what
// a person does to them reads and writes the row's value. A window needs no code of its own for a setting.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "settings/settings_editor.h"
#include "ui/form.h"

namespace quillbox {

class SettingControls {
 public:
  /// Adds the controls of `tab` to `form`, in the order in which they are seen. `userId` gives the identity that is
  /// edited when the user acts.
  SettingControls(Form& form, const SettingsTab& tab, SettingsEditor& editor, Dialogs& dialogs,
                  std::function<std::string()> userId);

  /// All settings, or those that each identity has for itself.
  enum class Which { All, OfIdentity };
  /// Shows the stored values, in the order of the rows; nothing is written but what the rows say of missing values.
  void Load(SettingsEditor::Occasion occasion, Which which = Which::All);
  /// Empties every list and every text.
  void Clear();

  /// The identity whose settings are shown.
  const std::string& ShownFor() const { return shownFor_; }
  /// True when a text was typed that its "Change" button has not been pressed for.
  bool IsTyped(Which which = Which::All) const;
  /// Asks about each such text whether to apply it. False when one could not be applied, or when the person wants to go
  /// on with it.
  bool SettleTyped(Which which = Which::All);

  LayoutNode Layout();

 private:
  struct Row {
    const Setting* setting = nullptr;
    std::unique_ptr<Label> label;
    std::unique_ptr<ComboBox> combo;  // or
    std::unique_ptr<TextBox> box;
    std::unique_ptr<Button> button;
    std::unique_ptr<Label> note;

    std::string shown;  ///< the text that was last shown, before the person typed

    const std::string& Text() const { return combo ? combo->text.Get() : box->text.Get(); }
    void SetText(std::string text);
    void Enable(bool enabled);
    bool IsTyped() const { return button && Text() != shown; }
  };

  void AddRow(Form& form, const Setting& setting);
  /// True when what the control says was handed to the registry.
  bool Act(Row& row, const std::string& userId);
  /// Enables or disables the control that `row` governs; null when it governs none.
  Row* Govern(const Row& row);
  void WriteGoverned(Row& governed, const Governs& rule);
  std::vector<LayoutNode> Cells(const Row& row) const;
  LayoutNode ColumnLayout(std::size_t column) const;

  const SettingsTab& tab_;
  SettingsEditor& editor_;
  Dialogs& dialogs_;
  std::function<std::string()> userId_;
  std::string shownFor_;
  std::deque<Row> rows_;                          // as seen; their controls' handlers refer to them
  std::vector<std::unique_ptr<Label>> headings_;  // as the sections; null for those without
  std::vector<std::unique_ptr<Label>> notes_;
};

}  // namespace quillbox
