// The toolkit's life: windows and dialogs can exist while an object of this kind does.
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

/// The window that is in use, which dialogs appear above; null when none is open.
wxWindow* ActiveWindow();

/// Has the screen show what has changed while a handler is still running. A person's acts wait until it has ended.
void PaintNow();

}  // namespace quillbox
