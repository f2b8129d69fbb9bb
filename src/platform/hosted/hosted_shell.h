// SPDX-License-Identifier: GPL-3.0-or-later
// The shell over files of the host: copies them, and opens folders and pages with the host's own programs. Failures are
// shown to the person.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/hosted/copy_command.h"
#include "platform/hosted/copy_io.h"
#include "platform/hosted/hosted_files.h"
#include "platform/hosted/opener.h"
#include "platform/platform.h"

namespace quillbox {

class HostedShell : public Shell {
 public:
  /// All must outlive the shell. `opener` is the host's program that opens a folder or a page given as its argument,
  /// `io` the calls that copies make.
  HostedShell(HostedFiles& files, SystemFacts& facts, Dialogs& dialogs, Log& log, std::string opener = kSystemOpener,
              std::unique_ptr<CopyIo> io = std::make_unique<CopyIo>());
  ~HostedShell() override;
  HostedShell(const HostedShell&) = delete;
  HostedShell& operator=(const HostedShell&) = delete;

  void Explore(const WinPath& folder, const std::string& parameters) override;
  void OpenUrl(const std::string& url) override;
  void OpenManual() override;
  void BeginCopyStep() override;
  void CopyFile(const CopyRequest& request) override;
  std::vector<CopyResult> FinishCopies() override;

  /// Waits for the copies, forgets what was answered for all of them, and takes the progress display away.
  void EndCommand();

 protected:
  /// Shows a folder that is there.
  virtual void ShowFolder(const HostPath& folder, const std::string& parameters);

 private:
  HostedFiles& files_;
  SystemFacts& facts_;
  Dialogs& dialogs_;
  Log& log_;
  Opener opener_;
  std::unique_ptr<CopyIo> io_;
  std::optional<CopyCommand> copies_;  ///< of the running command; none before its first
};

}  // namespace quillbox
