// SPDX-License-Identifier: GPL-3.0-or-later
// What a command asks the shell to copy, and the outcome. A type of its own, since "not copied" has many reasons and
// the user must see the right one.
#pragma once

#include <cstdint>
#include <string>

#include "text/win_path.h"

namespace quillbox {

/// Whether further files follow, so that it makes sense to ask "go on with the other files?".
enum class CopyPart { OnlyFile, OneOfSeveral };

struct CopyRequest {
  WinPath source;
  WinPath target;          ///< a file, or a folder for a file in it with the source's name
  bool noConfirm = false;  ///< a file of that name is replaced without a question
  CopyPart part = CopyPart::OneOfSeveral;
};

enum class CopyEnd {
  Copied,
  KeptDamaged,  ///< parts could not be read; the rest is in a separate file
  LeftOut,      ///< parts could not be read, and the person wants no such copies
  NotReplaced,  ///< the person said No to the overwrite question
  Cancelled,    ///< the person stopped this copy, or an earlier one of its step or of the command
  Failed,
};

struct CopyResult {
  WinPath source;
  WinPath target;          ///< the file, or what is in its place
  std::uint64_t size = 0;  ///< of the source, in bytes
  CopyEnd end = CopyEnd::Failed;
  std::string keptAs;  ///< KeptDamaged: the file's name
  std::string reason;  ///< Cancelled and Failed: a clause ("the disk is full")
};

}  // namespace quillbox
