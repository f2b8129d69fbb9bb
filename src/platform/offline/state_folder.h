// Where the program keeps what it remembers about disks: never on those disks.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quillbox {

/// `$XDG_STATE_HOME/quillbox`, or `~/.local/state/quillbox`. Not made by this call.
std::filesystem::path StateFolder();

/// Makes a folder of the program's own with all its parents, open to the user alone. False when that failed.
bool MakePrivateFolder(const std::filesystem::path& folder);

/// A file name for `text`, 16 hexadecimal digits: the same for the same text, hardly ever for another.
std::string HashName(std::string_view text);

}  // namespace quillbox
