// What a screen reader calls a widget that shows no words of its own.
#pragma once

#include <string>

class wxWindow;

namespace quillbox {

void SetAccessibleName(wxWindow& window, const std::string& name);

}  // namespace quillbox
