// SPDX-License-Identifier: GPL-3.0-or-later
// Where the program keeps what it remembers about disks: never on those disks.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/host_path.h"

namespace quillbox {

/// The user's home; the root when there is none.
HostPath HomeFolder();

/// `$XDG_STATE_HOME/quillbox`, or `~/.local/state/quillbox`; on Windows `%LOCALAPPDATA%\Quillbox`. Not made by this
/// call.
HostPath StateFolder();

/// Makes a folder of the program's own with all its parents, open to the user alone. False when that failed.
bool MakePrivateFolder(const HostPath& folder);

/// Why nothing can be kept in `folder`, which is made, as a clause that names it; nothing when it can.
std::optional<std::string> StateFolderFault(const HostPath& folder);

/// `text` in one line of a state file: "%" and control characters as "%" and two digits.
std::string StateLine(std::string_view text);
/// The text of such a line; a "%" without digits stays.
std::string FromStateLine(std::string_view line);

/// The lines of a state file; none when it cannot be read.
std::vector<std::string> ReadStateFile(const HostPath& file);

/// A file name for `text`, 16 hexadecimal digits: the same for the same text, hardly ever for another.
std::string HashName(std::string_view text);

}  // namespace quillbox
