// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/mail_state.h"

namespace quillbox {

MailState StateOf(MessageFlags flags) {
  return {flags.Has(MessageFlag::Read), flags.Has(MessageFlag::Flagged), flags.Has(MessageFlag::Answered),
          flags.Has(MessageFlag::Forwarded), flags.Has(MessageFlag::Draft)};
}

std::string MaildirFlags(const MailState& state) {
  std::string flags;
  if (state.draft) flags += 'D';
  if (state.flagged) flags += 'F';
  if (state.forwarded) flags += 'P';
  if (state.answered) flags += 'R';
  if (state.read) flags += 'S';
  return flags;
}

}  // namespace quillbox
