// The question whether a file that is there already may be replaced.
#pragma once

#include "platform/dialogs.h"

class wxWindow;

namespace quillbox {

OverwriteAnswer AskOverwriteWith(const OverwriteQuestion& question, wxWindow* parent);

}  // namespace quillbox
