// SPDX-License-Identifier: GPL-3.0-or-later
// Holds controls against the lines of a golden text.
#pragma once

#include "support/golden_text.h"
#include "ui/controls.h"
#include "ui/list_view.h"

namespace quillbox {

/// A control's kind as a golden text names it, a blank, and the caption or text that it shows.
inline std::string LookOf(Control& control) {
  if (auto* label = dynamic_cast<Label*>(&control)) return "label " + label->caption.Get();
  if (auto* box = dynamic_cast<TextBox*>(&control)) return "box " + box->text.Get();
  if (auto* combo = dynamic_cast<ComboBox*>(&control)) return "combo " + combo->text.Get();
  if (auto* check = dynamic_cast<CheckBox*>(&control)) return "check " + check->caption.Get();
  if (auto* button = dynamic_cast<Button*>(&control)) return "button " + button->caption.Get();
  if (auto* frame = dynamic_cast<Frame*>(&control)) return "frame " + frame->caption.Get();
  if (auto* option = dynamic_cast<OptionButton*>(&control)) return "option " + option->caption.Get();
  if (auto* bar = dynamic_cast<StatusBar*>(&control)) return "bar " + std::to_string(bar->panels.size());
  std::string columns;
  if (auto* list = dynamic_cast<ListView*>(&control)) {
    for (const std::string& column : list->Columns()) columns += (columns.empty() ? "" : "|") + column;
  }
  return "list " + columns;
}

inline std::string MarksOf(Control& control) {
  std::string marks;
  const auto mark = [&](bool has, const char* word) { marks += has ? word : ""; };
  if (auto* label = dynamic_cast<Label*>(&control)) mark(label->wraps, " wraps");
  if (auto* box = dynamic_cast<TextBox*>(&control)) mark(box->readOnly, " readonly");
  if (auto* combo = dynamic_cast<ComboBox*>(&control)) mark(combo->editable, " editable");
  if (auto* button = dynamic_cast<Button*>(&control)) {
    mark(button->isDefault, " default");
    mark(button->isCancel, " cancel");
  }
  return marks;
}

/// Holds a control against its line: KIND NAME "CAPTION OR TEXT" "TOOLTIP" MARKS.
inline void ExpectLook(Control& control, const GoldenLine& line) {
  std::string marks;
  for (std::size_t mark = 4; mark < line.words.size(); ++mark) marks += " " + line[mark];
  const std::string look = LookOf(control);
  EXPECT_EQ(line[2] == "*" ? look.substr(0, look.find(' ') + 1) + "*" : look, line[0] + " " + line[2]) << line.Place();
  EXPECT_EQ(control.tooltip, line[3]) << line.Place();
  EXPECT_EQ(MarksOf(control), marks) << line.Place();
}

}  // namespace quillbox
