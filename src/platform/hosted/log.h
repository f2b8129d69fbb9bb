// SPDX-License-Identifier: GPL-3.0-or-later
// The log of a desktop program: what a window does not show goes to standard error and to a file that the user can
// send.
#pragma once

#include "host/host_path.h"
#include "platform/platform.h"

namespace quillbox {

class FileLog : public Log {
 public:
  /// A log larger than this when it is opened is put aside as `quillbox.log.old`.
  static constexpr std::uintmax_t kMaxBytes = 1u << 20;

  /// Logs to `quillbox.log` in `stateFolder`, made when missing. Where that fails, it logs to standard error only.
  explicit FileLog(const HostPath& stateFolder);

  /// One line with the local time. Line ends become blanks, other control characters signs. Never throws.
  void Write(std::string_view text) override;

 private:
  HostPath file_;
};

}  // namespace quillbox
