// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/tab_control.h"

#include <utility>

namespace quillbox {

TabControl::TabControl(Form& form, std::string name, std::vector<std::string> captions)
    : Control(form, std::move(name)), tabs_(std::move(captions)) {
  Watch(selected);
}

void TabControl::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}

void TabControl::pick(std::size_t index) {
  if (!CanAct() || index >= tabs_.size()) return;
  selected = index;
  Run("Click", onClick);
}

}  // namespace quillbox
