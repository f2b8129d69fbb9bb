// SPDX-License-Identifier: GPL-3.0-or-later
// Pages of controls with tabs, one page in view.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ui/controls.h"
#include "ui/property.h"

namespace quillbox {

/// The layout gives the pages' contents, as the children of a node of kind Tabs in the order of the tabs.
class TabControl : public Control {
 public:
  TabControl(Form& form, std::string name, std::vector<std::string> captions);
  void Accept(ControlVisitor& visitor) override;

  /// The tabs' captions, from the left. They never change.
  const std::vector<std::string>& Tabs() const { return tabs_; }
  Property<std::size_t> selected{0};
  Handler onClick;

  /// A position without a tab is ignored.
  void pick(std::size_t index);

 private:
  std::vector<std::string> tabs_;
};

}  // namespace quillbox
