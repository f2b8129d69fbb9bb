// SPDX-License-Identifier: GPL-3.0-or-later
// The toolkit's lifetime: windows and dialogs can exist only while a WxRuntime does.
#pragma once

class wxWindow;

namespace quillbox {

class WxRuntime {
 public:
  /// Opens the display, unless an outer WxRuntime has done so; throws Error when there is none.
  WxRuntime();
  ~WxRuntime();
  WxRuntime(const WxRuntime&) = delete;
  WxRuntime& operator=(const WxRuntime&) = delete;

 private:
  bool started_ = false;
};

/// The active window, which dialogs appear above; null when none is open.
wxWindow* ActiveWindow();

/// Draws what has changed while a handler is still running. The user's input waits until it has ended.
void PaintNow();

}  // namespace quillbox
