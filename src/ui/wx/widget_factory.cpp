// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/widget_factory.h"

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/combobox.h>
#include <wx/dcclient.h>
#include <wx/listbox.h>
#include <wx/notebook.h>
#include <wx/panel.h>
#include <wx/radiobut.h>
#include <wx/statbox.h>
#include <wx/stattext.h>
#include <wx/statusbr.h>
#include <wx/textctrl.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "ui/list_view.h"
#include "ui/tab_control.h"
#include "ui/wx/list_view_widget.h"
#include "ui/wx/port.h"
#include "ui/wx/readable_colour.h"
#include "ui/wx/wx_text.h"

namespace quillbox {
namespace {

/// Texts that give minimum widths. A growing field must fit a GUID, the widest text that many of them hold.
constexpr const char* kFieldText = "Some short value";
constexpr const char* kGrowingText = "{0DADA0D0-0DD0-0DD0-0DD0-0DDADA0D0DD0}";
/// The width that an entry needs besides its text: for its border, and for the arrow of one with a list.
constexpr int kLeastShare = 100;  // of a status bar, for a panel without a text
constexpr int kEntryExtra = 30;
constexpr int kArrowExtra = 40;
/// The greatest width that a label asks for; a longer text is shortened in the middle and the tooltip has all of it.
constexpr int kLabelCharacters = 120;
/// The greatest width of an option's caption, for the same reason.
constexpr int kOptionCharacters = 45;
constexpr int kListCharacters = 24;
constexpr int kListLines = 7;

wxColour ColourOf(Colour colour) {
  const auto bits = static_cast<unsigned>(colour);
  return wxColour(bits & 0xFF, bits >> 8 & 0xFF, bits >> 16 & 0xFF);
}

void SetTip(wxWindow& window, const wxString& tip) {
  if (window.GetToolTipText() != tip) window.SetToolTip(tip);
}

/// What all kinds of controls show alike, except the tooltip.
void ShowCommon(const Control& control, wxWindow& window) {
  if (window.IsShown() != control.visible) window.Show(control.visible);
  if (window.IsThisEnabled() != control.enabled) window.Enable(control.enabled);
  const bool coloured = control.colour.Get() != Colour::Default;
  const wxColour wanted =
      coloured ? Readable(ColourOf(control.colour), window.GetParent()->GetBackgroundColour()) : wxNullColour;
  if (coloured ? window.GetForegroundColour() != wanted : window.UseForegroundColour()) {
    window.SetForegroundColour(wanted);
    window.Refresh();
  }
}

void ShowWithTip(const Control& control, wxWindow& window) {
  ShowCommon(control, window);
  SetTip(window, ToWx(control.tooltip.Get()));
}

wxString Joined(const wxString& first, const wxString& second) {
  return first + (first.empty() || second.empty() ? "" : "\n") + second;
}

class Factory : public ControlVisitor {
 public:
  Factory(wxWindow& parent, bool growing, const std::string& spokenName)
      : parent_(parent), growing_(growing), spokenName_(spokenName) {}

  Widget Take() { return std::move(widget_); }

  void Visit(Label& control) override;
  void Visit(TextBox& control) override;
  void Visit(ComboBox& control) override;
  void Visit(CheckBox& control) override;
  void Visit(OptionButton& control) override;
  void Visit(Button& control) override;
  void Visit(Frame& control) override;
  void Visit(ListBox& control) override;
  void Visit(MultiListBox& control) override;
  void Visit(ListView& control) override;
  void Visit(TabControl& control) override;
  void Visit(StatusBar& control) override;

 private:
  void MakeWrappedLabel(Label& control);
  enum class Selecting : long { One = wxLB_SINGLE, Several = wxLB_MULTIPLE };
  wxListBox& MakeListBox(Selecting selecting, int lines = kListLines);
  int Characters(int count) const { return count * parent_.GetCharWidth(); }
  int WidthOf(const wxString& text) const { return parent_.GetTextExtent(text).x; }
  int FieldWidth() const { return WidthOf(growing_ ? kGrowingText : kFieldText); }
  /// A growing picker fits its items, where they are known when it is made.
  int PickerWidth(const std::vector<std::string>& items) const;
  void SetEntryWidth(wxWindow& entry, int textWidth, int extra) const {
    entry.SetMinSize(wxSize(textWidth + parent_.FromDIP(extra), -1));
  }

  wxWindow& parent_;
  bool growing_;
  const std::string& spokenName_;
  Widget widget_;
};

void Factory::Visit(Label& control) {
  if (control.wraps) return MakeWrappedLabel(control);
  auto* text = new wxStaticText(&parent_, wxID_ANY, "", wxDefaultPosition, wxDefaultSize,
                                wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_MIDDLE);
  const int widest = growing_ ? FieldWidth() : Characters(kLabelCharacters);
  // Where the text is shortened, the tooltip is the only place that shows all of it.
  const auto showTip = [text, &control] {
    const bool shortened = text->GetClientSize().x < text->GetTextExtent(text->GetLabelText()).x;
    SetTip(*text, Joined(shortened ? text->GetLabelText() : wxString(), ToWx(control.tooltip.Get())));
  };
  text->Bind(wxEVT_SIZE, [showTip](wxSizeEvent& event) {
    event.Skip();
    showTip();
  });
  widget_.window = text;
  widget_.show = [text, &control, widest, showTip] {
    ShowCommon(control, *text);
    const wxString caption = ToWx(control.caption.Get());
    if (text->GetLabelText() != caption) text->SetLabelText(caption);
    // The toolkit's own best width of such a label is that of the text shortened as far as possible.
    text->SetMinSize(wxSize(std::min(text->GetTextExtent(caption).x + 1, widest), -1));
    showTip();
  };
}

void Factory::MakeWrappedLabel(Label& control) {
  auto* text = new wxStaticText(&parent_, wxID_ANY, "");
  widget_.window = text;
  widget_.show = [text, &control, widest = Characters(kLabelCharacters)] {
    ShowWithTip(control, *text);
    text->SetLabelText(ToWx(control.caption.Get()));
    text->Wrap(widest);
  };
}

void Factory::Visit(TextBox& control) {
  auto* box = new wxTextCtrl(&parent_, wxID_ANY);
  SetEntryWidth(*box, control.isShort ? WidthOf(kFieldText) : FieldWidth(), kEntryExtra);
  SetAccessibleName(*box, spokenName_);
  widget_.window = box;
  widget_.show = [box, &control, selected = false]() mutable {
    ShowWithTip(control, *box);
    box->SetEditable(!control.readOnly);
    ShowReadOnly(*box, control.readOnly);
    const wxString text = ToWx(control.text.Get());
    if (box->GetValue() != text) box->ChangeValue(text);
    if (control.allSelected && !selected) box->SelectAll();
    selected = control.allSelected;
  };
  box->Bind(wxEVT_TEXT, [box, &control](wxCommandEvent&) { control.type(FromWx(box->GetValue())); });
}

int Factory::PickerWidth(const std::vector<std::string>& items) const {
  if (!growing_ || items.empty()) return FieldWidth();
  int widest = WidthOf(kFieldText);
  for (const std::string& item : items) widest = std::max(widest, WidthOf(ToWx(item)));
  return std::min(widest, FieldWidth());
}

/// A picker is an entry that cannot be typed into: unlike the toolkit's read-only kind it can show a text that is not
/// among its items, and a long path can be scrolled and copied.
void Factory::Visit(ComboBox& control) {
  auto* box = new wxComboBox(&parent_, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, 0, nullptr, wxCB_DROPDOWN);
  SetEntryWidth(*box, PickerWidth(control.items), kEntryExtra + kArrowExtra);
  box->SetEditable(control.editable);
  TameComboBox(*box);
  SetAccessibleName(*box, spokenName_);
  widget_.window = box;
  widget_.show = [box, &control] {
    ShowWithTip(control, *box);
    wxArrayString items;
    for (const std::string& item : control.items.Get()) items.Add(ToWx(item));
    if (box->GetStrings() != items) box->Set(items);
    const wxString text = ToWx(control.text.Get());
    if (box->GetValue() == text) return;
    if (const auto index = control.Index()) {
      box->SetSelection(static_cast<int>(*index));
    } else {
      box->ChangeValue(text);
    }
  };
  box->Bind(wxEVT_COMBOBOX, [&control](wxCommandEvent& event) {
    if (event.GetSelection() >= 0) control.pick(static_cast<std::size_t>(event.GetSelection()));
  });
  if (control.editable) {
    box->Bind(wxEVT_TEXT, [box, &control](wxCommandEvent&) { control.type(FromWx(box->GetValue())); });
  } else {
    OpenByClick(*box);
  }
}

void Factory::Visit(CheckBox& control) {
  auto* box = new wxCheckBox(&parent_, wxID_ANY, ToWx(control.caption.Get()));
  if (control.caption->empty()) SetAccessibleName(*box, spokenName_);
  widget_.window = box;
  widget_.show = [box, &control] {
    ShowWithTip(control, *box);
    const wxString caption = ToWx(control.caption.Get());
    if (box->GetLabel() != caption) box->SetLabel(caption);
    box->SetValue(control.checked);
  };
  box->Bind(wxEVT_CHECKBOX, [show = widget_.show, &control](wxCommandEvent&) {
    control.click();
    show();
  });
}

/// The toolkit always has one button of a group chosen, so each button is in a group with a hidden one, which is chosen
/// in its place. OptionGroup sees to it that at most one of the window's buttons is chosen.
void Factory::Visit(OptionButton& control) {
  auto* none = new wxRadioButton(&parent_, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxRB_GROUP);
  none->Hide();
  auto* button = new wxRadioButton(&parent_, wxID_ANY, ToWx(control.caption.Get()));
  widget_.window = button;
  widget_.show = [none, button, &control, widest = Characters(kOptionCharacters)] {
    ShowCommon(control, *button);
    const wxString caption = ToWx(control.caption.Get());
    const wxString shown =
        wxControl::Ellipsize(caption, wxClientDC(button), wxELLIPSIZE_MIDDLE, widest, wxELLIPSIZE_FLAGS_NONE);
    SetTip(*button, Joined(shown == caption ? wxString() : caption, ToWx(control.tooltip.Get())));
    if (button->GetLabelText() != shown) {
      button->SetLabelText(shown);
      button->SetSize(button->GetBestSize());  // until the window is laid out again
    }
    (control.IsChosen() ? button : none)->SetValue(true);
  };
  button->Bind(wxEVT_RADIOBUTTON, [show = widget_.show, &control](wxCommandEvent&) {
    control.click();
    show();
  });
}

void Factory::Visit(Button& control) {
  auto* button = new wxButton(&parent_, wxID_ANY, ToWx(control.caption.Get()));
  widget_.window = button;
  widget_.show = [button, &control] {
    ShowWithTip(control, *button);
    const wxString caption = ToWx(control.caption.Get());
    if (button->GetLabel() != caption) button->SetLabel(caption);
    if (control.isDefault) button->SetDefault();
  };
  button->Bind(wxEVT_BUTTON, [&control](wxCommandEvent&) { control.click(); });
}

void Factory::Visit(Frame& control) {
  auto* box = new wxStaticBox(&parent_, wxID_ANY, ToWx(control.caption.Get()));
  SetTitleBesideLine(*box);
  widget_.window = box;
  widget_.show = [box, &control] {
    ShowWithTip(control, *box);
    // The layout keeps a place for every child that counts as shown, even inside a hidden box.
    for (wxWindow* inside : box->GetChildren()) inside->Show(control.visible);
    const wxString caption = ToWx(control.caption.Get());
    if (box->GetLabel() != caption) box->SetLabel(caption);
  };
}

wxListBox& Factory::MakeListBox(Selecting selecting, int lines) {
  auto* list = new wxListBox(&parent_, wxID_ANY, wxDefaultPosition, wxDefaultSize, 0, nullptr,
                             static_cast<long>(selecting) | wxLB_HSCROLL);
  list->SetMinSize(wxSize(Characters(kListCharacters), lines * parent_.GetCharHeight() * 3 / 2));
  SetAccessibleName(*list, spokenName_);
  widget_.window = list;
  return *list;
}

void ShowItems(const std::vector<std::string>& wanted, wxListBox& list) {
  wxArrayString items;
  for (const std::string& item : wanted) items.Add(ToWx(item));
  if (list.GetStrings() != items) list.Set(items);
}

void Factory::Visit(ListBox& control) {
  wxListBox* list = &MakeListBox(Selecting::One, control.linesShown);
  widget_.show = [list, &control] {
    ShowWithTip(control, *list);
    ShowItems(control.items, *list);
    const int wanted = control.selected.Get() ? static_cast<int>(*control.selected.Get()) : wxNOT_FOUND;
    if (list->GetSelection() == wanted) return;
    list->SetSelection(wanted);
    if (wanted != wxNOT_FOUND) list->EnsureVisible(wanted);
  };
  list->Bind(wxEVT_LISTBOX, [list, &control](wxCommandEvent& event) {
    if (event.GetSelection() < 0) return;
    if (!control.selected.Get() && IsFocusMoving()) return list->SetSelection(wxNOT_FOUND);
    const auto line = static_cast<std::size_t>(event.GetSelection());
    if (!(control.selected == line)) control.pick(line);
  });
  list->Bind(wxEVT_LISTBOX_DCLICK, [&control](wxCommandEvent& event) {
    if (event.GetSelection() >= 0) control.open(static_cast<std::size_t>(event.GetSelection()));
  });
}

void Factory::Visit(MultiListBox& control) {
  wxListBox* list = &MakeListBox(Selecting::Several);
  ToggleByClick(*list);
  const auto isSelected = [&control](int line) {
    return std::binary_search(control.selected->begin(), control.selected->end(), static_cast<std::size_t>(line));
  };
  widget_.show = [list, &control, isSelected] {
    ShowWithTip(control, *list);
    ShowItems(control.items, *list);
    for (int line = 0; line < static_cast<int>(list->GetCount()); ++line) {
      if (list->IsSelected(line) != isSelected(line)) list->SetSelection(line, isSelected(line));
    }
  };
  list->Bind(wxEVT_LISTBOX, [list, &control](wxCommandEvent&) {
    wxArrayInt lines;
    list->GetSelections(lines);
    std::vector<std::size_t> indexes(lines.begin(), lines.end());
    std::sort(indexes.begin(), indexes.end());
    control.choose(indexes);
  });
}

void Factory::Visit(ListView& control) {
  widget_ = MakeListViewWidget(control, parent_);
  SetAccessibleName(*widget_.window, spokenName_);
  widget_.show = [list = widget_.window, showRows = widget_.show, &control] {
    ShowWithTip(control, *list);
    showRows();
  };
}

void Factory::Visit(TabControl& control) {
  auto* book = new wxNotebook(&parent_, wxID_ANY);
  for (const std::string& caption : control.Tabs()) {
    book->AddPage(new wxPanel(book), wxControl::EscapeMnemonics(ToWx(caption)));
  }
  SetAccessibleName(*book, spokenName_);
  widget_.window = book;
  widget_.show = [book, &control] {
    ShowWithTip(control, *book);
    book->ChangeSelection(control.selected);
    wxWindow* page = book->GetPage(control.selected);
    page->CallAfter([page] { page->Layout(); });  // some widgets know their best size only when they have been shown
  };
  book->Bind(wxEVT_NOTEBOOK_PAGE_CHANGED, [book, &control](wxBookCtrlEvent& event) {
    event.Skip();
    const int page = event.GetSelection();
    if (event.GetEventObject() == book && page >= 0) control.pick(static_cast<std::size_t>(page));
  });
}

/// The panels share the bar as their texts need it: what was not done may be longer than what was.
void Factory::Visit(StatusBar& control) {
  auto* bar = new wxStatusBar(&parent_, wxID_ANY, wxSTB_SIZEGRIP | wxSTB_ELLIPSIZE_MIDDLE | wxSTB_SHOW_TIPS);
  SetAccessibleName(*bar, spokenName_);
  bar->SetFieldsCount(static_cast<int>(control.panels.size()));
  widget_.window = bar;
  widget_.show = [bar, &control] {
    ShowWithTip(control, *bar);
    std::vector<int> shares;
    for (const auto& panel : control.panels) {
      shares.push_back(-std::max(bar->GetTextExtent(ToWx(panel.Get())).x, kLeastShare));
    }
    bar->SetStatusWidths(static_cast<int>(shares.size()), shares.data());
    for (std::size_t i = 0; i < control.panels.size(); ++i) {
      bar->SetStatusText(ToWx(control.panels[i].Get()), static_cast<int>(i));
    }
  };
}

}  // namespace

Widget MakeWidget(Control& control, wxWindow& parent, bool growing, const std::string& spokenName) {
  Factory factory(parent, growing, spokenName);
  control.Accept(factory);
  Widget widget = factory.Take();
  widget.window->SetName(control.Name());
  widget.show();
  return widget;
}

}  // namespace quillbox
