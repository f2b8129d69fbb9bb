// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/registry_rows.h"

#include <algorithm>

#include "text/byte_order.h"

namespace quillbox {
namespace {

unsigned HexDigit(char c) {
  return static_cast<unsigned>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
}

Bytes BinaryData(const ValueRow& row) {
  Bytes data;
  for (std::size_t i = 0; i + 1 < row.text.size(); i += 2) {
    data.push_back(static_cast<std::uint8_t>(HexDigit(row.text[i]) << 4 | HexDigit(row.text[i + 1])));
  }
  std::uint32_t state = row.number * 2654435761u;
  for (std::uint32_t i = 0; i < row.number; ++i) {
    state = state * 1664525u + 1013904223u;
    data.push_back(static_cast<std::uint8_t>(state >> 24));
  }
  return data;
}

void WriteRow(Hive& hive, HiveKey key, const ValueRow& row, const Placeholders& placeholders) {
  switch (row.type) {
    case RowType::Dword:
      SetNumber(hive, key, row.name, row.number);
      break;
    case RowType::Binary:
      hive.SetValue(key, row.name, static_cast<std::uint32_t>(row.type), BinaryData(row));
      break;
    default:
      SetText(hive, key, row.name, row.type, Filled(row.text, placeholders));
  }
}

}  // namespace

std::string Filled(std::string_view text, const Placeholders& placeholders) {
  std::string filled(text);
  for (const auto& [word, replacement] : placeholders) {
    for (std::size_t at = filled.find(word); at != std::string::npos; at = filled.find(word, at + replacement.size())) {
      filled.replace(at, word.size(), replacement);
    }
  }
  return filled;
}

void SetText(Hive& hive, HiveKey key, std::string_view name, RowType type, std::string_view text) {
  std::u16string units = ToUtf16(text);
  if (type == RowType::MultiSz) {
    std::replace(units.begin(), units.end(), u'|', u'\0');
    if (!units.empty()) units += u'\0';
  }
  units += u'\0';
  hive.SetValue(key, name, static_cast<std::uint32_t>(type), Utf16Bytes(units));
}

void SetNumber(Hive& hive, HiveKey key, std::string_view name, std::uint32_t number) {
  hive.SetValue(key, name, static_cast<std::uint32_t>(RowType::Dword), NumberBytes(number));
}

void WriteRows(Hive& hive, HiveKey base, std::span<const ValueRow> rows, const Placeholders& placeholders) {
  for (const ValueRow& row : rows)
    WriteRow(hive, hive.CreatePath(base, Filled(row.key, placeholders)), row, placeholders);
}

}  // namespace quillbox
