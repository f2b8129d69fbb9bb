// The loop that backups and restores of message stores share: which of a folder's files are copied, and what the status
// bar says of each.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "platform/platform.h"

namespace quillbox {

/// The program-wide overwrite setting: whether copies replace existing files without asking. Each command that copies
/// reads it from the main window's check box when it starts.
using OverwriteSetting = bool;

enum class Pop3Uidl { Skip, Copy };

/// True when a message store file belongs into a backup: its name, less the last four characters, holds no full stop,
/// and it is not "Pop3uidl.dbx" unless that is wanted.
bool IsStoreFileToCopy(const std::string& name, Pop3Uidl pop3Uidl);

/// Receives the texts that a running command shows in the status bar's first panel.
using StatusSink = std::function<void(const std::string&)>;

/// The .dbx files of one folder, and where they go.
struct StoreCopy {
  WinPath from;
  WinPath to;
  Pop3Uidl pop3Uidl = Pop3Uidl::Skip;
  OverwriteSetting overwrite = false;
  const char* done;  ///< what the status says after each file's name
};

class StoreCopier {
 public:
  StoreCopier(Platform& platform, StatusSink status) : platform_(platform), status_(std::move(status)) {}

  /// Begins to copy the files, in the file system's order.
  void Copy(const StoreCopy& copy);
  void Show(const std::string& status) const { status_(status); }

  /// Counts message stores of which not even the files are known, so that nothing of them is copied.
  void AddMissing(std::size_t stores) { missing_ += stores; }
  std::size_t Missing() const { return missing_; }

 private:
  Platform& platform_;
  StatusSink status_;
  std::size_t missing_ = 0;
};

}  // namespace quillbox
