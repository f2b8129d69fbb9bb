// Numbers put into the bytes of a file, low byte first. The writers of the sample's files share it.
#pragma once

#include <cstdint>
#include <string_view>

#include "text/unicode.h"

namespace quillbox {

inline void AppendNumber(Bytes& bytes, std::uint64_t number, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

inline void PutNumber(Bytes& bytes, std::size_t offset, std::uint32_t number) {
  for (std::size_t i = 0; i < 4; ++i) bytes.at(offset + i) = static_cast<std::uint8_t>(number >> (8 * i));
}

inline void AppendText(Bytes& bytes, std::string_view text) {
  bytes.insert(bytes.end(), text.begin(), text.end());
}

}  // namespace quillbox
