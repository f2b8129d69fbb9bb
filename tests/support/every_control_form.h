// SPDX-License-Identifier: GPL-3.0-or-later
// A window with a control of every kind, for tests of what all windows do.
#pragma once

#include <string>

#include "ui/form.h"

namespace quillbox {

struct EveryControlForm : Form {
  explicit EveryControlForm(HandlerGuard& guard) : Form(guard, "EveryControl", "Every Control") {
    cmdOk.isDefault = true;
    cmdClose.isCancel = true;
    typed.editable = true;
    picker.items = {"one", "two", "two"};
    typed.items = {"*.dbx", "*.wab"};
    list.items = {"Inbox.dbx", "Outbox.dbx", "Sent Items.dbx"};
    several.items = {"Ann.wab", "Office.wab", "Old.wab"};
    options.Choose(&second);
    const auto act = [this](const char* what) { return [this, what] { acts += std::string(what) + " "; }; };
    menuBar.Add({{"&File", "Report", "Save &As Text"}, "SaveAs", true, act("SaveAs")});
    menuBar.Add({{"&File", "Report", "Save As HTML"}, "SaveAsHTML", false, act("never")});
    menuBar.Add({{"&File", "E&xit"}, "Exit", true, [this] { Hide(); }});
    menuBar.Add({{"Search"}, "Search", true, act("Search")});
    cmdOk.onClick = act("ok");
    cmdInner.onClick = act("inner");
    cmdClose.onClick = [this] { Hide(); };
    picker.onClick = [this] {
      acts += "picker=" + picker.text.Get() + "#" + std::to_string(picker.Index().value()) + " ";
    };
    box.onChange = [this] { acts += "box=" + box.text.Get() + " "; };
    check.onClick = [this] { acts += check.checked ? "checked " : "unchecked "; };
    first.onClick = second.onClick = [this] { acts += first.IsChosen() ? "first " : "second "; };
    list.onSelect = [this] { acts += "list=" + std::to_string(list.selected->value()) + " "; };
    list.onOpen = [this] { acts += "open=" + std::to_string(list.selected->value()) + " "; };
  }

  LayoutNode Layout() override {
    return Column(
        {Grid(2, {1}, {Item(lblPicker), Item(picker), Item(lblTyped), Item(typed), Item(lblValue), Item(value)}),
         Row({Item(check), Item(cmdOk, 1), Item(cmdClose, 1)}), Row({Item(list, 1), Item(several, 1)}, 1),
         Row({Item(first), Item(second)}),
         Group(frame, Grid(2, {1}, {Item(lblBox), Item(box), Item(lblInner), Item(cmdInner)}))});
  }

  std::string acts;  ///< what the handlers saw, in order

  Label lblPicker{*this, "lblPicker", "or    Select {USER_ID}: "};
  ComboBox picker{*this, "picker", "Combo1", "Click to select"};
  Label lblTyped{*this, "lblTyped", "Type:"};
  ComboBox typed{*this, "typed", "*.dbx"};
  Label lblValue{*this, "lblValue", "Folder:"};
  Label value{*this, "value", "", "Path to folder."};
  CheckBox check{*this, "check", "", "Check here"};
  Button cmdOk{*this, "cmdOk", "Backup The Selected Identity Now"};
  Frame frame{*this, "frame", "Additional Information"};
  Button cmdInner{*this, "cmdInner", "Open &Folder"};
  Label lblInner{*this, "lblInner", "Button:"};
  Label lblBox{*this, "lblBox", "Text:"};
  TextBox box{*this, "box", "C:\\Data", "Tab to this line"};
  ListBox list{*this, "list", "Files"};
  OptionGroup options;
  OptionButton first{*this, options, "first", "Tom & Jerry.wab"};
  OptionButton second{*this, options, "second", "None Selected", "Click to select"};
  MultiListBox several{*this, "several", "Books"};
  Button cmdClose{*this, "cmdClose", "Close"};
  StatusBar bar{*this, "bar", 2};
};

}  // namespace quillbox
