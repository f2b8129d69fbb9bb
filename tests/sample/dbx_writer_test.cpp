#include "sample/dbx_writer.h"

#include <gtest/gtest.h>

#include "text/byte_order.h"
#include "text/error.h"

namespace quillbox {
namespace {

std::uint32_t Number(const Bytes& file, std::size_t offset) {
  (void)file.at(offset + 3);
  return Load32(&file[offset]);
}

/// The records in the tree's order, as its readers walk it; checks what the nodes say about each other.
void Walk(const Bytes& file, std::uint32_t node, std::uint32_t parent, std::vector<std::uint32_t>& records) {
  EXPECT_EQ(Number(file, node), node);
  EXPECT_EQ(Number(file, node + 0x0C), parent);
  const auto child = [&](std::size_t pointerAt, std::size_t countAt) {
    const std::size_t before = records.size();
    if (Number(file, pointerAt) != 0) Walk(file, Number(file, pointerAt), node, records);
    EXPECT_EQ(Number(file, countAt), records.size() - before);
  };
  child(node + 0x08, node + 0x14);
  for (std::size_t i = 0; i < file.at(node + 0x11); ++i) {
    const std::size_t entry = node + 0x18 + 12 * i;
    records.push_back(Number(file, entry));
    child(entry + 4, entry + 8);
  }
}

std::string TextAt(const Bytes& file, std::uint32_t segment) {
  std::string text;
  while (segment != 0) {
    EXPECT_EQ(Number(file, segment), segment);
    const std::uint32_t used = Number(file, segment + 8);
    text.append(file.begin() + segment + 16, file.begin() + segment + 16 + used);
    segment = Number(file, segment + 12);
  }
  return text;
}

TEST(DbxWriter, TheTreeLeadsToEveryMessageInOrder) {
  for (const std::size_t count : {0u, 1u, 51u, 52u, 103u, 104u, 700u, 2703u}) {
    std::vector<DbxMessage> messages(count);
    for (std::size_t i = 0; i < count; ++i) messages[i].text = std::string(1 + i * 7 % 1500, 'a') + std::to_string(i);
    const Bytes file = MessageStore(messages);
    EXPECT_EQ(Number(file, 0x7C), file.size());
    EXPECT_EQ(Number(file, 0xC4), count);
    std::vector<std::uint32_t> records;
    if (count != 0) Walk(file, Number(file, 0xE4), 0, records);
    ASSERT_EQ(records.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(Number(file, records[i]), records[i]);
      ASSERT_EQ(file.at(records[i] + 12 + 4 * 4), 0x84) << "the field that says where the text is";
      EXPECT_EQ(TextAt(file, Number(file, records[i] + 12 + 4 * 4) >> 8), messages[i].text);
    }
  }
  EXPECT_THROW(MessageStore(std::vector<DbxMessage>(kMaxDbxRecords + 1)), Error);
}

}  // namespace
}  // namespace quillbox
