// SPDX-License-Identifier: GPL-3.0-or-later
// A window's menu bar as data: a path of captions, a name and a handler for each item.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "ui/controls.h"

namespace quillbox {

class Form;

/// One leaf of a menu bar.
struct MenuItem {
  std::vector<std::string> path;  ///< captions from the bar down to the item; "&" marks an access key
  std::string name;
  bool enabled = true;  ///< a disabled item is shown greyed
  Handler onClick;

  const std::string& Caption() const { return path.back(); }
};

class MenuBar {
 public:
  explicit MenuBar(Form& form) : form_(form) {}

  /// Items whose paths begin alike share those menus.
  void Add(MenuItem item) { items_.push_back(std::move(item)); }
  const std::deque<MenuItem>& Items() const { return items_; }
  /// Throws std::invalid_argument when there is no item of that name.
  const MenuItem& Item(const std::string& name) const;

  /// Runs the item's handler; a disabled item does nothing.
  void click(const std::string& name) const;

 private:
  Form& form_;
  std::deque<MenuItem> items_;
};

}  // namespace quillbox
