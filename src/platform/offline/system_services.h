// Small services: the clock, GUIDs, facts of the registry, a clipboard for programs without a window.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/offline/environment.h"
#include "platform/platform.h"
#include "text/code_page.h"

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

/// What the disk's registry says about its Windows.
class RegistryFacts : public SystemFacts {
 public:
  explicit RegistryFacts(Environment environment = {}, unsigned codePage = CodePage::kDefault)
      : environment_(std::move(environment)), codePage_(codePage) {}
  std::string ExpandEnvironment(std::string_view text) override { return environment_.Expand(text); }
  unsigned CodePageNumber() override { return codePage_; }

 private:
  Environment environment_;
  unsigned codePage_;
};

/// For programs without a window, which have no clipboard to clear.
class NoClipboard : public Clipboard {
 public:
  void Clear() override {}
};

}  // namespace quillbox
