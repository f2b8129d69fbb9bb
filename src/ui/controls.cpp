// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "ui/form.h"

namespace quillbox {

Control::Control(Form& form, std::string name) : form_(form), name_(std::move(name)) {
  Watch(visible);
  Watch(enabled);
  Watch(tooltip);
  Watch(colour);
  form.Add(*this);
}

void Control::Run(const char* event, const Handler& handler) {
  if (handler) form_.RunHandler(name_ + "_" + event, handler);
}

Label::Label(Form& form, std::string name, std::string text, std::string tip) : Control(form, std::move(name)) {
  caption = std::move(text);
  tooltip = std::move(tip);
  Watch(caption);
}

TextBox::TextBox(Form& form, std::string name, std::string initial, std::string tip) : Control(form, std::move(name)) {
  text = std::move(initial);
  tooltip = std::move(tip);
  text.Watch([this] {
    allSelected = false;
    Changed();
  });
  Watch(readOnly);
  Watch(allSelected);
}

void TextBox::type(const std::string& newText) {
  if (!CanAct() || readOnly) return;
  text = newText;
  Run("Change", onChange);
}

ComboBox::ComboBox(Form& form, std::string name, std::string initial, std::string tip)
    : Control(form, std::move(name)) {
  text = std::move(initial);
  tooltip = std::move(tip);
  items.Watch([this] {
    picked_.reset();
    Changed();
  });
  text.Watch([this] {
    picked_.reset();
    Changed();
  });
}

void ComboBox::Add(const std::string& item) {
  std::vector<std::string> longer = items;
  longer.push_back(item);
  items = std::move(longer);
}

void ComboBox::Clear() {
  items = std::vector<std::string>{};
  text = "";
}

std::optional<std::size_t> ComboBox::Index() const {
  if (picked_) return picked_;
  const auto found = std::find(items->begin(), items->end(), text.Get());
  if (found == items->end()) return std::nullopt;
  return static_cast<std::size_t>(found - items->begin());
}

void ComboBox::pick(std::size_t index) {
  if (!CanAct()) return;
  text = items->at(index);
  picked_ = index;
  Run("Click", onClick);
}

void ComboBox::pick(const std::string& item) {
  const auto found = std::find(items->begin(), items->end(), item);
  if (found == items->end()) throw std::invalid_argument(Name() + " has no item " + item);
  pick(static_cast<std::size_t>(found - items->begin()));
}

void ComboBox::type(const std::string& newText) {
  if (!CanAct() || !editable || text == newText) return;
  text = newText;
  Run("Change", onChange);
}

CheckBox::CheckBox(Form& form, std::string name, std::string text, std::string tip) : Control(form, std::move(name)) {
  caption = std::move(text);
  tooltip = std::move(tip);
  Watch(caption);
  Watch(checked);
}

void CheckBox::click() {
  if (!CanAct()) return;
  checked = !checked;
  Run("Click", onClick);
}

void OptionGroup::Choose(const OptionButton* chosen) {
  for (OptionButton* button : buttons_) button->chosen_ = button == chosen;
}

OptionButton::OptionButton(Form& form, OptionGroup& group, std::string name, std::string text, std::string tip)
    : Control(form, std::move(name)), group_(group) {
  caption = std::move(text);
  tooltip = std::move(tip);
  Watch(caption);
  Watch(chosen_);
  group_.buttons_.push_back(this);
}

void OptionButton::click() {
  if (!CanAct()) return;
  group_.Choose(this);
  Run("Click", onClick);
}

Button::Button(Form& form, std::string name, std::string text, std::string tip) : Control(form, std::move(name)) {
  caption = std::move(text);
  tooltip = std::move(tip);
  Watch(caption);
}

void Button::click() {
  if (CanAct()) Run("Click", onClick);
}

Frame::Frame(Form& form, std::string name, std::string text, std::string tip) : Control(form, std::move(name)) {
  caption = std::move(text);
  tooltip = std::move(tip);
  Watch(caption);
}

ListBox::ListBox(Form& form, std::string name, std::string tip) : Control(form, std::move(name)) {
  tooltip = std::move(tip);
  items.Watch([this] {
    selected = std::nullopt;
    Changed();
  });
  Watch(selected);
}

void ListBox::pick(std::size_t index) {
  if (!CanAct() || index >= items->size()) return;
  selected = index;
  Run("Click", onSelect);
}

void ListBox::open(std::size_t index) {
  if (!CanAct() || index >= items->size()) return;
  selected = index;
  Run("DblClick", onOpen);
}

MultiListBox::MultiListBox(Form& form, std::string name, std::string tip) : Control(form, std::move(name)) {
  tooltip = std::move(tip);
  items.Watch([this] {
    selected = std::vector<std::size_t>{};
    Changed();
  });
  Watch(selected);
}

void MultiListBox::choose(const std::vector<std::size_t>& indexes) {
  if (!CanAct() || (!indexes.empty() && indexes.back() >= items->size())) return;
  selected = indexes;
}

StatusBar::StatusBar(Form& form, std::string name, std::size_t panelCount)
    : Control(form, std::move(name)), panels(panelCount) {
  for (auto& panel : panels) Watch(panel);
}

void Label::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}
void TextBox::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}
void ComboBox::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}
void CheckBox::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}
void OptionButton::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}
void Button::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}
void Frame::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}
void ListBox::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}
void MultiListBox::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}
void StatusBar::Accept(ControlVisitor& visitor) {
  visitor.Visit(*this);
}

}  // namespace quillbox
