// SPDX-License-Identifier: GPL-3.0-or-later
// Facts about the Windows that is worked on.
#pragma once

#include <string>
#include <string_view>

namespace quillbox {

class SystemFacts {
 public:
  virtual ~SystemFacts() = default;
  /// `text` with its %VARIABLES% replaced; one that is not set stays as it is written.
  virtual std::string ExpandEnvironment(std::string_view text) = 0;
  /// The system's 8-bit code page, by its number.
  virtual unsigned CodePageNumber() = 0;
};

}  // namespace quillbox
