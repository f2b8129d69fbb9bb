// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/creg_entries.h"

#include <algorithm>
#include <array>
#include <utility>

#include "registry/creg_layout.h"
#include "registry/hive_damage.h"

namespace quillbox {

namespace {

std::uint32_t KeyOf(CregReference reference) {
  return static_cast<std::uint32_t>(reference.block) << 16 | reference.number;
}

}  // namespace

void CregFaults::Refuse(std::size_t offset, std::string why) const {
  throw Error("opening the registry file", {.name = hive_.name, .offset = offset, .line = {}}, std::move(why));
}

void CregFaults::OfFile(std::size_t offset, std::string why) {
  if (!AreLeftOut()) Refuse(offset, std::move(why));
  AddDamage(hive_, kWholeFile, offset, std::move(why));
}

void CregFaults::OfKey(KeyCell key, const std::string& value, std::size_t offset, std::string why) {
  if (!AreLeftOut()) Refuse(offset, std::move(why));
  AddKeyDamage(hive_, key, value, offset, std::move(why));
}

std::optional<std::size_t> CregValueLength(ByteView rest) {
  if (rest.size() < CregValue::kHead) return std::nullopt;
  const std::size_t length =
      CregValue::kHead + Load16(rest.data() + CregValue::kNameLength) + Load16(rest.data() + CregValue::kDataLength);
  return length <= rest.size() ? std::optional(length) : std::nullopt;
}

CregEntries::CregEntries(ByteView file, CregFaults& faults) : file_(file), faults_(faults), tries_(file.size()) {
  ReadBlocks();
}

CregFoundEntry* CregEntries::Find(CregReference reference) {
  const auto found = entries_.find(KeyOf(reference));
  return found == entries_.end() ? nullptr : &found->second;
}

void CregEntries::ReadBlocks() {
  std::size_t at = Load32(file_.data() + CregHeader::kBlocks);
  const std::size_t count = Load16(file_.data() + CregHeader::kBlockCount);
  for (std::size_t index = 0; index < count; ++index) {
    const bool isThere = at <= file_.size() && file_.size() - at >= CregBlock::kHead;
    if (!isThere || Load32(file_.data() + at) != kCregBlockTag) {
      faults_.OfFile(std::min(at, file_.size()),
                     isThere ? "there is no block of data here"
                             : "the file ends before block " + std::to_string(index) + " of " + std::to_string(count));
      const std::optional<std::size_t> next = FindBlock(at);
      if (!next) return;
      at = *next;
      index = Load16(file_.data() + at + CregBlock::kNumber);
    }
    const std::uint16_t number = Load16(file_.data() + at + CregBlock::kNumber);
    if (number != index) {
      faults_.OfFile(at + CregBlock::kNumber,
                     "the block's number is " + std::to_string(number) + " and should be " + std::to_string(index));
    }
    const std::optional<std::size_t> end = EndOfBlock(at);
    ReadEntries(
        {at, end ? *end : FindBlock(at + CregBlock::kHead).value_or(file_.size()), static_cast<std::uint16_t>(index)});
    at = end ? *end : FindBlock(at + CregBlock::kHead).value_or(file_.size());
  }
}

/// Where the next block begins, from `from` on.
std::optional<std::size_t> CregEntries::FindBlock(std::size_t from) const {
  if (from >= file_.size()) return std::nullopt;
  constexpr std::array<std::uint8_t, 4> kTag = {'R', 'G', 'D', 'B'};
  const ByteView rest = file_.subspan(from);
  const auto found = std::search(rest.begin(), rest.end(), kTag.begin(), kTag.end());
  if (rest.end() - found < std::ptrdiff_t{CregBlock::kHead}) return std::nullopt;
  return from + static_cast<std::size_t>(found - rest.begin());
}

/// Nothing where the block's length is damaged.
std::optional<std::size_t> CregEntries::EndOfBlock(std::size_t at) {
  const std::size_t length = Load32(file_.data() + at + CregBlock::kLength);
  if (length >= CregBlock::kHead && length <= file_.size() - at) return at + length;
  faults_.OfFile(at + CregBlock::kLength,
                 length < CregBlock::kHead
                     ? "the block's length, " + std::to_string(length) + " bytes, is wrong"
                     : "the file ends within the block, which is to be " + std::to_string(length) + " bytes long");
  return std::nullopt;
}

void CregEntries::ReadEntries(const Block& block) {
  std::size_t at = block.offset + CregBlock::kHead;
  // A remainder that is too short for an entry is room that nothing uses.
  while (block.end - at >= CregEntry::kHead) {
    const std::uint8_t* entry = file_.data() + at;
    const std::size_t length = Load32(entry + CregEntry::kLength);
    const std::uint16_t number = Load16(entry + CregEntry::kNumber);
    const bool isFree = number == kNoCregEntry;
    if (length < (isFree ? CregEntry::kUsed : CregEntry::kHead) || length > block.end - at) {
      faults_.OfFile(at, "the length of an entry, " + std::to_string(length) + " bytes, is wrong");
      at = FindEntry(at + 1, block);
      continue;
    }
    if (!isFree && !entries_.try_emplace(KeyOf({block.number, number}), CregFoundEntry{at, length}).second) {
      faults_.OfFile(at + CregEntry::kNumber, "another entry of the block has the number " + std::to_string(number));
    }
    at += length;
  }
}

/// Where the next entry may begin, from `from` on; the block's end when there is none.
std::size_t CregEntries::FindEntry(std::size_t from, const Block& block) {
  while (from < block.end && tries_ > 0 && !LooksLikeEntry(from, block)) ++from;
  return tries_ > 0 ? from : block.end;
}

/// True for an entry that is whole: its values fill just what it says that it uses.
bool CregEntries::LooksLikeEntry(std::size_t at, const Block& block) {
  --tries_;
  if (block.end - at < CregEntry::kHead) return false;
  const std::uint8_t* entry = file_.data() + at;
  const std::size_t length = Load32(entry + CregEntry::kLength);
  const std::size_t used = Load32(entry + CregEntry::kUsed);
  const std::size_t name = Load16(entry + CregEntry::kNameLength);
  if (length > block.end - at || used > length || Load16(entry + CregEntry::kBlock) != block.number || name == 0 ||
      used < CregEntry::kHead + name || Load16(entry + CregEntry::kNumber) == kNoCregEntry) {
    return false;
  }
  ByteView rest = file_.subspan(at, used).subspan(CregEntry::kHead + name);
  for (std::size_t left = Load16(entry + CregEntry::kValueCount); left > 0; --left) {
    const std::optional<std::size_t> value = CregValueLength(rest);
    if (!value || tries_ == 0) return false;
    --tries_;
    rest = rest.subspan(*value);
  }
  return rest.empty();
}

}  // namespace quillbox
