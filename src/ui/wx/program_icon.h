// SPDX-License-Identifier: GPL-3.0-or-later
// The program's icon: a quill in a box.
#pragma once

class wxTopLevelWindow;

namespace quillbox {

/// The drawing, an SVG. The build makes it of the file that is installed for the desktop.
extern const char* const kProgramIcon;

void SetProgramIcon(wxTopLevelWindow& window);

}  // namespace quillbox
