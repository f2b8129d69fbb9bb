// SPDX-License-Identifier: GPL-3.0-or-later
// The system's calls that make changes lasting or visible, in a test's hands: it can let each fail, or end the program
// before it. A test program that lists host_calls.cpp among its sources calls these in the system's place.
#pragma once

#include <functional>
#include <string>

namespace quillbox {

enum class HostCall { Flush, Rename, Remove };

/// Asked before each call with the file (for Rename the new name); an errno makes the call fail, 0 lets it happen.
using OnHostCall = std::function<int(HostCall call, const std::string& file)>;

/// Takes effect while an object lives, in place of that of an older object. Nothing is really flushed then, which would
/// take long and which no test can see.
class HostCallGuard {
 public:
  explicit HostCallGuard(OnHostCall onCall);
  ~HostCallGuard();
  HostCallGuard(const HostCallGuard&) = delete;
  HostCallGuard& operator=(const HostCallGuard&) = delete;

 private:
  OnHostCall before_;
};

}  // namespace quillbox
