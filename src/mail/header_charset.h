// SPDX-License-Identifier: GPL-3.0-or-later
// The charsets by which headers of messages name their bytes, for what is shown and for file names.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "text/code_page.h"

namespace quillbox {

struct EncodedText {
  std::string_view charset;  ///< without regard to case
  std::string_view bytes;
};

/// The bytes as inner text; nothing for a charset that isn't known.
std::optional<std::string> DecodeCharset(const EncodedText& text);

}  // namespace quillbox
