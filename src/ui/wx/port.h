// What a window needs of the toolkit's port and the toolkit has no call for. Each port has a file of its own for it
// (port_gtk.cpp), so that no other file of this layer names one.
#pragma once

#include <string>

class wxDataViewCtrl;
class wxWindow;

namespace quillbox {

/// What a screen reader calls a widget that shows no words of its own.
void SetAccessibleName(wxWindow& window, const std::string& name);

/// Has the list take all rows for equally high, so that it does not measure each one: with 100,000 rows that takes
/// seconds. Its columns must have their widths by then.
void TakeRowsForEquallyHigh(wxDataViewCtrl& list);

}  // namespace quillbox
