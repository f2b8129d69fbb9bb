// SPDX-License-Identifier: GPL-3.0-or-later
// The lines that mailbox files have of their own, for their writer and their reader.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "mail/line_starts.h"

namespace quillbox {

inline constexpr std::array<std::string_view, 1> kFromWord = {"From "};
inline constexpr LineStarts::Rule kFromRule = {">", kFromWord};

enum class OwnLine { MozillaStatus, MozillaStatus2, MozillaKeys, Status, XStatus };
/// By OwnLine.
inline constexpr std::array<std::string_view, 5> kOwnLines = {
    "X-Mozilla-Status:", "X-Mozilla-Status2:", "X-Mozilla-Keys:", "Status:", "X-Status:"};
inline constexpr LineStarts::Rule kOwnLineRule = {"X-Original-", kOwnLines, true, true};

/// Bits of X-Mozilla-Status.
inline constexpr std::uint32_t kMozillaRead = 0x0001, kMozillaAnswered = 0x0002, kMozillaFlagged = 0x0004,
                               kMozillaForwarded = 0x1000;

}  // namespace quillbox
