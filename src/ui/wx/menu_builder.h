// Turns a form's menu rows into a real menu bar.
#pragma once

class wxFrame;

namespace quillbox {

class Form;

/// Gives `frame` the menu bar of `form`, if the form has one. An item in the bar itself becomes a menu with that one
/// item, since a bar can only open menus. Choosing an item clicks that of the form.
void AddMenuBar(Form& form, wxFrame& frame);

}  // namespace quillbox
