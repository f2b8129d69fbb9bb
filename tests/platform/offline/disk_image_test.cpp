// SPDX-License-Identifier: GPL-3.0-or-later
// Images with the bytes that count written by hand, from the descriptions of their makers.
#include "platform/offline/disk_image.h"

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace quillbox {
namespace {

/// Bytes at places of a file that is zero elsewhere.
std::string Bytes(std::initializer_list<std::pair<std::size_t, std::string>> parts) {
  std::string bytes(0x40'000, '\0');
  for (const auto& [at, part] : parts) bytes.replace(at, part.size(), part);
  return bytes;
}
const std::string kSignature = {'\x55', '\xAA'};

/// An entry of the PC's partition table; numbers below 65,536.
std::string Entry(char type, unsigned start, unsigned length) {
  const auto number = [](unsigned n) {
    return std::string{static_cast<char>(n & 0xFF), static_cast<char>(n >> 8), '\0', '\0'};
  };
  return std::string(4, '\0') + type + std::string(3, '\0') + number(start) + number(length);
}

TEST(DiskImage, IsAnsweredWithTheCommandThatMountsIt) {
  const TempFolder temp;
  const struct {
    const char* what;
    std::string bytes, command;
  } rows[] = {
      {"NTFS", Bytes({{3, "NTFS    "}, {510, kSignature}}), "sudo mount -o ro,loop 'FILE' /mnt"},
      {"FAT", Bytes({{82, "FAT32   "}, {510, kSignature}}), "sudo mount -o ro,loop 'FILE' /mnt"},
      {"with one NTFS partition", Bytes({{446, Entry(7, 63, 100)}, {510, kSignature}, {63 * 512 + 3, "NTFS    "}}),
       "sudo mount -o ro,loop,offset=32256,sizelimit=51200 'FILE' /mnt"},
      {"with 2 Windows partitions",
       Bytes({{446, Entry(7, 2, 10)},
              {462, Entry(0x0F, 64, 400)},
              {478, Entry('\x83', 20, 10)},  // of another system
              {510, kSignature},
              {2 * 512 + 3, "NTFS    "},
              {64 * 512 + 446, Entry(7, 1, 9)},
              {64 * 512 + 462, Entry(5, 0, 9)},  // leads back to itself
              {64 * 512 + 510, kSignature},
              {65 * 512 + 54, "FAT16   "}}),
       "sudo mkdir -p /mnt/1 /mnt/2 && sudo mount -o ro,loop,offset=1024,sizelimit=5120 'FILE' /mnt/1 && "
       "sudo mount -o ro,loop,offset=33280,sizelimit=4608 'FILE' /mnt/2"},
      {"with one NTFS partition",
       Bytes({{446, Entry('\xEE', 1, 500)},
              {510, kSignature},
              {512, "EFI PART"},
              {512 + 72, std::string("\x02\0\0\0\0\0\0\0\x80\0\0\0\x80", 13)},
              {1024 + 128 + 32, std::string("\x50\0\0\0\0\0\0\0\x5F", 9)},
              {0x50 * 512 + 3, "NTFS    "}}),
       "sudo mount -o ro,loop,offset=40960,sizelimit=8192 'FILE' /mnt"},
      {"a QEMU disk", Bytes({{0, "QFI\xFB"}}),
       "sudo modprobe nbd max_part=16 && sudo qemu-nbd --read-only --connect=/dev/nbd0 'FILE' && sudo mount -o ro "
       "/dev/nbd0p1 /mnt"},
      {"an evidence file", Bytes({{0, "EVF\x09\x0D\x0A\xFF"}}),
       "sudo mkdir -p /mnt/ewf && sudo ewfmount 'FILE' /mnt/ewf"},
      {"a CD-ROM", Bytes({{32769, "CD001"}}), "sudo mount -o ro,loop 'FILE' /mnt"},
  };
  for (const auto& row : rows) {
    const std::string file = temp.File("it's.img", row.bytes).string();
    std::string quoted = file;
    quoted.replace(quoted.find('\''), 1, "'\\''");
    std::string command = row.command;
    for (std::size_t at; (at = command.find("FILE")) != std::string::npos;) command.replace(at, 4, quoted);
    const auto advice = AdviceOnMounting(HostPath(file));
    ASSERT_TRUE(advice) << row.what;
    EXPECT_EQ(advice->what, std::string("the image of a disk (") + row.what + ")");
    EXPECT_EQ(advice->command, command);
  }
  EXPECT_FALSE(AdviceOnMounting(temp.File("mail.dbx", Bytes({{0, "\xCF\xAD\x12\xFE"}, {510, kSignature}}))));
  EXPECT_FALSE(AdviceOnMounting(temp.File("short", "NTFS")));
  EXPECT_FALSE(AdviceOnMounting(HostPath("/dev/zero")));
}

}  // namespace
}  // namespace quillbox
