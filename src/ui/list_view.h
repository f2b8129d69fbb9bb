// SPDX-License-Identifier: GPL-3.0-or-later
// A list of rows with columns and a check box each if wanted, for very many rows: it keeps no texts but asks for those
// in view.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/controls.h"
#include "ui/property.h"

namespace quillbox {

class ListView : public Control {
 public:
  /// The text of a cell; row and column are within the list.
  using CellText = std::function<std::string(std::size_t row, std::size_t column)>;

  enum class Checks { Boxes, None };

  ListView(Form& form, std::string name, std::vector<std::string> columns, CellText text,
           Checks checks = Checks::Boxes);
  void Accept(ControlVisitor& visitor) override;

  const std::vector<std::string>& Columns() const { return columns_; }
  bool HasCheckBoxes() const { return checks_ == Checks::Boxes; }
  std::size_t RowCount() const { return checked_.size(); }
  std::string Text(std::size_t row, std::size_t column) const { return text_(row, column); }

  /// Replaces the rows; none is checked or selected. The columns get the widths of their texts.
  void SetRowCount(std::size_t count);
  /// Changes with every SetRowCount.
  unsigned Generation() const { return generation_; }

  /// The texts of the rows have changed, but not which rows there are.
  void RefreshTexts();
  /// Changes with every RefreshTexts.
  unsigned TextGeneration() const { return textGeneration_; }

  bool IsChecked(std::size_t row) const { return checked_.at(row); }
  void SetAllChecked(bool checked);
  /// Checks these rows and no others.
  void SetChecked(const std::vector<std::size_t>& rows);
  /// The checked rows, ascending.
  std::vector<std::size_t> CheckedRows() const;

  Property<std::optional<std::size_t>> selected;
  Handler onDblClick;

  void check(std::size_t row, bool checked);
  void pick(std::size_t row);
  /// Selects the row and double clicks it.
  void open(std::size_t row);

 private:
  std::vector<std::string> columns_;
  CellText text_;
  Checks checks_;
  std::vector<bool> checked_;
  unsigned generation_ = 0;
  unsigned textGeneration_ = 0;
};

}  // namespace quillbox
