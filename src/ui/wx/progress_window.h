// SPDX-License-Identifier: GPL-3.0-or-later
// The window that shows the progress of long work.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/dialogs.h"

namespace quillbox {

class ProgressDialog;

/// Appears when the work has taken longer than half a second. While it is open, the program's other windows are
/// disabled, and Update draws this one and handles its events.
class WxProgress : public Progress {
 public:
  explicit WxProgress(std::string title);
  ~WxProgress() override;
  bool Update(const std::string& text, std::uint64_t done, std::uint64_t total) override;

 private:
  using SteadyClock = std::chrono::steady_clock;

  std::string title_;
  SteadyClock::time_point started_ = SteadyClock::now();
  SteadyClock::time_point drawn_;
  std::unique_ptr<ProgressDialog> dialog_;
};

}  // namespace quillbox
