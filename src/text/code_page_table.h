// SPDX-License-Identifier: GPL-3.0-or-later
// What is known of Windows' code pages without the host: which there are, which bytes begin a pair, and where Windows'
// tables say something that not every host's converter knows. Data, so apart from the code that uses it. The facts are
// those of Microsoft's published tables ("best fit" tables and the lists of lead bytes).
#pragma once

#include <cstdint>
#include <span>

namespace quillbox {

struct ByteRange {
  std::uint8_t first = 0xFF, last = 0;  ///< as it is: none
};
struct ByteSet {
  ByteRange ranges[2];
  bool Has(unsigned byte) const {
    return (byte >= ranges[0].first && byte <= ranges[0].last) || (byte >= ranges[1].first && byte <= ranges[1].last);
  }
};

/// A code page whose characters have one or two bytes.
struct DoubleBytePage {
  unsigned number;
  ByteSet leads, trails;
};
/// The description of a double-byte page; null for the others.
const DoubleBytePage* FindDoubleBytePage(unsigned number);

/// True for the code pages that a Windows may have for its 8-bit text: its ANSI pages, and the OEM pages that a system
/// can be set to instead. 1361 is not among them: no Windows has it, and the hosts' tables for it differ.
bool IsKnownCodePage(unsigned number);

/// Codes `first` to `last` (a byte, or lead byte * 256 + trail byte) are consecutive characters from `character`.
struct CodeRun {
  unsigned page;
  std::uint16_t first, last;
  char16_t character;
};
/// Single bytes: what Windows has there, whatever the host says.
std::span<const CodeRun> SingleByteRuns();
/// The areas for characters of the user's own, in the order in which they are to be filled: those codes of a run that
/// have no character yet and whose second byte can be one get the next character each.
std::span<const CodeRun> UserDefinedRuns();

/// A character that has several codes, and the code that Windows writes where the hosts don't agree.
struct PreferredCode {
  unsigned page;
  std::uint16_t code;
};
std::span<const PreferredCode> PreferredCodes();

}  // namespace quillbox
