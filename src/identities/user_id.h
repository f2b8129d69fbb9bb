// SPDX-License-Identifier: GPL-3.0-or-later
// {USER_ID}s: the names under which the registry keeps identities.
#pragma once

#include <cstdint>
#include <string_view>

namespace quillbox {

/// The characters of a {USER_ID}, braces included.
inline constexpr std::size_t kUserIdLength = 38;
/// The {USER_ID} that stands for "ask which identity".
inline constexpr const char* kNobody = "{00000000-0000-0000-0000-000000000000}";

/// True for a GUID in registry form, in either case: "{", 8-4-4-4-12 hexadecimal digits, "}".
bool IsUserId(std::string_view text);

/// The number that the first eight hexadecimal digits of a {USER_ID} write, which its identity has as "Directory Name".
std::uint32_t DirectoryNumber(std::string_view userId);

}  // namespace quillbox
