// Makes the real widget of a control and ties the two: what a person does to the widget becomes the control's act, and
// what the control holds is shown by the widget.
#pragma once

#include <functional>

#include "ui/controls.h"

class wxWindow;

namespace quillbox {

struct Widget {
  wxWindow* window = nullptr;
  /// Has the widget show what its control holds now. Never makes the control act.
  std::function<void()> show;
};

/// The widget of `control` in `parent`, showing what the control holds. `growing`: it is laid out in a place that takes
/// the width left over, so that it need not ask for all the width of its text. Captions of labels are shown as they
/// are; in those of buttons, check boxes and frames "&" marks the access key.
Widget MakeWidget(Control& control, wxWindow& parent, bool growing);

}  // namespace quillbox
