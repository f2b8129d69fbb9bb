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

  enum class Which { All, OfIdentity };
  /// Shows the stored values, in the order of the rows; nothing is written but what the rows say of missing values.
  void Load(SettingsEditor::Occasion occasion, Which which = Which::All);
  /// Empties every list and every text.
  void Clear();

  LayoutNode Layout();

 private:
  struct Row {
    const Setting* setting = nullptr;
    std::unique_ptr<Label> label;
    std::unique_ptr<ComboBox> combo;  // or
    std::unique_ptr<TextBox> box;
    std::unique_ptr<Button> button;
    std::unique_ptr<Label> note;

    const std::string& Text() const { return combo ? combo->text.Get() : box->text.Get(); }
    void SetText(std::string text) { (combo ? combo->text : box->text) = std::move(text); }
    void Enable(bool enabled) { (combo ? combo->enabled : box->enabled) = enabled; }
  };

  void AddRow(Form& form, const Setting& setting);
  void Act(Row& row);
  /// Enables or disables the control that `row` governs; null when it governs none.
  Row* Govern(const Row& row);
  void WriteGoverned(Row& governed, const Governs& rule);
  std::vector<LayoutNode> Cells(const Row& row) const;
  LayoutNode ColumnLayout(std::size_t column) const;

  const SettingsTab& tab_;
  SettingsEditor& editor_;
  Dialogs& dialogs_;
  std::function<std::string()> userId_;
  std::deque<Row> rows_;                          // as seen; their controls' handlers refer to them
  std::vector<std::unique_ptr<Label>> headings_;  // as the sections; null for those without
  std::vector<std::unique_ptr<Label>> notes_;
};

}  // namespace quillbox
