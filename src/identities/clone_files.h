// SPDX-License-Identifier: GPL-3.0-or-later
// The registry files of a clone: what the source's and the accounts' exports become for the destination. The files are
// parsed and written anew, not edited line by line, so that values of any length and texts of several lines stay whole.
// A file that the 8-bit form cannot hold is written in the Unicode form.
#pragma once

#include <string>
#include <vector>

#include "text/code_page.h"
#include "text/unicode.h"

namespace quillbox {

/// A registry file as it was read.
struct RegText {
  std::string name;  ///< for messages
  std::string bytes;
};

/// A value that stays the destination's own.
struct OwnValue {
  std::string name;
  std::uint32_t type = 0;
  Bytes data;
};

/// "Directory Name", "Username" and "Identity Ordinal" of the identity `userId` as its export has them. This and the
/// rewritings throw Error when a line of a file cannot be used.
std::vector<OwnValue> ReadOwnValues(const RegText& file, const CodePage& codePage, const std::string& userId);

/// The export of `source` as one of `destination`: its {USER_ID} everywhere, its own values, no "Store Root". Throws
/// Error, too, when the file is not an export of `source`.
std::string RewriteIdentity(const RegText& file, const CodePage& codePage, const std::string& source,
                            const std::string& destination, const std::vector<OwnValue>& own);

/// The export of the accounts below HKEY_CURRENT_USER\SOFTWARE as one of those below the identity `destination`.
std::string RewriteAccounts(const RegText& file, const CodePage& codePage, const std::string& destination);

struct StoreRoot {
  std::string userId;
  std::string folder;
};
/// A file that sets the "Store Root" of an identity, without the NUL that a merge would need; on NT 4 (`endsWithLine`)
/// a line with a blank follows.
std::string StoreRootFile(const StoreRoot& root, bool endsWithLine);

}  // namespace quillbox
