// SPDX-License-Identifier: GPL-3.0-or-later
// Converts between the program's texts and the toolkit's strings. Every text that a window shows passes here, so this
// is where characters of a disk's names that would upset the display are replaced; the controls keep what is stored.
#pragma once

#include <wx/string.h>

#include <string>

#include "text/message_text.h"

namespace quillbox {

/// `text` for showing in one line; see OneLine.
inline wxString ToWx(const std::string& text) {
  return wxString::FromUTF8(OneLine(text));
}

/// `text` for showing in as many lines as it has: for messages and prompts.
inline wxString ToWxLines(const std::string& text) {
  return wxString::FromUTF8(SeveralLines(text));
}

inline std::string FromWx(const wxString& text) {
  return text.utf8_string();
}

}  // namespace quillbox
