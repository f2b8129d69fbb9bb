// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/form_window.h"

#include <wx/app.h>
#include <wx/bookctrl.h>
#include <wx/button.h>
#include <wx/combobox.h>
#include <wx/cursor.h>
#include <wx/font.h>
#include <wx/panel.h>
#include <wx/sizer.h>
#include <wx/statbox.h>
#include <wx/statusbr.h>
#include <wx/textctrl.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "text/win_path.h"
#include "ui/wx/layout_builder.h"
#include "ui/wx/menu_builder.h"
#include "ui/wx/port.h"
#include "ui/wx/program_icon.h"
#include "ui/wx/wx_runtime.h"
#include "ui/wx/wx_text.h"

namespace quillbox {
namespace {

constexpr int kTwipsPerInch = 1440;
constexpr int kPixelsPerInch = 96;
constexpr const char* kFontName = "Arial";

bool IsGroup(wxWindow* window) {
  return dynamic_cast<wxStaticBox*>(window) != nullptr;
}

bool IsBook(wxWindow* window) {
  return dynamic_cast<wxBookCtrlBase*>(window) != nullptr;
}

}  // namespace

FormWindow::FormWindow(Form& form) : form_(form) {
  form_.onChanged = [this] { Follow(); };
  Follow();
}

FormWindow::~FormWindow() {
  form_.onChanged = nullptr;
  for (Control* control : form_.Controls()) control->onChanged = nullptr;
  // At once and not when the toolkit is idle: events that it has still to handle would use this object.
  delete window_.get();
}

void FormWindow::Follow() {
  const bool isNew = !window_ && form_.visible;
  if (isNew) Make();
  if (!window_) return;
  window_->SetTitle(ToWx(form_.caption.Get()));
  if (heightTwips_ != form_.heightTwips) {
    heightTwips_ = form_.heightTwips;
    AskForFit(true);
  }
  if (window_->IsShown() != form_.visible) {
    if (form_.visible) Fit();
    window_->Show(form_.visible);
    if (form_.visible) {
      window_->Raise();
      if (isNew) FocusFirst();
      AskForFit(false);  // some widgets know their best size only when they have been shown
    }
    wxWakeUpIdle();
  }
  FollowPointer();
}

/// Left to itself the toolkit may begin in a panel behind the controls.
void FormWindow::FocusFirst() {
  const auto canBegin = [](const Widget& widget) {
    return widget.window->IsShownOnScreen() && widget.window->IsEnabled() && widget.window->AcceptsFocus() &&
           !IsGroup(widget.window);
  };
  const auto first = std::find_if(widgets_.begin(), widgets_.end(), canBegin);
  if (first != widgets_.end()) first->window->SetFocus();
}

void FormWindow::FollowPointer() {
  if (pointer_ == form_.pointer) return;
  pointer_ = form_.pointer;
  window_->SetCursor(pointer_ == Pointer::Hourglass ? wxCursor(wxCURSOR_WAIT) : wxNullCursor);
  PaintNow();
}

void FormWindow::Make() {
  window_ = new wxFrame(nullptr, wxID_ANY, ToWx(form_.caption.Get()));
  window_->SetName(form_.Name());
  window_->SetFont(wxFontInfo(window_->GetFont().GetPointSize()).FaceName(kFontName));
  SetProgramIcon(*window_);
  AddMenuBar(form_, *window_);
  MakeContent();
  window_->SetStatusBarPane(-1);
  window_->Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
    if (event.CanVeto()) event.Veto();
    form_.close();
  });
  window_->Bind(wxEVT_CHAR_HOOK, &FormWindow::OnKey, this);
  Fit();
  window_->CentreOnScreen();
}

wxWindow* FormWindow::MakeWidgetOf(Control& control, wxWindow& parent, bool growing) {
  const std::size_t position = PositionOf(control);
  widgets_[position] = MakeWidget(control, parent, growing, SpokenName(position));
  positions_[widgets_[position].window] = position;
  return widgets_[position].window;
}

std::string FormWindow::SpokenName(std::size_t position) const {
  const auto& controls = form_.Controls();
  const Control& control = *controls[position];
  if (!control.spokenName.empty()) return control.spokenName;
  const auto* label = position == 0 ? nullptr : dynamic_cast<const Label*>(controls[position - 1]);
  return label && !label->caption->empty() ? Trim(label->caption.Get()) : control.tooltip.Get();
}

void FormWindow::GiveFieldsOneHeight() {
  std::vector<wxWindow*> fields;
  for (const Widget& widget : widgets_) {
    wxWindow* window = widget.window;
    if (dynamic_cast<wxTextCtrl*>(window) || dynamic_cast<wxComboBox*>(window) || dynamic_cast<wxButton*>(window)) {
      fields.push_back(window);
    }
  }
  GiveOneHeight(fields);
}

void FormWindow::MakeContent() {
  const auto& controls = form_.Controls();
  widgets_.resize(controls.size());
  content_ = new wxPanel(window_);
  content_->SetSizer(BuildLayout(form_.Layout(), *content_, [this](Control& control, wxWindow& parent, bool growing) {
    // A status bar is at the bottom of the window, wherever the layout names it.
    return dynamic_cast<StatusBar*>(&control) ? nullptr : MakeWidgetOf(control, parent, growing);
  }));
  for (Control* control : controls) {
    if (dynamic_cast<StatusBar*>(control)) {
      window_->SetStatusBar(static_cast<wxStatusBar*>(MakeWidgetOf(*control, *window_, false)));
    } else if (!widgets_[PositionOf(*control)].window) {
      throw std::logic_error("the layout of " + form_.Name() + " leaves out " + control->Name());
    }
    control->onChanged = [this, control] { OnControlChanged(*control); };
  }
  GiveFieldsOneHeight();
  OrderTabs(*content_);
}

std::size_t FormWindow::PositionOf(const Control& control) const {
  const auto& controls = form_.Controls();
  return static_cast<std::size_t>(std::find(controls.begin(), controls.end(), &control) - controls.begin());
}

/// A window's position in the tab order: that of its control, or of the first control inside it.
std::size_t FormWindow::TabPosition(wxWindow& window) const {
  const auto known = positions_.find(&window);
  auto position = std::numeric_limits<std::size_t>::max();
  if (known != positions_.end() && !IsGroup(&window)) return known->second;
  for (wxWindow* child : window.GetChildren()) position = std::min(position, TabPosition(*child));
  return position;
}

void FormWindow::OrderTabs(wxWindow& parent) {
  // A panel without anything to go to would take the focus itself.
  if (dynamic_cast<wxPanel*>(&parent)) parent.SetCanFocus(false);
  std::vector<wxWindow*> children(parent.GetChildren().begin(), parent.GetChildren().end());
  std::stable_sort(children.begin(), children.end(),
                   [this](wxWindow* a, wxWindow* b) { return TabPosition(*a) < TabPosition(*b); });
  for (std::size_t i = 1; i < children.size(); ++i) children[i]->MoveAfterInTabOrder(children[i - 1]);
  for (wxWindow* child : children) {
    if (IsGroup(child) || IsBook(child) || !positions_.count(child)) OrderTabs(*child);
  }
}

void FormWindow::OnControlChanged(const Control& control) {
  const Widget& widget = widgets_[PositionOf(control)];
  const bool wasShown = widget.window->IsShown();
  const bool wasEnabled = widget.window->IsThisEnabled();
  widget.show();
  const bool changesShown = wasShown != widget.window->IsShown();
  orderAsked_ = orderAsked_ || changesShown || wasEnabled != widget.window->IsThisEnabled();
  AskForFit(changesShown);
  // A handler that works for long gives the window no other chance to show the change.
  if (pointer_ == Pointer::Hourglass) PaintNow();
}

void FormWindow::OnKey(wxKeyEvent& event) {
  if (event.GetKeyCode() == WXK_ESCAPE && !event.HasAnyModifiers() && !IsPopupOpen()) {
    form_.escape();
  } else {
    event.Skip();
  }
}

/// Has the window laid out when the handler has ended, since a handler changes many things at once. `heightToo`: the
/// window gets the height that the form asks for, instead of growing only when its content needs it.
void FormWindow::AskForFit(bool heightToo) {
  fitHeight_ = fitHeight_ || heightToo;
  if (fitAsked_) return;
  fitAsked_ = true;
  window_->CallAfter([this] { Fit(); });
}

void FormWindow::Fit() {
  fitAsked_ = false;
  // The toolkit leaves what was hidden or disabled when the order was set out of it for good.
  if (orderAsked_) OrderTabs(*content_);
  orderAsked_ = false;
  const wxSize needed = window_->ClientToWindowSize(content_->GetSizer()->CalcMin());
  const int asked = window_->FromDIP(form_.heightTwips * kPixelsPerInch / kTwipsPerInch);
  const wxSize now = window_->GetSize();
  const wxSize size(std::max(now.x, needed.x), std::max(fitHeight_ ? asked : now.y, needed.y));
  fitHeight_ = false;
  window_->SetMinSize(needed);
  if (size != now && !window_->IsMaximized()) window_->SetSize(size);
  content_->Layout();
}

}  // namespace quillbox
