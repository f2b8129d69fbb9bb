// SPDX-License-Identifier: GPL-3.0-or-later
// One form as a real window, which is made when the form is first shown and follows it from then on.
#pragma once

#include <wx/frame.h>
#include <wx/weakref.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "ui/controls.h"
#include "ui/form.h"
#include "ui/wx/widget_factory.h"

namespace quillbox {

class FormWindow {
 public:
  /// Follows `form`, which must outlive this.
  explicit FormWindow(Form& form);
  ~FormWindow();
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  /// Null until the form has been shown.
  wxFrame* Window() const { return window_; }

 private:
  void Follow();
  void Make();
  void MakeContent();
  void GiveFieldsOneHeight();
  std::string SpokenName(std::size_t position) const;
  wxWindow* MakeWidgetOf(Control& control, wxWindow& parent, bool growing);
  std::size_t PositionOf(const Control& control) const;
  void OrderTabs(wxWindow& parent);
  std::size_t TabPosition(wxWindow& window) const;
  void OnControlChanged(const Control& control);
  void OnKey(wxKeyEvent& event);
  void FollowPointer();
  void FocusFirst();
  void AskForFit(bool heightToo);
  void Fit();

  Form& form_;
  wxWeakRef<wxFrame> window_;
  wxWindow* content_ = nullptr;
  std::vector<Widget> widgets_;  // as Form::Controls()
  std::map<wxWindow*, std::size_t> positions_;
  Pointer pointer_ = Pointer::Normal;
  int heightTwips_ = 0;
  bool fitAsked_ = false;
  bool orderAsked_ = false;
  bool fitHeight_ = true;
};

}  // namespace quillbox
