// Turns a form's layout into the toolkit's own, making each control's widget where it lies.
#pragma once

#include <functional>

#include "ui/layout.h"

class wxSizer;
class wxWindow;

namespace quillbox {

/// Makes the widget of a control in `parent`; `growing` as in MakeWidget. Null for a control that has its place
/// outside the layout.
using WidgetMaker = std::function<wxWindow*(Control& control, wxWindow& parent, bool growing)>;

/// The layout of `root` inside `parent`, with a margin around it. The caller hands it to `parent`.
wxSizer* BuildLayout(const LayoutNode& root, wxWindow& parent, const WidgetMaker& make);

}  // namespace quillbox
