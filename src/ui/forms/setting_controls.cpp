// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/setting_controls.h"

#include <algorithm>
#include <stdexcept>

#include "settings/setting_path.h"

namespace quillbox {
namespace {

constexpr std::size_t kPrefix = 3;  // of a control's name: "cmb", "txt"

constexpr std::size_t kShortText = 16;

/// A tab without sections is one.
constexpr Section kWhole[] = {{}};

std::span<const Section> SectionsOf(const SettingsTab& tab) {
  return tab.sections.empty() ? std::span(kWhole) : tab.sections;
}

std::string LabelName(const Setting& setting) {
  if (!setting.exceptions.label.empty()) return std::string(setting.exceptions.label);
  return "lbl" + std::string(setting.control.substr(kPrefix));
}

/// True where the control shows long texts.
bool IsLong(const Setting& setting) {
  const auto items = ItemsOf(setting);
  return setting.IsText() ||
         std::any_of(items.begin(), items.end(), [](const std::string& item) { return item.size() > kShortText; });
}

std::unique_ptr<Label> MakeLabel(Form& form, const LabelText& text) {
  if (text.name.empty()) return nullptr;
  return std::make_unique<Label>(form, std::string(text.name), std::string(text.caption));
}

}  // namespace

SettingControls::SettingControls(Form& form, const SettingsTab& tab, SettingsEditor& editor, Dialogs& dialogs,
                                 std::function<std::string()> userId)
    : tab_(tab), editor_(editor), dialogs_(dialogs), userId_(std::move(userId)) {
  const auto sections = SectionsOf(tab);
  for (std::size_t section = 0; section < sections.size(); ++section) {
    headings_.push_back(MakeLabel(form, sections[section].heading));
    for (const Setting& setting : tab.rows) {
      if (setting.exceptions.section == section) AddRow(form, setting);
    }
  }
  if (rows_.size() != tab.rows.size()) {
    throw std::logic_error("a row of the tab " + std::string(tab.caption) + " names no section of it");
  }
  for (const LabelText& note : tab.notes) notes_.push_back(MakeLabel(form, note));
}

void SettingControls::AddRow(Form& form, const Setting& setting) {
  const Exceptions& exceptions = setting.exceptions;
  const std::string name(setting.control);
  Row& row = rows_.emplace_back();
  row.setting = &setting;
  row.label =
      std::make_unique<Label>(form, LabelName(setting), std::string(setting.caption), std::string(setting.tooltip));
  if (setting.IsComboBox()) {
    row.combo = std::make_unique<ComboBox>(form, name, "", std::string(exceptions.boxTooltip));
    row.combo->items = ItemsOf(setting);
    row.combo->onClick = [this, &row] { Act(row, userId_()); };
  } else {
    row.box = std::make_unique<TextBox>(form, name, "", std::string(exceptions.boxTooltip));
    row.box->isShort = true;
    row.box->readOnly = setting.written.as == WrittenAs::Nothing;
  }
  if (!exceptions.button.name.empty()) {
    row.button =
        std::make_unique<Button>(form, std::string(exceptions.button.name), std::string(exceptions.button.caption),
                                 std::string(exceptions.button.tooltip));
    row.button->onClick = [this, &row] { Act(row, userId_()); };
  }
  row.note = MakeLabel(form, exceptions.note);
}

void SettingControls::Load(SettingsEditor::Occasion occasion, Which which) {
  const std::string userId = shownFor_ = userId_();
  for (const Setting& setting : tab_.rows) {
    if (which == Which::OfIdentity && !IsOfIdentity(setting.key)) continue;
    const auto row =
        std::find_if(rows_.begin(), rows_.end(), [&](const Row& each) { return each.setting == &setting; });
    if (row->combo) row->combo->items = ItemsOf(setting);
    row->SetText(editor_.Load(setting, userId, occasion));
    Govern(*row);
  }
}

void SettingControls::Clear() {
  for (Row& row : rows_) {
    if (row.combo) row.combo->items = std::vector<std::string>{};
    row.SetText("");
  }
  shownFor_ = userId_();
}

void SettingControls::Row::SetText(std::string text) {
  shown = text;
  (combo ? combo->text : box->text) = std::move(text);
}

void SettingControls::Row::Enable(bool enabled) {
  (combo ? combo->enabled : box->enabled) = enabled;
  if (button) button->enabled = enabled;
}

bool SettingControls::IsTyped(Which which) const {
  return std::any_of(rows_.begin(), rows_.end(), [which](const Row& row) {
    return row.IsTyped() && (which == Which::All || IsOfIdentity(row.setting->key));
  });
}

bool SettingControls::SettleTyped(Which which) {
  for (Row& row : rows_) {
    if (!row.IsTyped() || (which == Which::OfIdentity && !IsOfIdentity(row.setting->key))) continue;
    const std::string question = "\"" + row.Text() + "\" was typed for \"" + std::string(row.setting->caption) +
                                 "\" and is not applied yet. Apply it?";
    const MessageAnswer answer =
        dialogs_.Show({.text = question, .buttons = MessageButtons::YesNoCancel, .icon = MessageIcon::Question});
    if (answer == MessageAnswer::Cancel) return false;
    if (answer == MessageAnswer::No) {
      row.SetText(row.shown);
    } else if (!Act(row, shownFor_)) {
      return false;
    }
  }
  return true;
}

/// A person has picked an item, or wants to apply a text.
bool SettingControls::Act(Row& row, const std::string& userId) {
  const SettingsEditor::Outcome outcome = editor_.Write(*row.setting, userId, row.Text());
  if (outcome.isWritten) row.SetText(outcome.shown.value_or(row.Text()));
  if (Row* governed = Govern(row)) WriteGoverned(*governed, row.setting->exceptions.governs);
  if (outcome.message) {
    dialogs_.Show({.text = *outcome.message});
    if (row.box) row.box->SelectAll();
  }
  return outcome.isWritten;
}

SettingControls::Row* SettingControls::Govern(const Row& row) {
  const Governs& rule = row.setting->exceptions.governs;
  const auto governed =
      std::find_if(rows_.begin(), rows_.end(), [&](const Row& each) { return each.setting->control == rule.control; });
  if (governed == rows_.end()) return nullptr;
  const bool enables = std::find(rule.enabledBy.begin(), rule.enabledBy.end(), row.Text()) != rule.enabledBy.end();
  governed->Enable(enables);
  if (!enables && !rule.whenDisabled.empty()) governed->SetText(std::string(rule.whenDisabled));
  return &*governed;
}

void SettingControls::WriteGoverned(Row& governed, const Governs& rule) {
  const bool enabled = governed.combo ? governed.combo->enabled : governed.box->enabled;
  std::string_view text = rule.whenDisabled;
  if (enabled) {
    // A number that the person has chosen stays when a pick enables what was enabled before.
    const std::string stored = editor_.Load(*governed.setting, userId_(), SettingsEditor::Occasion::Shown);
    if (stored != rule.whenDisabled) return;
    text = rule.whenEnabled;
  }
  if (text.empty()) return;
  governed.SetText(std::string(text));
  editor_.Write(*governed.setting, userId_(), std::string(text));
}

/// The row's cells in a grid of two columns.
std::vector<LayoutNode> SettingControls::Cells(const Row& row) const {
  LayoutNode entry = row.combo ? Item(*row.combo) : Item(*row.box);
  if (row.button) {
    entry.grow = 1;
    entry = quillbox::Row({std::move(entry), Item(*row.button)});
  } else if (!IsLong(*row.setting)) {
    entry = Column({std::move(entry)});  // alone in a column it takes only the width that short texts need
  }
  std::vector<LayoutNode> cells{Item(*row.label), std::move(entry)};
  if (row.note) {
    cells.push_back(Space(0));
    cells.push_back(Item(*row.note));
  }
  return cells;
}

LayoutNode SettingControls::ColumnLayout(std::size_t column) const {
  std::vector<LayoutNode> cells;
  const auto sections = SectionsOf(tab_);
  const std::size_t half = (rows_.size() + 1) / 2;
  for (std::size_t section = 0; section < sections.size(); ++section) {
    if (headings_[section] && sections[section].column == column) {
      cells.push_back(Item(*headings_[section]));
      cells.push_back(Space(0));
    }
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      const std::size_t ofRow = tab_.sections.empty() ? i / half : sections[section].column;
      if (rows_[i].setting->exceptions.section != section || ofRow != column) continue;
      for (LayoutNode& cell : Cells(rows_[i])) cells.push_back(std::move(cell));
    }
  }
  return Grid(2, {1}, std::move(cells), 1);
}

LayoutNode SettingControls::Layout() {
  LayoutNode left = ColumnLayout(0);
  LayoutNode right = ColumnLayout(1);
  std::vector<LayoutNode> all;
  if (right.children.empty()) {
    all.push_back(std::move(left));
  } else {
    all.push_back(quillbox::Row({std::move(left), Space(0), Space(0), std::move(right)}));
  }
  for (const auto& note : notes_) all.push_back(Item(*note));
  return Column(std::move(all));
}

}  // namespace quillbox
