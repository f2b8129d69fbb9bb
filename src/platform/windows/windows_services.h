// SPDX-License-Identifier: GPL-3.0-or-later
// Small services of the Windows that the program runs on: its environment and code page, GUIDs, and the folders that
// its user chose.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace quillbox {

class WindowsFacts : public SystemFacts {
 public:
  std::string ExpandEnvironment(std::string_view text) override;
  unsigned CodePageNumber() override;
};

class WindowsGuids : public Guids {
 public:
  std::string Create() override;
};

/// The registry is the user's own here, and so is every folder that it names.
class OwnFolders : public ChosenFolders {
 public:
  std::optional<FolderFault> FaultOf(const WinPath& /*folder*/) const override { return std::nullopt; }
  bool IsChosen(const WinPath& /*folder*/) override { return true; }
  void Choose(const WinPath& /*folder*/) override {}
};

}  // namespace quillbox
