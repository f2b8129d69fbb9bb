// SPDX-License-Identifier: GPL-3.0-or-later
// Something of the host that is open, and closes itself.
#pragma once

#include <cstdint>
#include <utility>

namespace quillbox {

/// The system's own number for something open: a descriptor, or a handle. Programs that are started know it by it.
using HandleNumber = std::intptr_t;

class HostHandle {
 public:
  HostHandle() = default;
  explicit HostHandle(HandleNumber number) : number_(number) {}
  HostHandle(HostHandle&& other) noexcept : number_(std::exchange(other.number_, kNone)) {}
  HostHandle& operator=(HostHandle&& other) noexcept {
    if (this != &other) {
      Close();
      number_ = std::exchange(other.number_, kNone);
    }
    return *this;
  }
  ~HostHandle() { Close(); }

  explicit operator bool() const { return number_ != kNone; }
  HandleNumber Number() const { return number_; }
  void Close();

 private:
  static constexpr HandleNumber kNone = -1;  // of both systems
  HandleNumber number_ = kNone;
};

}  // namespace quillbox
