// SPDX-License-Identifier: GPL-3.0-or-later
// Carries a registry file over to another identity: the first {USER_ID} in it is replaced wherever it occurs. The file
// passes through once, piece by piece, so its size does not matter; it keeps its encoding.
#pragma once

#include <optional>
#include <string>

#include "platform/file_system.h"
#include "platform/system_facts.h"

namespace quillbox {

/// Lines up to this length are searched whole; a longer one is treated as several lines.
inline constexpr std::size_t kMaxLineBytes = std::size_t{1} << 20;

/// The file that a replacement makes of `input`: "New", the name up to its first full stop and ".reg", in
/// `backupFolder`.
WinPath ReplacedFile(const WinPath& backupFolder, const WinPath& input);

/// The {USER_ID} that a replacement would replace: the 38 characters from the first "{" in the file, or as many as the
/// line has. Nothing without any "{". Throws Error when the file cannot be read.
std::optional<std::string> FindOldUserId(FileSystem& files, SystemFacts& facts, const WinPath& input);

struct UserIdReplacement {
  WinPath input;
  WinPath output;
  std::string userId;  ///< the new one
};
/// Why a replacement is not made: a sentence for the user.
struct ReplacementRefusal {
  std::string sentence;
  const std::string& Sentence() const { return sentence; }
};
/// Why nothing useful can be made of the input or written to the output; nothing when it can. Throws Error when the
/// input cannot be read.
std::optional<ReplacementRefusal> RefusalOf(FileSystem& files, SystemFacts& facts, const UserIdReplacement& what);
/// Writes the output, whole or not at all: each line of the input that holds the old {USER_ID} exactly has it replaced
/// by `userId` in whatever case it occurs there; the other lines stay. Lines end with CR LF. A file without an old
/// {USER_ID} is copied as it is. Throws Error when a file cannot be read or written, or when the input's encoding
/// cannot hold `userId`.
void ReplaceUserId(FileSystem& files, SystemFacts& facts, const UserIdReplacement& what);

}  // namespace quillbox
