// SPDX-License-Identifier: GPL-3.0-or-later
// Turns a form's menu rows into a real menu bar.
#pragma once

class wxFrame;

namespace quillbox {

class Form;

/// Gives `frame` the menu bar of `form`, if the form has one. Choosing an item, or clicking one in the bar itself,
/// clicks that of the form.
void AddMenuBar(Form& form, wxFrame& frame);

}  // namespace quillbox
