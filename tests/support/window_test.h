// SPDX-License-Identifier: GPL-3.0-or-later
// What tests of real windows share: letting events run, finding widgets, and a mouse and keyboard that go through the
// display's own input.
#pragma once

#include <gtest/gtest.h>
#include <wx/dialog.h>
#include <wx/evtloop.h>
#include <wx/toplevel.h>
#include <wx/uiaction.h>
#include <wx/utils.h>
#include <wx/window.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>

#include "support/form_platform.h"
#include "ui/form.h"
#include "ui/wx/form_window.h"

namespace quillbox {

inline void HandleEvents() {
  wxEventLoopBase::GetActive()->YieldFor(wxEVT_CATEGORY_ALL);
}

/// Handles events until `condition` holds; false when it does not within a few seconds.
inline bool WaitFor(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  do {
    HandleEvents();
    if (condition()) return true;
    wxMilliSleep(5);
  } while (std::chrono::steady_clock::now() < end);
  return false;
}

/// Handles the events that are under way, those that the display server sends back included.
inline void Settle() {
  for (int i = 0; i < 12; ++i) {
    HandleEvents();
    wxMilliSleep(10);
  }
}

/// The widget of the control `name` below `root`; throws when there is none of that kind.
template <class T>
T& Find(wxWindow& root, const std::string& name) {
  auto* found = dynamic_cast<T*>(wxWindow::FindWindowByName(name, &root));
  if (!found) throw std::runtime_error("no such widget: " + name);
  return *found;
}

/// The dialog that is open on top of the others, or null.
inline wxTopLevelWindow* OpenDialog() {
  wxTopLevelWindow* last = nullptr;
  for (wxWindow* window : wxTopLevelWindows) {
    auto* topLevel = dynamic_cast<wxTopLevelWindow*>(window);
    if (topLevel && topLevel->IsShown() && dynamic_cast<wxDialog*>(window)) last = topLevel;
  }
  return last;
}

inline wxPoint MiddleOf(const wxWindow& window) {
  return window.GetScreenRect().GetPosition() + window.GetScreenRect().GetSize() / 2;
}
inline void MoveTo(const wxPoint& point) {
  wxUIActionSimulator().MouseMove(point);
  Settle();
}
inline void ClickAt(const wxPoint& point) {
  MoveTo(point);
  wxUIActionSimulator().MouseClick();
  Settle();
}
inline void DoubleClickAt(const wxPoint& point) {
  MoveTo(point);
  wxUIActionSimulator().MouseDblClick();
  Settle();
}
inline void ClickOn(const wxWindow& window) {
  ClickAt(MiddleOf(window));
}
/// Like ClickOn, for use while events are being handled already.
inline void ClickWithoutSettling(const wxWindow& window) {
  wxUIActionSimulator().MouseMove(MiddleOf(window));
  wxUIActionSimulator().MouseClick();
}
inline void Press(int key, int modifiers = wxMOD_NONE) {
  wxUIActionSimulator().Char(key, modifiers);
  Settle();
}
inline void TypeText(const char* text) {
  wxUIActionSimulator().Text(text);
  Settle();
}

/// A form of the kind F as a real window.
template <class F>
struct ShownForm : testing::Test {
  ShownForm() {
    form.Show();
    Settle();
  }
  wxFrame& Window() { return *window.Window(); }
  /// The widget of `control`.
  template <class T>
  T& Widget(const Control& control) {
    return Find<T>(Window(), control.Name());
  }

  FormPlatform platform;
  HandlerGuard guard{platform};
  F form{guard};
  FormWindow window{form};
};

}  // namespace quillbox
