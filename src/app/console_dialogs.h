// SPDX-License-Identifier: GPL-3.0-or-later
// The dialogs of a program at a terminal: messages go to standard error, and questions are not asked but answered so
// that nothing changes.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/dialogs.h"

namespace quillbox {

class ConsoleDialogs : public Dialogs {
 public:
  MessageAnswer Show(const Message& message) override;
  std::optional<std::string> Input(const std::string& prompt, const std::string& title,
                                   const std::string& proposed) override;
  std::optional<WinPath> OpenFile(const FileDialog& dialog) override;
  std::optional<WinPath> SaveFile(const FileDialog& dialog) override;
  std::optional<WinPath> BrowseForFolder(const FolderDialog& dialog) override;
  OverwriteAnswer AskOverwrite(const OverwriteQuestion& question) override;
  std::unique_ptr<Progress> ShowProgress(const std::string& title) override;
};

}  // namespace quillbox
