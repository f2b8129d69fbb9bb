// SPDX-License-Identifier: GPL-3.0-or-later
// What became of a message, in the words that mail formats have for it.
#pragma once

#include <string>
#include <string_view>

#include "mail/stored_message.h"

namespace quillbox {

struct MailState {
  bool read = false, flagged = false, answered = false, forwarded = false, draft = false;
  bool operator==(const MailState&) const = default;
};

MailState StateOf(MessageFlags flags);

/// Maildir's letters in their order: D draft, F flagged, P forwarded, R answered, S read.
std::string MaildirFlags(const MailState& state);

}  // namespace quillbox
