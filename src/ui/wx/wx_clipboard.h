// The host's clipboard.
#pragma once

#include "platform/platform.h"

namespace quillbox {

/// To be used while the windows run.
class WxClipboard : public Clipboard {
 public:
  void Clear() override;
};

}  // namespace quillbox
