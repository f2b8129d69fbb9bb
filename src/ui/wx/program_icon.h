// The program's icon: a quill in a box.
#pragma once

class wxTopLevelWindow;

namespace quillbox {

void SetProgramIcon(wxTopLevelWindow& window);

}  // namespace quillbox
