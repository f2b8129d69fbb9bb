// SPDX-License-Identifier: GPL-3.0-or-later
// Makes the real widget of a control and connects the two: the user's input goes to the control's verbs, and the widget
// shows the control's properties.
#pragma once

#include <functional>
#include <string>

#include "ui/controls.h"

class wxWindow;

namespace quillbox {

struct Widget {
  wxWindow* window = nullptr;
  /// Updates the widget from its control. Never runs one of the control's verbs.
  std::function<void()> show;
};

/// The widget of `control` in `parent`, up to date. `growing`: its place in the layout gets the width left over, so
/// that it need not ask for the whole width of its text. "&" marks the access key in captions of buttons, check boxes
/// and frames; in those of labels it is shown. `spokenName` is what a screen reader calls a widget without a caption.
Widget MakeWidget(Control& control, wxWindow& parent, bool growing, const std::string& spokenName);

}  // namespace quillbox
