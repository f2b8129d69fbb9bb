// SPDX-License-Identifier: GPL-3.0-or-later
// A registry key that was to be written to a file, and how that ended.
#pragma once

#include <string>

#include "text/win_path.h"

namespace quillbox {

struct KeyExport {
  enum class End {
    Written,
    NothingThere,  ///< the key does not exist
    NotStarted,    ///< the kind of Windows is not known, so that there is no command line for it
    Failed,
  };
  std::string key;  ///< its full name
  WinPath file;     ///< full
  End end = End::Written;
  std::string reason;  ///< Failed: one or more lines
};

}  // namespace quillbox
