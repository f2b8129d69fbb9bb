// SPDX-License-Identifier: GPL-3.0-or-later
// Where things are in a message store (.dbx) of Outlook Express 5 and 6, and in one of Outlook Express 4. Offsets are
// in bytes, numbers little-endian. The sample's writer has its own list: so a slip in one of the two is seen.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillbox {

inline constexpr std::size_t kStoreHeaderSize = 0x24BC;
inline constexpr std::array<std::uint8_t, 4> kStoreSignature = {0xCF, 0xAD, 0x12, 0xFE};
inline constexpr std::size_t kStoreClassAt = 4;
inline constexpr std::uint32_t kMessagesClass = 0x6F74FDC5;
inline constexpr std::uint32_t kFolderListClass = 0x6F74FDC6;
inline constexpr std::size_t kBytesInUseAt = 0x7C;
inline constexpr std::size_t kEntryCountAt = 0xC4;
/// The roots of the trees over all records; the first leads to them in the order of their numbers. A folder list has
/// two more, sorted otherwise.
inline constexpr std::size_t kTreeRootsAt = 0xE4;
inline constexpr std::size_t kTreeRoots = 3;

inline constexpr std::size_t kNodeSize = 0x27C;
inline constexpr std::size_t kNodeFirstChildAt = 0x08;
inline constexpr std::size_t kNodeCountAt = 0x11;
inline constexpr std::size_t kNodeEntriesAt = 0x18;
inline constexpr std::size_t kNodeEntrySize = 12;
inline constexpr std::size_t kMaxNodeEntries = 51;

inline constexpr std::size_t kRecordHeadSize = 12;
inline constexpr std::size_t kRecordLengthAt = 4;
inline constexpr std::size_t kRecordFieldsAt = 0x0A;

inline constexpr std::size_t kSegmentHeadSize = 16;
inline constexpr std::size_t kSegmentRoomAt = 4;
inline constexpr std::size_t kSegmentUsedAt = 8;
inline constexpr std::size_t kSegmentNextAt = 12;
inline constexpr std::uint32_t kSegmentRoom = 0x200;
inline constexpr std::uint32_t kSegmentSize = kSegmentHeadSize + kSegmentRoom;

// Outlook Express 4.
inline constexpr std::array<std::uint8_t, 4> kOldSignature = {'J', 'M', 'F', '6'};
inline constexpr std::size_t kOldHeaderSize = 0x54;
inline constexpr std::size_t kOldCountAt = 8;
inline constexpr std::size_t kOldFileSizeAt = 0x10;
inline constexpr std::uint32_t kOldMessageMark = 0x7F007F00;
inline constexpr std::size_t kOldMessageHeadSize = 16;

}  // namespace quillbox
