// SPDX-License-Identifier: GPL-3.0-or-later
// The controls of windows, as plain objects without a toolkit. Code reads and sets their properties; a person (or a
// test) acts on them through the verbs in lower case: click, pick, type, open. Only those verbs run handlers; setting a
// property from code never does.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/property.h"

namespace quillbox {

class Form;
class ControlVisitor;
class ListView;
class TabControl;

/// What a control does when a person acts on it. Run by the form, which guards it.
using Handler = std::function<void()>;

/// 24-bit colours with red in the lowest byte.
enum class Colour : unsigned { Default = 0xFFFFFFFF, Red = 255 };

class Control {
 public:
  /// Adds the control to `form`, in tab order.
  Control(Form& form, std::string name);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  const std::string& Name() const { return name_; }
  virtual void Accept(ControlVisitor& visitor) = 0;

  Property<bool> visible{true};
  Property<bool> enabled{true};
  Property<std::string> tooltip;
  Property<Colour> colour{Colour::Default};
  /// What a screen reader calls a control without a caption of its own. Left empty, it is the caption of the label
  /// right before the control, or else the tooltip.
  std::string spokenName;

  /// Set by the renderer: called after any property of this control has changed.
  std::function<void()> onChanged;

 protected:
  /// Calls onChanged after each change of `property`.
  template <class T>
  void Watch(Property<T>& property) {
    property.Watch([this] { Changed(); });
  }
  void Changed() {
    if (onChanged) onChanged();
  }
  /// A person can act on the control only while it is enabled.
  bool CanAct() const { return enabled; }
  void Run(const char* event, const Handler& handler);

 private:
  Form& form_;
  std::string name_;
};

class Label : public Control {
 public:
  Label(Form& form, std::string name, std::string text = {}, std::string tip = {});
  void Accept(ControlVisitor& visitor) override;
  Property<std::string> caption;
  bool wraps = false;  ///< a long caption is shown in several lines
};

class TextBox : public Control {
 public:
  TextBox(Form& form, std::string name, std::string initial = {}, std::string tip = {});
  void Accept(ControlVisitor& visitor) override;
  Property<std::string> text;
  Property<bool> readOnly{false};
  bool isShort = false;  ///< its texts are short: where it grows with the window it may begin narrow
  /// True once all of the text was selected and until the text changes.
  Property<bool> allSelected{false};
  void SelectAll() { allSelected = true; }
  Handler onChange;

  void type(const std::string& newText);
};

/// A list of texts with one of them shown. The user can only pick an item, unless the box is editable.
class ComboBox : public Control {
 public:
  ComboBox(Form& form, std::string name, std::string initial = {}, std::string tip = {});
  void Accept(ControlVisitor& visitor) override;
  Property<std::vector<std::string>> items;
  Property<std::string> text;
  bool editable = false;
  Handler onClick;
  Handler onChange;  ///< after typing

  void Add(const std::string& item);
  void Clear();
  /// The position of the item that was picked last, or else of the first item equal to the text, if there is one.
  std::optional<std::size_t> Index() const;

  void pick(std::size_t index);
  /// Picks the first item with that text; throws std::invalid_argument when there is none.
  void pick(const std::string& item);
  void type(const std::string& newText);

 private:
  std::optional<std::size_t> picked_;
};

class CheckBox : public Control {
 public:
  CheckBox(Form& form, std::string name, std::string text = {}, std::string tip = {});
  void Accept(ControlVisitor& visitor) override;
  Property<std::string> caption;
  Property<bool> checked{false};
  Handler onClick;

  void click();
};

class OptionButton;

/// Option buttons of which at most one is chosen.
class OptionGroup {
 public:
  /// Chooses `chosen` alone; null chooses none. No handler runs.
  void Choose(const OptionButton* chosen);

 private:
  friend class OptionButton;
  std::vector<OptionButton*> buttons_;
};

class OptionButton : public Control {
 public:
  /// The group must outlive the button.
  OptionButton(Form& form, OptionGroup& group, std::string name, std::string text = {}, std::string tip = {});
  void Accept(ControlVisitor& visitor) override;
  Property<std::string> caption;
  bool IsChosen() const { return chosen_; }
  Handler onClick;

  void click();

 private:
  friend class OptionGroup;
  OptionGroup& group_;
  Property<bool> chosen_{false};
};

class Button : public Control {
 public:
  Button(Form& form, std::string name, std::string text = {}, std::string tip = {});
  void Accept(ControlVisitor& visitor) override;
  Property<std::string> caption;
  bool isDefault = false;  ///< Enter presses it
  bool isCancel = false;   ///< Esc presses it
  Handler onClick;

  void click();
};

/// A titled border around its layout group; hiding the frame hides the group.
class Frame : public Control {
 public:
  Frame(Form& form, std::string name, std::string text = {}, std::string tip = {});
  void Accept(ControlVisitor& visitor) override;
  Property<std::string> caption;
};

/// A list of texts with one selected line, opened by a double click or Enter.
class ListBox : public Control {
 public:
  ListBox(Form& form, std::string name, std::string tip = {});
  void Accept(ControlVisitor& visitor) override;
  Property<std::vector<std::string>> items;
  Property<std::optional<std::size_t>> selected;
  int linesShown = 7;  ///< at the least, in a small window
  Handler onSelect;
  Handler onOpen;

  void pick(std::size_t index);
  void open(std::size_t index);
};

/// A list of texts of which any number can be selected.
class MultiListBox : public Control {
 public:
  MultiListBox(Form& form, std::string name, std::string tip = {});
  void Accept(ControlVisitor& visitor) override;
  /// Setting other items clears the selection.
  Property<std::vector<std::string>> items;
  /// The positions of the selected items, ascending.
  Property<std::vector<std::size_t>> selected;

  /// Makes `indexes`, ascending, the selection; nothing when one of them is not in the list.
  void choose(const std::vector<std::size_t>& indexes);
};

class StatusBar : public Control {
 public:
  StatusBar(Form& form, std::string name, std::size_t panelCount);
  void Accept(ControlVisitor& visitor) override;
  std::vector<Property<std::string>> panels;
};

/// Lets the renderer tell the kinds apart.
class ControlVisitor {
 public:
  virtual ~ControlVisitor() = default;
  virtual void Visit(Label& control) = 0;
  virtual void Visit(TextBox& control) = 0;
  virtual void Visit(ComboBox& control) = 0;
  virtual void Visit(CheckBox& control) = 0;
  virtual void Visit(OptionButton& control) = 0;
  virtual void Visit(Button& control) = 0;
  virtual void Visit(Frame& control) = 0;
  virtual void Visit(ListBox& control) = 0;
  virtual void Visit(MultiListBox& control) = 0;
  virtual void Visit(ListView& control) = 0;
  virtual void Visit(TabControl& control) = 0;
  virtual void Visit(StatusBar& control) = 0;
};

}  // namespace quillbox
