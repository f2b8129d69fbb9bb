// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

#include "platform/dialogs.h"
#include "platform/platform.h"

namespace quillbox {

HandlerGuard::HandlerGuard(Platform& platform)
    : log_(platform.GetLog()), dialogs_(platform.GetDialogs()), endCommand_([&platform] { platform.EndCommand(); }) {}

HandlerGuard::HandlerGuard(Log& log, Dialogs& dialogs) : log_(log), dialogs_(dialogs), endCommand_([] {}) {}

void HandlerGuard::Run(const std::string& what, const Handler& handler) {
  ++depth_;
  try {
    handler();
  } catch (const std::exception& error) {
    log_.Write(what + " ended early: " + error.what());
  }
  if (--depth_ == 0) EndCommand(what);
}

void HandlerGuard::EndCommand(const std::string& what) {
  try {
    endCommand_();
  } catch (const std::exception& error) {
    log_.Write(what + ": " + error.what());
    dialogs_.Show({.text = std::string("The changes could not be saved yet.\n\n") + error.what(),
                   .icon = MessageIcon::Exclamation});
  }
}

Form::Form(HandlerGuard& guard, std::string name, std::string title) : guard_(guard), name_(std::move(name)) {
  caption = std::move(title);
  const auto changed = [this] {
    if (onChanged) onChanged();
  };
  caption.Watch(changed);
  visible.Watch(changed);
  pointer.Watch(changed);
  heightTwips.Watch(changed);
}

void Form::close() {
  if (Button* button = CancelButton()) return button->click();
  Hide();
}

void Form::escape() {
  if (Button* button = CancelButton()) button->click();
}

Button* Form::CancelButton() const {
  for (Control* control : controls_) {
    auto* button = dynamic_cast<Button*>(control);
    if (button && button->isCancel) return button;
  }
  return nullptr;
}

void Form::RunHandler(const std::string& what, const Handler& handler) {
  guard_.Run(name_ + "." + what, handler);
}

const MenuItem& MenuBar::Item(const std::string& name) const {
  const auto found =
      std::find_if(items_.begin(), items_.end(), [&](const MenuItem& item) { return item.name == name; });
  if (found == items_.end()) throw std::invalid_argument("no menu item " + name);
  return *found;
}

void MenuBar::click(const std::string& name) const {
  const MenuItem& item = Item(name);
  if (item.enabled && item.onClick) form_.RunHandler(item.name + "_Click", item.onClick);
}

}  // namespace quillbox
