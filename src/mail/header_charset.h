// The charsets by which headers of messages name their bytes, for what is shown and for file names.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "text/code_page.h"

namespace quillbox {

/// `bytes` in the charset of that name (without regard to case) as inner text; nothing for a charset that isn't known.
std::optional<std::string> DecodeCharset(std::string_view charset, std::string_view bytes);

}  // namespace quillbox
