// SPDX-License-Identifier: GPL-3.0-or-later
// The loop that backups and restores of message stores share: which of a folder's files are copied, and what the status
// bar says of each.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace quillbox {

/// The program-wide overwrite setting: whether copies replace existing files without asking. Each command that copies
/// reads it from the main window's check box when it starts.
using OverwriteSetting = bool;

enum class Pop3Uidl { Skip, Copy };

/// True when a message store file belongs into a backup: HasFullStop is false for it, and it is not "Pop3uidl.dbx"
/// unless that is wanted.
bool IsStoreFileToCopy(const std::string& name, Pop3Uidl pop3Uidl);
/// Whether a file's name, less its last four characters, holds a full stop.
bool HasFullStop(const std::string& name);

/// Receives the texts that a running command shows in the status bar's first panel.
using StatusSink = std::function<void(const std::string&)>;

/// Something that a command did not try to copy, and why.
struct LeftOut {
  enum class Kind {
    Identity,      ///< all of it
    MessageStore,  ///< not even its files are known
    AddressBook,
    NameWithFullStop,
  };
  Kind kind;
  std::string what;  ///< the full path of a file; otherwise words ("the messages of ...")
  std::string why;   ///< a clause
};

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

  void LeaveOut(LeftOut what);
  /// What was not even tried, in order.
  const std::vector<LeftOut>& GetLeftOut() const { return leftOut_; }
  /// The same in numbers, for a status bar.
  std::vector<std::string> Notes() const;

 private:
  bool Qualifies(const StoreCopy& copy, const std::string& name);

  Platform& platform_;
  StatusSink status_;
  std::vector<LeftOut> leftOut_;
};

}  // namespace quillbox
