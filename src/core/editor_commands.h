// SPDX-License-Identifier: GPL-3.0-or-later
// The registry editor's command lines for exports and merges. The editor is a process of its own, which is waited for.
#pragma once

#include <optional>
#include <string>

#include "core/os_code.h"
#include "platform/platform.h"

namespace quillbox {

/// How an export's command line writes the key.
enum class KeyForm {
  Quoted,             ///< two blanks, then the key in quotes
  Plain,              ///< two blanks, then the key without quotes
  PlainAfterOneBlank  ///< one blank, then the key without quotes
};

/// A run of the editor that did not do everything, and why: one or more lines.
struct EditorFailure {
  std::string reason;
};

class EditorCommands {
 public:
  explicit EditorCommands(Platform& platform) : platform_(platform) {}

  /// Exports `key` (its full name) to `file`; nothing is started without an OS code. A file that is not there
  /// afterwards, or is still the older one, is a failure whatever the editor says: Windows' own says nothing of a key
  /// that it could not export.
  std::optional<EditorFailure> Export(const std::string& key, const WinPath& file, KeyForm form, OsCode code);
  /// A file that is not there is a failure, whatever the editor says.
  std::optional<EditorFailure> Merge(const WinPath& file);
  /// Runs the editor with a command line of the caller's own.
  std::optional<EditorFailure> Run(const std::string& commandLine);

 private:
  bool WasWritten(const WinPath& file, const std::optional<FileEntry>& before, std::uint64_t started);

  Platform& platform_;
};

}  // namespace quillbox
