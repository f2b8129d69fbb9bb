// SPDX-License-Identifier: GPL-3.0-or-later
// Notifies its receivers of a change. They read what changed from where it is kept, so that there is one copy of it.
#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace quillbox {

class Signal {
 public:
  /// `receiver` is called after each change from now on, in the order of the calls of Connect. It must live as long as
  /// the signal does.
  void Connect(std::function<void()> receiver) { receivers_.push_back(std::move(receiver)); }
  void Send() const {
    for (const auto& receiver : receivers_) receiver();
  }

 private:
  std::vector<std::function<void()>> receivers_;
};

}  // namespace quillbox
