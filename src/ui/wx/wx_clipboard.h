// SPDX-License-Identifier: GPL-3.0-or-later
// The host's clipboard.
#pragma once

#include "platform/platform.h"

namespace quillbox {

/// For use while the windows run.
class WxClipboard : public Clipboard {
 public:
  void Clear() override;
};

}  // namespace quillbox
