// The host's small services under the platform's interfaces.
#pragma once

#include <string>

#include "platform/platform.h"

namespace quillbox {

class SystemClock : public Clock {
 public:
  std::uint64_t Now() override;
};

/// Random (version 4) GUIDs.
class RandomGuids : public Guids {
 public:
  std::string Create() override;
};

/// For programs without a window, which have no clipboard to clear.
class NoClipboard : public Clipboard {
 public:
  void Clear() override {}
};

}  // namespace quillbox
