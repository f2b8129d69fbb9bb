// SPDX-License-Identifier: GPL-3.0-or-later
// What windows need of the system below the toolkit because the toolkit has no call for it. Each of the toolkit's ports
// has its own file (port_gtk.cpp), so that no other file of this layer depends on one.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "host/host_path.h"
#include "platform/dialogs.h"

class wxBitmapBundle;
class wxComboBox;
class wxDataViewCtrl;
class wxDialog;
class wxListBox;
class wxMenu;
class wxStaticBox;
class wxString;
class wxTextCtrl;
class wxWindow;

namespace quillbox {

/// What the toolkit must find when it starts.
void PrepareToolkitStart();
/// Puts right what the start has changed for the whole program.
void FinishToolkitStart();

/// A path as the toolkit's file dialogs have it, and the other way round.
HostPath FromDialogPath(const wxString& path);
wxString ToDialogPath(const HostPath& path);

/// A file dialog's pattern that matches in any case, as Windows' own do: "*.WAB".
wxString PatternInAnyCase(const wxString& pattern);

/// Sets the name that a screen reader says for a widget without a text of its own, and for the parts of it that can
/// have the focus.
void SetAccessibleName(wxWindow& window, const std::string& name);

/// The system's picture for a message.
wxBitmapBundle PictureOf(MessageIcon icon);

/// Has a screen reader say the texts of a message when its window opens.
void MarkAsAlert(wxDialog& dialog);

/// Makes entries, combo boxes and buttons of a window equally high where the theme centres their texts, whatever the
/// toolkit knows about each before it is shown.
void GiveOneHeight(const std::vector<wxWindow*>& fields);

/// Leaves the choice of a closed combo box alone when the mouse wheel turns above it, makes the box a single stop of
/// the Tab key, and shows its items in full where the screen is wide enough for them.
void TameComboBox(wxComboBox& box);

/// Has a click on the text of a combo box that is not typed into open its list.
void OpenByClick(wxComboBox& box);

/// Draws the entry like the window behind it, as a text that can be selected but not changed.
void ShowReadOnly(wxTextCtrl& entry, bool readOnly);

/// Keeps the title of the frame clear of its line.
void SetTitleBesideLine(wxStaticBox& frame);

/// True while a menu or the list of a combo box is open.
bool IsPopupOpen();

/// Makes an empty menu of a frame's menu bar a command that runs `act` when it is clicked in the bar.
void MakeCommandOfBar(wxMenu& menu, std::function<void()> act);

/// True unless the user is clicking or has pressed a key other than Tab: a list that gets the focus selects its first
/// line by itself.
bool IsFocusMoving();

/// Has a plain click on a line of a list of several select or deselect that line alone, as with Ctrl.
void ToggleByClick(wxListBox& list);

/// Shows a tooltip with the text that `tipOf` gives for the row under the mouse; none for an empty text.
void ShowRowTips(wxDataViewCtrl& list, std::function<std::string(std::size_t row)> tipOf);

/// Gives all rows of the list the same height, so that it does not measure each one: with 100,000 rows that takes
/// seconds. Its columns must have their widths already.
void GiveRowsOneHeight(wxDataViewCtrl& list);

}  // namespace quillbox
