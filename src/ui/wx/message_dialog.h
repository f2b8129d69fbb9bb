// SPDX-License-Identifier: GPL-3.0-or-later
// The window of a message or a question. It is not the toolkit's own, which GTK 3 shows without its icon.
#pragma once

#include "platform/dialogs.h"

class wxWindow;

namespace quillbox {

/// Shows the message above `parent` and waits for the answer. Esc and the title bar's close button give the harmless
/// one: Cancel where there is such a button, else No, else OK.
MessageAnswer ShowMessage(const Message& message, wxWindow* parent);

}  // namespace quillbox
