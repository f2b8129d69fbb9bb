// SPDX-License-Identifier: GPL-3.0-or-later
// Small services: GUIDs, and facts of the registry.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/offline/environment.h"
#include "platform/platform.h"
#include "text/code_page.h"

namespace quillbox {

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

}  // namespace quillbox
