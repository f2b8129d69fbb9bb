// SPDX-License-Identifier: GPL-3.0-or-later
// The program's icon: a quill in a box.
#pragma once

class wxTopLevelWindow;

namespace quillbox {

void SetProgramIcon(wxTopLevelWindow& window);

}  // namespace quillbox
