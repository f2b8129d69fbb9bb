// SPDX-License-Identifier: GPL-3.0-or-later
// The shell of the Windows that the program runs on. Copies are our own, whole or not at all, as on an old disk.
#pragma once

#include <string>

#include "platform/hosted/hosted_shell.h"

namespace quillbox {

class WindowsShell : public HostedShell {
 public:
  using HostedShell::HostedShell;

 private:
  /// In the file manager with its tree, as "Explore" in a folder's menu.
  void ShowFolder(const HostPath& folder, const std::string& parameters) override;
};

}  // namespace quillbox
