// SPDX-License-Identifier: GPL-3.0-or-later
// What a command could not do with registry files and with the paths that the registry names. The program's own status
// texts say only that a step ran; the reasons are gathered here and shown in one message for each command.
#pragma once

#include <string>
#include <vector>

#include "platform/dialogs.h"

namespace quillbox {

class CommandFailures {
 public:
  explicit CommandFailures(Dialogs& dialogs) : dialogs_(dialogs) {}

  /// Shows `lines` (one or more, a repeated one once) now, or at the end of the scope that is open.
  void Add(const std::string& lines);

  /// Holds the failures of a command back until it ends.
  class Scope {
   public:
    explicit Scope(CommandFailures& failures) : failures_(failures) { ++failures_.depth_; }
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    CommandFailures& failures_;
  };

 private:
  void Show();

  Dialogs& dialogs_;
  std::vector<std::string> lines_;
  int depth_ = 0;
};

}  // namespace quillbox
