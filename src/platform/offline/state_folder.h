// Where the program keeps what it remembers about disks: never on those disks.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillbox {

/// The user's home; "/" when there is none.
std::filesystem::path HomeFolder();

/// `$XDG_STATE_HOME/quillbox`, or `~/.local/state/quillbox`. Not made by this call.
std::filesystem::path StateFolder();

/// Makes a folder of the program's own with all its parents, open to the user alone. False when that failed.
bool MakePrivateFolder(const std::filesystem::path& folder);

/// Why nothing can be kept in `folder`, which is made, as a clause that names it; nothing when it can.
std::optional<std::string> StateFolderFault(const std::filesystem::path& folder);

/// `text` in one line of a state file: "%" and control characters as "%" and two digits.
std::string StateLine(std::string_view text);
/// The text of such a line; a "%" without digits stays.
std::string FromStateLine(std::string_view line);

/// A file name for `text`, 16 hexadecimal digits: the same for the same text, hardly ever for another.
std::string HashName(std::string_view text);

}  // namespace quillbox
