// SPDX-License-Identifier: GPL-3.0-or-later
// Small services that need nothing but the computer itself.
#pragma once

#include "platform/platform.h"

namespace quillbox {

class SystemClock : public Clock {
 public:
  std::uint64_t Now() override;
};

/// For programs without a window, which have no clipboard to clear.
class NoClipboard : public Clipboard {
 public:
  void Clear() override {}
};

}  // namespace quillbox
