// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/wx_app.h"

#include <wx/app.h>
#include <wx/evtloop.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <vector>

#include "ui/form.h"
#include "ui/wx/form_window.h"
#include "ui/wx/wx_runtime.h"

namespace quillbox {
namespace {

class WxWindowSystem : public WindowSystem {
 public:
  WxWindowSystem() { wxTheApp->Bind(wxEVT_IDLE, &WxWindowSystem::EndWhenDone, this); }
  ~WxWindowSystem() override { wxTheApp->Unbind(wxEVT_IDLE, &WxWindowSystem::EndWhenDone, this); }

  void Attach(Form& form) override {
    forms_.push_back(&form);
    windows_.push_back(std::make_unique<FormWindow>(form));
  }

  void Quit() override {
    quitting_ = true;
    wxWakeUpIdle();
  }

  void SetStarted() { started_ = true; }

 private:
  /// Ends the run only between two events of the outermost loop, never while a handler runs: it may ask a question
  /// between hiding one window and showing the next.
  void EndWhenDone(wxIdleEvent& event) {
    event.Skip();
    wxEventLoopBase* loop = wxEventLoopBase::GetActive();
    if (!started_ || !loop || !loop->IsMain() || loop->IsYielding()) return;
    const bool open = std::any_of(forms_.begin(), forms_.end(), [](const Form* form) { return form->visible.Get(); });
    if (quitting_ || !open) loop->ScheduleExit();
  }

  std::vector<Form*> forms_;
  std::vector<std::unique_ptr<FormWindow>> windows_;
  bool started_ = false;
  bool quitting_ = false;
};

}  // namespace

void RunWindows(const std::function<void(WindowSystem&)>& start) {
  const WxRuntime runtime;
  std::exception_ptr failure;
  {
    WxWindowSystem windows;
    wxTheApp->CallAfter([&] {
      try {
        start(windows);
      } catch (...) {
        failure = std::current_exception();
        windows.Quit();
      }
      windows.SetStarted();
      wxWakeUpIdle();
    });
    wxTheApp->MainLoop();
  }
  if (failure) std::rethrow_exception(failure);
}

}  // namespace quillbox
