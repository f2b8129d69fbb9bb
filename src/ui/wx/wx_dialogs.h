// SPDX-License-Identifier: GPL-3.0-or-later
// Questions and messages as the host's own dialogs, above the active window.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/host_path.h"
#include "platform/dialogs.h"
#include "platform/host_paths.h"
#include "text/win_path.h"

namespace quillbox {

/// For use while the windows run.
class WxDialogs : public Dialogs {
 public:
  /// The file dialogs show the host's folders; `paths` translates the answers into Windows paths. A file that is not on
  /// any drive of the disk is refused with a message.
  explicit WxDialogs(const HostPaths& paths);
  ~WxDialogs() override;
  /// `paths` translates from now on: another disk has been opened.
  void UseHostPaths(const HostPaths& paths) { paths_ = &paths; }

  MessageAnswer Show(const Message& message) override;
  std::optional<std::string> Input(const std::string& prompt, const std::string& title,
                                   const std::string& proposed) override;
  std::optional<WinPath> OpenFile(const FileDialog& dialog) override;
  std::optional<WinPath> SaveFile(const FileDialog& dialog) override;
  std::optional<WinPath> BrowseForFolder(const FolderDialog& dialog) override;
  OverwriteAnswer AskOverwrite(const OverwriteQuestion& question) override;
  std::unique_ptr<Progress> ShowProgress(const std::string& title) override;
  void Meanwhile(const std::function<bool()>& step) override;

 private:
  std::optional<WinPath> AskForFile(const FileDialog& dialog, long style);
  bool MayReplace(const WinPath& file);
  std::optional<WinPath> Answer(const HostPath& chosen);

  /// Calls the steps of Meanwhile().
  class Steps;

  const HostPaths* paths_;
  std::unique_ptr<Steps> steps_;
};

}  // namespace quillbox
