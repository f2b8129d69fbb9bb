// SPDX-License-Identifier: GPL-3.0-or-later
// A window as a plain object: its controls are public members, its layout and menus are data, and its handlers run
// through one guard. A renderer watches it; without one (in tests) it works the same.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ui/controls.h"
#include "ui/layout.h"
#include "ui/menu.h"
#include "ui/property.h"

namespace quillbox {

class Dialogs;
class Log;
struct Platform;

enum class Pointer { Normal, Hourglass };

/// Runs every handler of a user's action. An exception ends the handler and goes to the log; when the outermost handler
/// has ended, the platform ends the command, so that its registry changes reach the disk at once.
class HandlerGuard {
 public:
  explicit HandlerGuard(Platform& platform);
  /// For windows that are shown before any system is opened: no command is ended after a handler.
  HandlerGuard(Log& log, Dialogs& dialogs);
  /// `what` names the handler in the log ("cmdQuickBackup_Click").
  void Run(const std::string& what, const Handler& handler);

 private:
  void EndCommand(const std::string& what);

  Log& log_;
  Dialogs& dialogs_;
  std::function<void()> endCommand_;
  int depth_ = 0;
};

class Form {
 public:
  /// `name` is the window's own ("Form1"). The guard must outlive the form.
  Form(HandlerGuard& guard, std::string name, std::string title);
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& Name() const { return name_; }
  Property<std::string> caption;
  Property<bool> visible{false};
  Property<Pointer> pointer{Pointer::Normal};
  /// The window's height in twips (1440 to the inch) where the window fixes it; 0 lets its content decide.
  Property<int> heightTwips{0};
  MenuBar menuBar{*this};

  void Show() { visible = true; }
  void Hide() { visible = false; }

  /// How the controls are laid out; called once, when the window is first rendered.
  virtual LayoutNode Layout() = 0;
  /// The title bar's close button. By default this clicks the button that Esc clicks, or hides the window when it has
  /// none.
  virtual void close();
  /// The Esc key: clicks the window's cancel button, if it has one.
  void escape();

  /// All controls, in tab order.
  const std::vector<Control*>& Controls() const { return controls_; }
  /// The control with that name. Throws std::invalid_argument when there is none of kind T.
  template <class T>
  T& Named(std::string_view name) const {
    for (Control* control : controls_) {
      auto* found = control->Name() == name ? dynamic_cast<T*>(control) : nullptr;
      if (found) return *found;
    }
    throw std::invalid_argument("no such control: " + std::string(name));
  }
  void RunHandler(const std::string& what, const Handler& handler);

  /// Set by the renderer: called after a property of the window itself has changed.
  std::function<void()> onChanged;

 private:
  friend class Control;
  Button* CancelButton() const;
  void Add(Control& control) { controls_.push_back(&control); }

  HandlerGuard& guard_;
  std::string name_;
  std::vector<Control*> controls_;
};

/// Shows the hourglass until it goes out of scope.
class HourglassScope {
 public:
  explicit HourglassScope(Form& form) : form_(form), before_(form.pointer) { form_.pointer = Pointer::Hourglass; }
  ~HourglassScope() { form_.pointer = before_; }
  HourglassScope(const HourglassScope&) = delete;
  HourglassScope& operator=(const HourglassScope&) = delete;

 private:
  Form& form_;
  Pointer before_;
};

/// Shows "Please Wait" on a button until it goes out of scope.
class PleaseWaitScope {
 public:
  explicit PleaseWaitScope(Button& button) : button_(button), caption_(button.caption) {
    button_.caption = "Please Wait";
  }
  ~PleaseWaitScope() { button_.caption = caption_; }
  PleaseWaitScope(const PleaseWaitScope&) = delete;
  PleaseWaitScope& operator=(const PleaseWaitScope&) = delete;

 private:
  Button& button_;
  std::string caption_;
};

/// Shows that a button's command is at work.
struct BusyScope {
  BusyScope(Form& form, Button& button) : hourglass(form), pleaseWait(button) {}
  HourglassScope hourglass;
  PleaseWaitScope pleaseWait;
};

}  // namespace quillbox
