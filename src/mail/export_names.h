// SPDX-License-Identifier: GPL-3.0-or-later
// Names of files and folders that mail is written to: safe on every file system, and what the target program expects.
// What is in a name comes from messages of strangers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "mail/mail_state.h"
#include "mail/message_digest.h"

namespace quillbox {

/// Bytes of a name in UTF-8, its ending included. File systems take 255 at most, encrypted home folders 143.
inline constexpr std::size_t kMaxNameBytes = 140;

/// `text` (inner text) as a name for a file or folder: characters that Windows forbids, control characters and marks
/// that turn the direction of writing become "_", blanks in a row one blank; no blank or full stop at its ends; not a
/// device's name; at most `maxBytes` bytes, cut between characters; `ifEmpty` when nothing is left.
std::string SafeName(std::string_view text, std::size_t maxBytes, std::string_view ifEmpty);

/// Names of one folder, none of which is there twice, as far as a file system may take them for the same one.
class UniqueNames {
 public:
  /// Notes a name that is there. False when it was noted before.
  bool Note(std::string_view name);
  /// `stem` + `ending`, or with " (2)", " (3)" and so on between; noted. Stays within kMaxNameBytes.
  std::string Take(std::string_view stem, std::string_view ending);

 private:
  /// By the hash of a name in upper case, since a folder may have a million of them: the number that Take gave last to
  /// a name like it. Two names of one hash only cost a number.
  std::unordered_map<std::size_t, std::uint64_t> taken_;
};

/// What an .eml file is named after. Texts are inner text.
struct EmlFacts {
  std::optional<std::int64_t> date;  ///< of sending, in seconds since 1970 UTC
  std::string subject;
  std::string sender;  ///< name or address
};

/// The facts of a message from its header, where that can be decoded, and else from its record, whose texts are in
/// `page`.
EmlFacts FactsOf(const StoredMessage& message, const MessageHeader& header, const CodePage& page);

/// "2004-03-17 Subject (sender)", without the ending ".eml". The date is UTC.
std::string EmlStem(const EmlFacts& facts);

/// The name of a message's file in a Maildir's "cur"; the file has the message's bytes as they are. It is the same for
/// the same message, so that its flags can change and an export finds it again. `separator` is ':' but where file names
/// cannot have it ('!' there).
std::string MaildirName(const MessageIdentity& identity, std::int64_t received, const MailState& state,
                        char separator = ':');
/// The part of such a name that stays when flags change.
std::string_view MaildirBase(std::string_view name);

}  // namespace quillbox
