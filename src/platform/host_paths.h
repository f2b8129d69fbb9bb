// SPDX-License-Identifier: GPL-3.0-or-later
// Where the host keeps what a Windows path names. Only code that works with the host's own dialogs and
// programs needs it; everything else works on WinPaths.
#pragma once

#include "host/host_path.h"
#include "text/win_path.h"

namespace quillbox {

class HostPaths {
 public:
  virtual ~HostPaths() = default;
  /// The host's path of `path`, whether or not anything is there; empty when its drive is not there.
  virtual HostPath HostPathOf(const WinPath& path) const = 0;
  /// The Windows path under which the host's absolute `path` is seen; empty when no drive shows it.
  virtual WinPath WindowsPathOf(const HostPath& path) const = 0;
};

}  // namespace quillbox
