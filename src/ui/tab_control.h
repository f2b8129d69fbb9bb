// Pages of controls behind tabs, of which one is seen.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ui/controls.h"

namespace quillbox {

/// What lies on the pages is said by the layout, as the children of a node of the kind Tabs in the tabs' order.
class TabControl : public Control {
 public:
  TabControl(Form& form, std::string name, std::vector<std::string> captions);
  void Accept(ControlVisitor& visitor) override;

  /// The tabs' captions, from the left. They stay as they are.
  const std::vector<std::string>& Tabs() const { return tabs_; }
  Property<int> selected{0};
  Handler onClick;

  /// Nothing for a position without a tab.
  void pick(std::size_t index);

 private:
  std::vector<std::string> tabs_;
};

}  // namespace quillbox
