// SPDX-License-Identifier: GPL-3.0-or-later
// The question whether an existing file may be replaced.
#pragma once

#include "platform/dialogs.h"

class wxWindow;

namespace quillbox {

OverwriteAnswer AskOverwriteWith(const OverwriteQuestion& question, wxWindow* parent);

}  // namespace quillbox
