// SPDX-License-Identifier: GPL-3.0-or-later
// The dialogs of the command line. At a terminal questions are asked; elsewhere they are answered so that nothing is
// replaced and nothing damaged is taken, and what that means for the command is reported.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/console.h"
#include "platform/dialogs.h"

namespace quillbox {

class TerminalDialogs : public Dialogs {
 public:
  /// With `keepsDamaged` what can be read of damaged files is kept beside, under names of their own.
  TerminalDialogs(Console& console, bool keepsDamaged) : console_(console), keepsDamaged_(keepsDamaged) {}

  MessageAnswer Show(const Message& message) override;
  std::optional<std::string> Input(const std::string& prompt, const std::string& title,
                                   const std::string& proposed) override;
  std::optional<WinPath> OpenFile(const FileDialog& dialog) override;
  std::optional<WinPath> SaveFile(const FileDialog& dialog) override;
  std::optional<WinPath> BrowseForFolder(const FolderDialog& dialog) override;
  OverwriteAnswer AskOverwrite(const OverwriteQuestion& question) override;
  std::unique_ptr<Progress> ShowProgress(const std::string& title) override;

 private:
  bool AsksYes(const std::string& question);

  Console& console_;
  bool keepsDamaged_;
};

}  // namespace quillbox
