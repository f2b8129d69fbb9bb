// SPDX-License-Identifier: GPL-3.0-or-later
// What every registry does alike with the data of values: text is stored as UTF-16 and given and taken as inner text.
#pragma once

#include <optional>
#include <span>

#include "platform/registry.h"

namespace quillbox {

/// Stored bytes as the program takes them, and back. Types other than text stay as they are.
Bytes FromStored(ValueType type, Bytes stored);
Bytes ToStored(ValueType type, ByteView data);

/// Registry::Query's answer for a value that is there, of which `data` is what the program takes.
QueryResult AnswerQuery(ValueType type, ByteView data, std::optional<std::span<std::uint8_t>> buffer);

}  // namespace quillbox
