// Reports compared byte for byte with files that were read by eye; every_mail_entry.txt and every_news_entry.txt were
// made from the tables of the stored rules' format, not by this program. Run with QUILLBOX_NEW_GOLDEN=1 to write them
// anew, and read what has changed before you commit it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace quillbox {

inline void ExpectGolden(const std::string& name, const std::string& bytes) {
  const std::filesystem::path file = std::filesystem::path(QUILLBOX_GOLDEN_DIR) / name;
  if (std::getenv("QUILLBOX_NEW_GOLDEN")) std::ofstream(file, std::ios::binary) << bytes;
  std::ifstream in(file, std::ios::binary);
  EXPECT_EQ(bytes, std::string(std::istreambuf_iterator<char>(in), {})) << name;
}

}  // namespace quillbox
