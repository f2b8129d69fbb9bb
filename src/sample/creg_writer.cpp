// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/creg_writer.h"

#include <algorithm>
#include <utility>

#include "text/byte_order.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::uint32_t kNone = 0xFFFFFFFF;
constexpr std::size_t kHead = 32;  // of the file, of the tree and of a block
constexpr std::size_t kNode = 28;
constexpr std::size_t kPage = 0x1000;
constexpr std::size_t kNodePages = 0x2000;  // no node lies across a multiple of this
constexpr std::size_t kUsualBlock = 0xC000;
constexpr std::size_t kMostEntries = 255;
constexpr std::size_t kEntrySpace = 13;  // what an entry has to spare, as real ones do after changes
constexpr std::size_t kMostCounted = 0xFFFF;

std::size_t RoundedUp(std::size_t size, std::size_t unit) {
  return (size + unit - 1) / unit * unit;
}

void Append(Bytes& bytes, std::string_view text) {
  for (const char c : text) bytes.push_back(static_cast<std::uint8_t>(c));
}

/// A number of 16 bits.
void AppendCount(Bytes& bytes, std::size_t count) {
  if (count > kMostCounted)
    throw Error("making a registry file", {}, "16 bits cannot count to " + std::to_string(count));
  AppendNumber<2>(bytes, count);
}

/// The sum of the capital letters, and other characters, of ASCII.
std::uint32_t HashOf(std::string_view name) {
  std::uint32_t sum = 0;
  for (const char c : name) {
    if (static_cast<unsigned char>(c) < 0x80) sum += static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 32 : c);
  }
  return sum;
}

/// The blocks, and what is in the last one so far.
class Blocks {
 public:
  struct Spot {
    std::size_t number = 0;
    std::size_t block = 0;
  };

  Spot Add(const CregFileKey& key) {
    Bytes content;
    AppendCount(content, key.name.size());
    AppendCount(content, key.values.size());
    AppendNumber<4>(content, 0);
    Append(content, key.name);
    for (const CregFileValue& value : key.values) {
      AppendNumber<4>(content, value.type);
      AppendNumber<4>(content, 0);
      AppendCount(content, value.name.size());
      AppendCount(content, value.data.size());
      Append(content, value.name);
      Append(content, value.data);
    }
    constexpr std::size_t kBefore = 12;
    const std::size_t used = kBefore + content.size();
    if (entries_ == kMostEntries || (entries_ > 0 && entriesOf_.size() + used > kUsualBlock)) Close();
    AppendNumber<4>(entriesOf_, used + kEntrySpace);
    AppendNumber<2>(entriesOf_, entries_);
    AppendCount(entriesOf_, count_);
    AppendNumber<4>(entriesOf_, used);
    entriesOf_.insert(entriesOf_.end(), content.begin(), content.end());
    entriesOf_.resize(entriesOf_.size() + kEntrySpace);
    return {entries_++, count_};
  }

  /// Ends the last block.
  void Close() {
    if (entries_ == 0) return;
    constexpr std::size_t kFreeEntry = 12;
    const std::size_t length = RoundedUp(kHead + entriesOf_.size() + kFreeEntry, kPage);
    const std::size_t unused = length - kHead - entriesOf_.size();
    Append(bytes_, "RGDB");
    AppendNumber<4>(bytes_, length);
    AppendNumber<4>(bytes_, unused);
    AppendNumber<2>(bytes_, 0x0D);
    AppendNumber<2>(bytes_, count_);
    AppendNumber<4>(bytes_, length - unused);
    AppendNumber<2>(bytes_, entries_ - 1);
    AppendNumber<2>(bytes_, entries_);
    AppendNumber<8>(bytes_, 0);
    bytes_.insert(bytes_.end(), entriesOf_.begin(), entriesOf_.end());
    AppendNumber<4>(bytes_, unused);
    AppendNumber<8>(bytes_, ~std::uint64_t{0});
    bytes_.resize(bytes_.size() + unused - kFreeEntry);
    entriesOf_.clear();
    entries_ = 0;
    ++count_;
  }

  const Bytes& File() const { return bytes_; }
  std::size_t Count() const { return count_; }

 private:
  Bytes bytes_;
  Bytes entriesOf_;  // the block that is being filled
  std::size_t entries_ = 0;
  std::size_t count_ = 0;
};

class Writer {
 public:
  explicit Writer(const CregFileKey& root) : tree_(kHead) { Add(root, kNone); }

  Bytes File() {
    blocks_.Close();
    const std::size_t end = tree_.size();
    const std::size_t length = RoundedUp(end + 1, kPage);
    tree_.resize(length);
    // What is left is one free node.
    if (length - end >= kNode) {
      Store32(&tree_[end], 0x80000000);
      Store32(&tree_[end + 4], static_cast<std::uint32_t>(length - end));
      Store32(&tree_[end + 8], kNone);
    }
    Bytes head;
    Append(head, "RGKN");
    AppendNumber<4>(head, length);
    AppendNumber<4>(head, kHead);
    std::copy(head.begin(), head.end(), tree_.begin());

    Bytes file;
    Append(file, "CREG");
    AppendNumber<4>(file, 0x00010000);
    AppendNumber<4>(file, kHead + length);
    AppendNumber<4>(file, 0);
    AppendCount(file, blocks_.Count());
    file.resize(kHead);
    file.insert(file.end(), tree_.begin(), tree_.end());
    file.insert(file.end(), blocks_.File().begin(), blocks_.File().end());
    return file;
  }

 private:
  /// Where the key's node is.
  std::uint32_t Add(const CregFileKey& key, std::uint32_t parent) {
    if (tree_.size() / kNodePages != (tree_.size() + kNode - 1) / kNodePages) {
      tree_.resize(RoundedUp(tree_.size(), kNodePages));
    }
    const auto node = static_cast<std::uint32_t>(tree_.size());
    AppendNumber<4>(tree_, 0);
    AppendNumber<4>(tree_, HashOf(key.name));
    AppendNumber<4>(tree_, kNone);
    AppendNumber<4>(tree_, parent);
    AppendNumber<8>(tree_, ~std::uint64_t{0});
    if (key.hasEntry) {
      const Blocks::Spot spot = blocks_.Add(key);
      AppendCount(tree_, spot.number);
      AppendCount(tree_, spot.block);
    } else {
      AppendNumber<4>(tree_, kNone);
    }
    std::size_t link = node + 16;  // to the first subkey, then from each to the next
    for (const CregFileKey& subkey : key.subkeys) {
      const std::uint32_t added = Add(subkey, node);
      Store32(&tree_[link], added);
      link = added + 20;
    }
    return node;
  }

  Bytes tree_;
  Blocks blocks_;
};

bool IsText(std::uint32_t type) {
  return type == 1 || type == 2 || type == 7;
}

}  // namespace

Bytes CregFile(const CregFileKey& root) {
  return Writer(root).File();
}

CregFileKey CregKeyOf(const Hive& hive, HiveKey key, const CodePage& codePage) {
  CregFileKey made{.name = codePage.EncodeLossy(hive.Name(key))};
  for (std::size_t at = 0; at < hive.ValueCount(key); ++at) {
    const HiveValue value = hive.ValueAt(key, at);
    std::string data(value.data.begin(), value.data.end());
    if (IsText(value.type)) {
      data = codePage.EncodeLossy(ToUtf8(Utf16FromBytes(value.data)));
      if (data.ends_with('\0')) data.pop_back();
    }
    made.values.push_back({codePage.EncodeLossy(value.name), value.type, std::move(data)});
  }
  for (const HiveKey subkey : hive.Subkeys(key)) made.subkeys.push_back(CregKeyOf(hive, subkey, codePage));
  return made;
}

}  // namespace quillbox
