// SPDX-License-Identifier: GPL-3.0-or-later
// Entry names of the host, and the names under which Windows sees them. On a host that is a Windows they are the same.
#pragma once

#include <string>
#include <string_view>

namespace quillbox {

/// A host's file name as inner text that Windows could hold. Characters that Windows forbids (and a blank or full stop
/// at the end) become U+F000 plus their number; a byte b that is not UTF-8 becomes the lone surrogate U+DC00+b.
std::string WindowsName(std::string_view hostName);
/// The reverse: the host name that WindowsName turns into `windowsName`.
std::string HostName(std::string_view windowsName);

/// True for what cannot be the name of an entry: ".", "..", nothing, a name with a separator or a zero byte.
bool LeavesItsFolder(std::string_view hostName);

}  // namespace quillbox
