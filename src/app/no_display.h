// SPDX-License-Identifier: GPL-3.0-or-later
// What the program says where there is no display to show a window on: what the disk holds, and how it can be opened.
#pragma once

#include <string>

#include "app/options.h"

namespace quillbox {

/// Several lines. Looks at the disk, if one is named, and changes nothing.
std::string TextWithoutDisplay(const DiskChoice& disk);

}  // namespace quillbox
