// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/list_view.h"

#include <utility>

namespace quillbox {

ListView::ListView(Form& form, std::string name, std::vector<std::string> columns, CellText text, Checks checks)
    : Control(form, std::move(name)), columns_(std::move(columns)), text_(std::move(text)), checks_(checks) {
  Watch(selected);
}

void ListView::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}

void ListView::SetRowCount(std::size_t count) {
  checked_.assign(count, false);
  ++generation_;
  selected = std::nullopt;
  Changed();
}

void ListView::RefreshTexts() {
  ++textGeneration_;
  Changed();
}

void ListView::SetChecked(const std::vector<std::size_t>& rows) {
  checked_.assign(checked_.size(), false);
  for (const std::size_t row : rows) checked_.at(row) = true;
  Changed();
}

void ListView::SetAllChecked(bool checked) {
  checked_.assign(checked_.size(), checked);
  Changed();
}

std::vector<std::size_t> ListView::CheckedRows() const {
  std::vector<std::size_t> rows;
  for (std::size_t row = 0; row < checked_.size(); ++row) {
    if (checked_[row]) rows.push_back(row);
  }
  return rows;
}

void ListView::check(std::size_t row, bool checked) {
  if (!CanAct() || !HasCheckBoxes() || row >= RowCount()) return;
  checked_[row] = checked;
  Changed();
}

void ListView::pick(std::size_t row) {
  if (CanAct() && row < RowCount()) selected = row;
}

void ListView::open(std::size_t row) {
  if (!CanAct() || row >= RowCount()) return;
  selected = row;
  Run("DblClick", onDblClick);
}

}  // namespace quillbox
