// SPDX-License-Identifier: GPL-3.0-or-later
// Names of files in the making.
#pragma once

#include <string>
#include <string_view>

namespace quillbox {

/// Six random letters or digits.
std::string RandomLetters();
/// ".quillbox-" and six random letters.
std::string RandomTemporaryName();
bool IsTemporaryName(std::string_view name);

}  // namespace quillbox
