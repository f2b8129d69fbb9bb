// Names between Windows and the host. Windows looks names up without regard to case and forbids some that a host has;
// the rules for both are here and nowhere else.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

namespace quillbox {

/// A host's file name as inner text that Windows could hold. Characters that Windows forbids (and a blank or full stop
/// at the end) become U+F000 plus their number; a byte b that is not UTF-8 becomes the lone surrogate U+DC00+b.
std::string WindowsName(std::string_view hostName);
/// The reverse: the host name that WindowsName turns into `windowsName`.
std::string HostName(std::string_view windowsName);

/// True for what cannot be the name of an entry: ".", "..", nothing, a name with a slash or a zero byte.
bool LeavesItsFolder(std::string_view hostName);

struct HostEntry {
  std::string name;  ///< as stored
  struct stat info;  ///< of the entry itself: a link is not followed
};

/// The entry of the open folder that a Windows name means: the one of exactly that name, else the first that equals it
/// without regard to case. Nothing when there is none, or when the folder cannot be read.
std::optional<HostEntry> FindEntry(int folder, std::string_view windowsName);

}  // namespace quillbox
