// SPDX-License-Identifier: GPL-3.0-or-later
// The one exception type of the program. Every layer throws it with the same three facts, so that the place which
// shows an error never has to guess: what was being done, to which file or key (and where in it), and why it failed.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace quillbox {

/// The file or registry key that an error is about, with the position in it where that is known.
struct ErrorPlace {
  std::string name;                     ///< host file, Windows path or registry key, as a person would write it
  std::optional<std::uint64_t> offset;  ///< bytes from the start of the file
  std::optional<std::uint64_t> line;    ///< line number from 1
};

class Error : public std::runtime_error {
 public:
  /// `doing` completes "while …" ("opening the hive"); `why` is a clause without a final full stop.
  Error(std::string doing, ErrorPlace place, std::string why);

  const std::string& Doing() const { return doing_; }
  const ErrorPlace& Place() const { return place_; }
  const std::string& Why() const { return why_; }

 private:
  std::string doing_;
  ErrorPlace place_;
  std::string why_;
};

/// The words of an error in one line, whatever characters its names hold (OneLine), an over-long place shortened
/// (ShortName): "C:\x.dat, offset 0x20: the checksum is wrong (while opening the hive)".
std::string Describe(const Error& error);

/// The operating system's reason for `code` (an errno), in its own words without the call's name.
std::string SystemReason(int code);

}  // namespace quillbox
