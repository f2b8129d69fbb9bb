// SPDX-License-Identifier: GPL-3.0-or-later
// What a file has beside its bytes.
#pragma once

#include <windows.h>

namespace quillbox {

/// Two open files.
struct FromTo {
  HANDLE from;
  HANDLE to;
};

/// Attributes, time of creation, and who may do what, as far as the file system has them and the system lets them.
void CopyAttributes(FromTo files);
/// The owner and group too, which only some users may.
void CopyOwner(FromTo files);

}  // namespace quillbox
