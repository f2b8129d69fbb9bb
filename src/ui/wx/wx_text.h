// The way between the program's inner text and the toolkit's strings. All that a window shows passes here, and only
// here, so this is where texts of a disk become harmless to look at; the controls keep what is stored.
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
