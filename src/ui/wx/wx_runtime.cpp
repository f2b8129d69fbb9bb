// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/wx_runtime.h"

#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/init.h>
#include <wx/log.h>
#include <wx/toplevel.h>
#include <wx/window.h>

#include <cstdlib>
#include <iostream>

#include "text/error.h"
#include "ui/wx/port.h"
#include "ui/wx/wx_text.h"

namespace quillbox {
namespace {

class App : public wxApp {
 public:
  bool OnInit() override {
    SetAppName("Quillbox");
    SetExitOnFrameDelete(false);
    return true;
  }

  // NOLINTNEXTLINE(bugprone-easily-swappable-parameters): the toolkit's own
  void OnAssertFailure(const wxChar* file, int line, const wxChar* function, const wxChar* condition,
                       const wxChar* message) override {
    std::cerr << "toolkit: " << FromWx(file) << ':' << line << " in " << FromWx(function) << ": " << FromWx(condition);
    if (message) std::cerr << ": " << FromWx(message);
    std::cerr << '\n';
  }
};

}  // namespace

WxRuntime::WxRuntime() {
  if (wxTheApp) return;
  PrepareToolkitStart();
  wxApp::SetInstance(new App);
  static char name[] = "quillbox";
  static char* arguments[] = {name, nullptr};
  int count = 1;
  if (!wxEntryStart(count, arguments)) {
    const char* display = std::getenv("DISPLAY");
    throw Error("opening the program's window", {display ? display : "DISPLAY", {}, {}},
                "there is no display to show it on");
  }
  started_ = true;
  FinishToolkitStart();
  delete wxLog::SetActiveTarget(new wxLogStderr);  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the log owns it
  wxTheApp->CallOnInit();
}

WxRuntime::~WxRuntime() {
  if (!started_) return;
  wxTheApp->OnExit();
  wxEntryCleanup();
}

wxWindow* ActiveWindow() {
  wxWindow* last = nullptr;
  for (wxWindow* window : wxTopLevelWindows) {
    if (!window->IsShown() || window->IsBeingDeleted()) continue;
    auto* topLevel = dynamic_cast<wxTopLevelWindow*>(window);
    if (topLevel && topLevel->IsActive()) return window;
    last = window;
  }
  return last;
}

void PaintNow() {
  wxEventLoopBase* loop = wxEventLoopBase::GetActive();
  if (loop && !loop->IsYielding()) loop->YieldFor(wxEVT_CATEGORY_UI);
}

}  // namespace quillbox
