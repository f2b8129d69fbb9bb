// SPDX-License-Identifier: GPL-3.0-or-later
// The name of a copy that could not be read in full, and the list of what it lacks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/hosted/file_copy.h"

namespace quillbox {

/// "Inbox (damaged).dbx" for "Inbox.dbx"; from `number` 2 on "Inbox (damaged 2).dbx".
std::string DamagedName(std::string_view name, unsigned number);
/// The list that belongs to a damaged copy: "Inbox (damaged).txt".
std::string MissingListName(std::string_view damagedName);

/// The bytes of all ranges.
std::uint64_t LengthOf(const std::vector<ByteRange>& ranges);
/// What `damagedName` lacks of `source`, which has `size` bytes: a text for people, one range a line.
std::string MissingList(std::string_view damagedName, std::string_view source, std::uint64_t size,
                        const std::vector<ByteRange>& missing);

/// True when the file in the making holds the same bytes as the one at that place.
bool HoldsTheSame(NewFile& file, const HostPlace& other);

}  // namespace quillbox
