// SPDX-License-Identifier: GPL-3.0-or-later
// The 8-bit text of a Windows system. Only edges of the program use it: .reg files in the 8-bit form, reports, and
// word lists stored in the registry.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quillbox {

/// A Windows ANSI code page by its number ("ACP" under Control\Nls\CodePage of the SYSTEM hive). Copies share state.
class CodePage {
 public:
  static constexpr unsigned kDefault = 1252;

  /// Throws Error for a number that isn't one of Windows' pages for 8-bit text, and for a page that the host doesn't
  /// know.
  explicit CodePage(unsigned number = kDefault);

  unsigned Number() const { return number_; }
  /// True for the double-byte code pages (932, 936, 949, 950).
  bool IsDoubleByte() const;

  /// `bytes` as inner text. A byte without a meaning becomes what Windows makes of it: the control character of its
  /// number below 0xA0, a private one above; a broken double-byte pair becomes U+FFFD.
  std::string Decode(std::string_view bytes) const;
  /// How many of `bytes`, which begin with a whole character, make whole characters: all, or all but the first byte of
  /// a pair whose second one has yet to come.
  std::size_t WholeCharacters(std::string_view bytes) const;
  /// `text` in this code page, or nothing when a character of it has no byte in it (no best fits, no question marks).
  std::optional<std::string> Encode(std::string_view text) const;
  /// `text` in this code page, with '?' for every character that it cannot hold.
  std::string EncodeLossy(std::string_view text) const;

 private:
  struct Tables;
  unsigned number_;
  std::shared_ptr<const Tables> tables_;
};

}  // namespace quillbox
