// SPDX-License-Identifier: GPL-3.0-or-later
// Hive files with faults of a known kind, made from sound ones.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>

#include "registry/hive.h"
#include "registry/hive_layout.h"

namespace quillbox {

inline Bytes ReadBytes(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void WriteBytes(const std::filesystem::path& file, const Bytes& bytes) {
  std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
}

/// Makes each of the keys, which must have none below them, no key any more: a fault that concerns one key.
inline void DamageKeys(const std::filesystem::path& file, std::initializer_list<std::string_view> paths) {
  Bytes bytes = ReadBytes(file);
  const Hive hive = Hive::Load(bytes, file.string());
  for (const std::string_view path : paths) {
    const std::optional<HiveKey> key = hive.Find(hive.Root(), path);
    ASSERT_TRUE(key) << path;
    bytes[kHivePage + key->cell + kCellHeader] = 'x';
  }
  WriteBytes(file, bytes);
}

/// Makes the hive one that was being written when the power failed.
inline void LeaveUnclosed(const std::filesystem::path& file) {
  Bytes bytes = ReadBytes(file);
  Store32(bytes.data() + BaseField::kSequence1, Load32(bytes.data() + BaseField::kSequence2) + 1);
  Store32(bytes.data() + BaseField::kChecksum, BaseChecksum(bytes.data()));
  WriteBytes(file, bytes);
}

}  // namespace quillbox
