// What windows need of the system below the toolkit because the toolkit has no call for it. Each of the toolkit's ports
// has its own file (port_gtk.cpp), so that no other file of this layer depends on one.
#pragma once

#include <string>

class wxDataViewCtrl;
class wxWindow;

namespace quillbox {

/// Sets the name that a screen reader says for a widget without a text of its own.
void SetAccessibleName(wxWindow& window, const std::string& name);

/// Gives all rows of the list the same height, so that it does not measure each one: with 100,000 rows that takes
/// seconds. Its columns must have their widths already.
void GiveRowsOneHeight(wxDataViewCtrl& list);

}  // namespace quillbox
