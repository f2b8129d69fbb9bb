// SPDX-License-Identifier: GPL-3.0-or-later
// Says in a message that a path is not used, and why.
#pragma once

#include "platform/dialogs.h"

namespace quillbox {

/// `refusal` is a PathRefusal, a FolderRefusal or any other type with a Sentence().
template <class Refusal>
void ShowRefusal(Dialogs& dialogs, const Refusal& refusal) {
  dialogs.Show({.text = refusal.Sentence(), .icon = MessageIcon::Exclamation});
}

}  // namespace quillbox
