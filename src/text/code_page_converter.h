// SPDX-License-Identifier: GPL-3.0-or-later
// What the program needs of the host to know a code page: one character at a time, no more. The tables are made of it
// once, and code_page.cpp has the rules, so that the same bytes mean the same on every host.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quillbox {

class CodePageConverter {
 public:
  CodePageConverter() = default;
  CodePageConverter(const CodePageConverter&) = delete;
  CodePageConverter& operator=(const CodePageConverter&) = delete;
  virtual ~CodePageConverter() = default;

  /// The UTF-16 unit that `bytes`, one or two of them, are; nothing when they aren't one whole character.
  virtual std::optional<char16_t> Decode(std::string_view bytes) = 0;
  /// The bytes of `unit`; nothing when the page has none for it. Best fits count as none.
  virtual std::optional<std::string> Encode(char16_t unit) = 0;
};

/// The host's converter for a Windows code page; nothing when the host has no table for it. Each host has its own, in
/// posix/ and win32/.
std::unique_ptr<CodePageConverter> OpenCodePage(unsigned number);

}  // namespace quillbox
