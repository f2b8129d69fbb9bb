// SPDX-License-Identifier: GPL-3.0-or-later
// The log: what is not shown goes to a file that the user can send, and on request to standard error.
#pragma once

#include "host/host_path.h"
#include "platform/platform.h"

namespace quillbox {

enum class LogEcho {
  StandardError,  ///< each line too, for who started a program with windows from a terminal
  None,           ///< standard error is for what a command reports
};

class FileLog : public Log {
 public:
  /// A log larger than this when it is opened is put aside as `quillbox.log.old`.
  static constexpr std::uintmax_t kMaxBytes = 1u << 20;

  /// Logs to `quillbox.log` in `stateFolder`, made when missing. Where that fails, it logs to standard error in any
  /// case.
  explicit FileLog(const HostPath& stateFolder, LogEcho echo = LogEcho::StandardError);

  /// One line with the local time. Line ends become blanks, other control characters signs. Never throws.
  void Write(std::string_view text) override;

 private:
  HostPath file_;
  LogEcho echo_;
};

}  // namespace quillbox
