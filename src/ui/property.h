// SPDX-License-Identifier: GPL-3.0-or-later
// A value that notifies its owner of changes. Controls are made of them: code sets `caption = "…"` and the real widget
// follows.
#pragma once

#include <functional>
#include <ostream>
#include <utility>

namespace quillbox {

template <class T>
class Property {
 public:
  Property() = default;
  explicit Property(T value) : value_(std::move(value)) {}
  Property(const Property&) = delete;
  Property& operator=(const Property&) = delete;

  Property& operator=(T value) {
    if (!(value == value_)) {
      value_ = std::move(value);
      if (changed_) changed_();
    }
    return *this;
  }

  const T& Get() const { return value_; }
  operator const T&() const { return value_; }
  const T* operator->() const { return &value_; }

  /// Called after each change; one watcher, set by the control that owns the property.
  void Watch(std::function<void()> changed) { changed_ = std::move(changed); }

  friend bool operator==(const Property& property, const T& value) { return property.value_ == value; }
  friend std::ostream& operator<<(std::ostream& out, const Property& property) requires
      requires(std::ostream& stream, const T& value) {
    stream << value;
  }
  { return out << property.value_; }

 private:
  T value_{};
  std::function<void()> changed_;
};

}  // namespace quillbox
