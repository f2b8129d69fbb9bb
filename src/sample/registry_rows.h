// SPDX-License-Identifier: GPL-3.0-or-later
// Registry contents as table rows. What the sample's hives hold is data; this turns rows into keys and values.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "registry/hive.h"

namespace quillbox {

enum class RowType : std::uint32_t { Sz = 1, ExpandSz = 2, Binary = 3, Dword = 4, MultiSz = 7 };

struct ValueRow {
  std::string_view key;   ///< below the key that the table is written to; empty for that key itself
  std::string_view name;  ///< empty for the default value
  RowType type = RowType::Sz;
  std::string_view text = {};  ///< Binary: hexadecimal digits; MultiSz: strings with "|" between
  std::uint32_t number = 0;    ///< Dword: the number; Binary: how many arbitrary bytes follow those of `text`
};

constexpr ValueRow Sz(std::string_view key, std::string_view name, std::string_view text) {
  return {key, name, RowType::Sz, text, 0};
}
constexpr ValueRow ExpandSz(std::string_view key, std::string_view name, std::string_view text) {
  return {key, name, RowType::ExpandSz, text, 0};
}
constexpr ValueRow Dword(std::string_view key, std::string_view name, std::uint32_t number) {
  return {key, name, RowType::Dword, {}, number};
}
constexpr ValueRow Binary(std::string_view key, std::string_view name, std::string_view hex, std::uint32_t more = 0) {
  return {key, name, RowType::Binary, hex, more};
}

/// Placeholders in the texts of a table, each with its replacement.
using Placeholders = std::vector<std::pair<std::string_view, std::string>>;

/// `text` with its placeholders replaced.
std::string Filled(std::string_view text, const Placeholders& placeholders);

/// Writes `rows` below `base`, making every key that is missing.
void WriteRows(Hive& hive, HiveKey base, std::span<const ValueRow> rows, const Placeholders& placeholders = {});

void SetText(Hive& hive, HiveKey key, std::string_view name, RowType type, std::string_view text);
void SetNumber(Hive& hive, HiveKey key, std::string_view name, std::uint32_t number);

}  // namespace quillbox
