// SPDX-License-Identifier: GPL-3.0-or-later
// Turns a form's layout into the toolkit's own and makes each control's widget in its place.
#pragma once

#include <functional>

#include "ui/layout.h"

class wxSizer;
class wxWindow;

namespace quillbox {

/// Makes the widget of a control in `parent`; `growing` as in MakeWidget. Null for a control whose place is outside the
/// layout.
using WidgetMaker = std::function<wxWindow*(Control& control, wxWindow& parent, bool growing)>;

/// The layout of `root` inside `parent`, with a margin around it, for `parent.SetSizer`.
wxSizer* BuildLayout(const LayoutNode& root, wxWindow& parent, const WidgetMaker& make);

}  // namespace quillbox
