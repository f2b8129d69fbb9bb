// A window's menu bar as data: each row gives a path of captions, the item's name, and what it does.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "ui/controls.h"

namespace quillbox {

class Form;

/// One leaf of a menu bar.
struct MenuItem {
  std::vector<std::string> path;  ///< captions from the bar down to the item's own; "&" marks an access key
  std::string name;
  bool enabled = true;  ///< a switched-off item is shown greyed
  Handler onClick;

  const std::string& Caption() const { return path.back(); }
};

class MenuBar {
 public:
  explicit MenuBar(Form& form) : form_(form) {}

  /// Items with the same beginning of their paths share the menus along it.
  void Add(MenuItem item) { items_.push_back(std::move(item)); }
  const std::deque<MenuItem>& Items() const { return items_; }
  /// Throws std::invalid_argument when there is no item of that name.
  const MenuItem& Item(const std::string& name) const;

  /// A person chooses the item; a greyed one does nothing.
  void click(const std::string& name) const;

 private:
  Form& form_;
  std::deque<MenuItem> items_;
};

}  // namespace quillbox
