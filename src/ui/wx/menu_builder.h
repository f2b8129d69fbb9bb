// Turns a form's menu rows into a real menu bar.
#pragma once

class wxFrame;

namespace quillbox {

class Form;

/// Gives `frame` the menu bar of `form`, if the form has one. A row that stands in the bar itself becomes a menu with
/// that one item, since a bar opens menus and nothing else. Choosing an item runs the form's own.
void AddMenuBar(Form& form, wxFrame& frame);

}  // namespace quillbox
