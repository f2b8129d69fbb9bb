// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/form_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/combobox.h>
#include <wx/listbox.h>
#include <wx/menu.h>
#include <wx/radiobut.h>
#include <wx/statbox.h>
#include <wx/stattext.h>
#include <wx/statusbr.h>
#include <wx/textctrl.h>

#include <utility>

#include "support/every_control_form.h"
#include "support/window_test.h"
#include "ui/wx/readable_colour.h"

namespace quillbox {
namespace {

constexpr const char* kLongPath =
    "C:\\Documents and Settings\\Someone & Co\\Local Settings\\Application Data\\Identities\\"
    "{0F2B6E4A-6A3C-4B52-9E0A-7D0E3A1C5B99}\\Microsoft\\Outlook Express";

struct FormWindowTest : ShownForm<EveryControlForm> {
  std::string TakeActs() { return std::exchange(form.acts, ""); }

  /// The text in the control's widget: what an entry holds, a list's first line, a status bar's first panel, a caption.
  wxString Shown(const Control& control) {
    auto& widget = Widget<wxWindow>(control);
    if (const auto* entry = dynamic_cast<wxTextEntry*>(&widget)) return entry->GetValue();
    if (const auto* list = dynamic_cast<wxListBox*>(&widget)) return list->GetString(0);
    if (const auto* bar = dynamic_cast<wxStatusBar*>(&widget)) return bar->GetStatusText(0);
    return wxControl::RemoveMnemonics(widget.GetLabel());
  }
  /// Every shown widget is inside the window and has at least the size that its content needs.
  void ExpectNothingCutOff() {
    for (const Control* control : form.Controls()) {
      const auto& widget = Widget<wxWindow>(*control);
      if (!widget.IsShownOnScreen()) continue;
      EXPECT_TRUE(Window().GetScreenRect().Contains(widget.GetScreenRect())) << control->Name();
      const wxSize needed = widget.GetEffectiveMinSize();
      EXPECT_TRUE(widget.GetSize().x >= needed.x && widget.GetSize().y >= needed.y) << control->Name();
    }
  }
  void SetHeight(int twips, bool frameVisible) {
    form.frame.visible = frameVisible;
    form.heightTwips = twips;
    Settle();
  }
};

TEST_F(FormWindowTest, WidgetsFollowTheControlsAndNoHandlerRuns) {
  EXPECT_EQ(Shown(form.picker), "Combo1") << "a text that is not among the items";

  form.caption = "Other";
  form.value.caption = "Tom & Jerry";
  form.value.colour = Colour::Red;
  form.picker.items = {"a", "b"};
  form.picker.text = "b";
  form.typed.text = "*.idx";
  form.box.text = "D:\\";
  form.box.SelectAll();
  form.box.readOnly = true;
  form.check.checked = true;
  form.cmdOk.enabled = false;
  form.cmdInner.caption = "Please Wait";
  form.frame.caption = "Less";
  form.list.items = {"x", "y"};
  form.list.selected = 1;
  form.list.tooltip = "New tip";
  form.bar.panels[1] = "second";
  form.cmdClose.visible = false;
  Settle();

  EXPECT_EQ(Window().GetTitle(), "Other");
  EXPECT_EQ(Widget<wxStaticText>(form.value).GetLabelText(), "Tom & Jerry");
  const wxColour red = Widget<wxStaticText>(form.value).GetForegroundColour();
  EXPECT_TRUE(red.Red() > 150 && red.Green() < 100 && red.Blue() == red.Green());
  EXPECT_GE(Contrast(red, Window().GetBackgroundColour()), 4.5);
  EXPECT_EQ(Shown(form.picker), "b");
  EXPECT_EQ(Widget<wxComboBox>(form.picker).GetCount(), 2U);
  EXPECT_EQ(Shown(form.typed), "*.idx");
  EXPECT_EQ(Widget<wxTextCtrl>(form.box).GetStringSelection(), "D:\\");
  EXPECT_FALSE(Widget<wxTextCtrl>(form.box).IsEditable());
  EXPECT_TRUE(Widget<wxCheckBox>(form.check).GetValue());
  EXPECT_FALSE(Widget<wxButton>(form.cmdOk).IsEnabled());
  EXPECT_EQ(Shown(form.cmdInner), "Please Wait");
  EXPECT_EQ(Shown(form.frame), "Less");
  EXPECT_EQ(Widget<wxListBox>(form.list).GetStringSelection(), "y");
  EXPECT_EQ(Widget<wxListBox>(form.list).GetToolTipText(), "New tip");
  EXPECT_EQ(Widget<wxStatusBar>(form.bar).GetStatusText(1), "second");
  EXPECT_FALSE(Widget<wxButton>(form.cmdClose).IsShown());
  EXPECT_EQ(form.acts, "");
  EXPECT_EQ(platform.commandsEnded, 0);
}

TEST_F(FormWindowTest, NamesOfADiskTakeOneLineAndStayWhatTheyAre) {
  // A line end, a character that turns the writing direction, a lone surrogate, one beyond the first plane.
  const std::string name = "a\nb\u202Ec\xED\xA0\x80\U0001F600";
  const wxString shown = wxString::FromUTF8("a\u240Ab\uFFFDc\uFFFD\U0001F600");
  form.picker.items = {"x", name, shown.utf8_string()};
  for (Property<std::string>* text : {&form.caption, &form.value.caption, &form.value.tooltip, &form.frame.caption,
                                      &form.first.caption, &form.picker.text, &form.box.text, &form.bar.panels[0]}) {
    *text = name;
  }
  for (auto* items : {&form.list.items, &form.several.items}) *items = {name};
  Settle();
  const Control* const controls[] = {&form.value, &form.picker, &form.box,     &form.frame,
                                     &form.first, &form.list,   &form.several, &form.bar};
  for (const Control* control : controls) EXPECT_EQ(Shown(*control), shown) << control->Name();
  EXPECT_EQ(Window().GetTitle(), shown);
  EXPECT_EQ(Widget<wxStaticText>(form.value).GetToolTipText(), shown);
  EXPECT_EQ(Widget<wxComboBox>(form.picker).GetString(1), shown);
  EXPECT_EQ(form.picker.text, name);
  EXPECT_EQ(form.box.text, name);
  EXPECT_EQ(form.acts, "");
  // Of two items that look alike the one that was picked counts.
  auto& picker = Widget<wxComboBox>(form.picker);
  for (const int item : {0, 1, 2, 1}) {
    picker.SetSelection(item);
    wxCommandEvent picked(wxEVT_COMBOBOX, picker.GetId());
    picked.SetEventObject(&picker);
    picked.SetInt(item);
    picker.ProcessWindowEvent(picked);
    EXPECT_EQ(form.picker.text, form.picker.items->at(static_cast<std::size_t>(item)));
  }
}

TEST_F(FormWindowTest, ActsOfAPersonRunTheHandlersOnce) {
  ClickOn(Widget<wxButton>(form.cmdOk));
  ClickOn(Widget<wxCheckBox>(form.check));
  ClickOn(Widget<wxCheckBox>(form.check));
  EXPECT_EQ(TakeActs(), "ok checked unchecked ");
  ClickOn(Widget<wxTextCtrl>(form.box));
  TypeText("x");
  EXPECT_EQ(TakeActs(), "box=C:\\Datax ");
  DoubleClickAt(Widget<wxListBox>(form.list).GetScreenPosition() + wxPoint(20, 30));
  EXPECT_EQ(TakeActs(), "list=1 open=1 ");
  Press(WXK_DOWN);
  Press(WXK_RETURN);
  EXPECT_EQ(TakeActs(), "list=2 open=2 ");
}

TEST_F(FormWindowTest, AListIsNotPickedFromByTheFocusAlone) {
  form.list.selected = std::nullopt;
  ClickOn(Widget<wxTextCtrl>(form.box));
  Press(WXK_TAB);
  EXPECT_TRUE(Widget<wxListBox>(form.list).HasFocus());
  EXPECT_EQ(Widget<wxListBox>(form.list).GetSelection(), wxNOT_FOUND);
  EXPECT_EQ(TakeActs(), "");
  Press(WXK_DOWN);
  EXPECT_EQ(TakeActs().substr(0, 5), "list=");
}

TEST_F(FormWindowTest, APickerTakesNoTypingAndAnEditableComboDoes) {
  ClickOn(Widget<wxComboBox>(form.picker));
  Press(WXK_DOWN);
  Press(WXK_DOWN);
  Press(WXK_RETURN);
  EXPECT_EQ(TakeActs(), "picker=two#2 ") << "the second of two equal items is the one picked";
  TypeText("z");
  EXPECT_EQ(Shown(form.picker), "two");
  Press(WXK_UP);
  Press(WXK_UP);
  EXPECT_EQ(TakeActs(), "picker=two#1 picker=one#0 ") << "the arrow keys go on from the item shown";

  Widget<wxComboBox>(form.typed).SetFocus();
  Settle();
  ClickAt(Widget<wxComboBox>(form.typed).GetScreenPosition() + wxPoint(10, 10));
  Press('A', wxMOD_CONTROL);
  TypeText("b.c");
  EXPECT_EQ(form.typed.text.Get(), "b.c");
}

TEST_F(FormWindowTest, OptionsExcludeOneAnotherAndAnyNumberOfItemsIsSelected) {
  auto& first = Widget<wxRadioButton>(form.first);
  auto& second = Widget<wxRadioButton>(form.second);
  EXPECT_EQ(first.GetLabelText(), "Tom & Jerry.wab");
  EXPECT_TRUE(second.GetValue());
  ClickOn(first);
  EXPECT_TRUE(first.GetValue() && !second.GetValue());
  ClickOn(first);
  EXPECT_EQ(TakeActs(), "first first ") << "a chosen one can be clicked again";
  form.options.Choose(nullptr);
  EXPECT_FALSE(first.GetValue() || second.GetValue());
  ClickOn(second);
  EXPECT_EQ(TakeActs(), "second ");

  auto& list = Widget<wxListBox>(form.several);
  form.several.selected = std::vector<std::size_t>{2};
  EXPECT_TRUE(list.IsSelected(2));
  for (const int y : {10, 30, 30, 10, 10}) ClickAt(list.GetScreenPosition() + wxPoint(20, y));
  EXPECT_THAT(form.several.selected.Get(), testing::ElementsAre(0, 2));
  form.several.selected = std::vector<std::size_t>{};
  ClickAt(list.GetScreenPosition() + wxPoint(20, 10));
  wxUIActionSimulator().KeyDown(WXK_SHIFT);
  ClickAt(list.GetScreenPosition() + wxPoint(20, 50));
  wxUIActionSimulator().KeyUp(WXK_SHIFT);
  EXPECT_THAT(form.several.selected.Get(), testing::ElementsAre(0, 1, 2)) << "Shift extends";
  EXPECT_TRUE(list.IsSelected(0) && list.IsSelected(1) && list.IsSelected(2));
  form.several.selected = std::vector<std::size_t>{};
  EXPECT_FALSE(list.IsSelected(0) || list.IsSelected(2));
}

TEST_F(FormWindowTest, TabGoesInTheControlsOrderThroughFrames) {
  Widget<wxComboBox>(form.picker).SetFocus();
  MoveTo(Window().GetScreenRect().GetBottomLeft() + wxPoint(5, -5));
  std::vector<std::string> order;
  for (int i = 0; i < 11; ++i) {
    if (const wxWindow* focused = wxWindow::FindFocus()) order.push_back(focused->GetName().utf8_string());
    Press(WXK_TAB);
  }
  EXPECT_THAT(order, testing::ElementsAre("picker", "typed", "check", "cmdOk", "cmdInner", "box", "list", "first",
                                          "second", "several", "cmdClose"));
}

TEST_F(FormWindowTest, EnterPressesTheDefaultButtonAndEscapeTheCancelOne) {
  ClickOn(Widget<wxTextCtrl>(form.box));
  Press(WXK_RETURN);
  EXPECT_TRUE(WaitFor([this] { return form.acts == "ok "; })) << form.acts;
  Press(WXK_ESCAPE);
  EXPECT_FALSE(form.visible || Window().IsShown());

  form.Show();
  Settle();
  Window().Close();
  EXPECT_FALSE(form.visible) << "the title bar closes like Esc";
  EXPECT_EQ(platform.commandsEnded, 3);
}

TEST_F(FormWindowTest, EscapeClosesAnOpenMenuOrListBeforeTheWindow) {
  const wxPoint fileMenu = Window().GetScreenPosition() + wxPoint(20, 10);
  const std::pair<const char*, std::function<void()>> popups[] = {
      {"menu bar", [] { Press(WXK_F10); }},
      {"menu", [&] { ClickAt(fileMenu); }},
      {"list", [this] { ClickOn(Widget<wxComboBox>(form.picker)); }},
  };
  for (const auto& [what, open] : popups) {
    open();
    Press(WXK_ESCAPE);
    EXPECT_TRUE(form.visible) << what;
    form.Show();
    Settle();
  }
}

TEST_F(FormWindowTest, MenuShowsSubmenusGreysAndRuns) {
  wxMenuBar& bar = *Window().GetMenuBar();
  ASSERT_EQ(bar.GetMenuCount(), 2U);
  const int saveText = bar.FindMenuItem("File", "Save As Text");
  const int saveHtml = bar.FindMenuItem("File", "Save As HTML");
  ASSERT_TRUE(saveText != wxNOT_FOUND && saveHtml != wxNOT_FOUND);
  EXPECT_TRUE(bar.IsEnabled(saveText) && !bar.IsEnabled(saveHtml));
  EXPECT_EQ(bar.GetMenu(0)->GetMenuItemCount(), 2U) << "items of one menu share it";

  const wxPoint searchMenu(60, 10);
  ClickAt(Window().GetScreenPosition() + searchMenu);
  EXPECT_EQ(TakeActs(), "Search ") << "a click in the bar is enough";
  Press(WXK_F10);
  Press(WXK_RIGHT);
  Press(WXK_RETURN);
  EXPECT_EQ(TakeActs(), "Search ");
}

TEST_F(FormWindowTest, HeightFollowsTheFormButNothingIsEverCutOff) {
  SetHeight(7500, false);
  EXPECT_EQ(Window().GetSize().y, 500);
  EXPECT_FALSE(Widget<wxTextCtrl>(form.box).IsShownOnScreen());
  const int listHeight = Widget<wxListBox>(form.list).GetSize().y;
  SetHeight(9000, true);
  EXPECT_EQ(Window().GetSize().y, 600);
  EXPECT_TRUE(Widget<wxTextCtrl>(form.box).IsShownOnScreen());
  ExpectNothingCutOff();
  SetHeight(7500, false);
  EXPECT_EQ(Window().GetSize().y, 500);
  EXPECT_EQ(Widget<wxListBox>(form.list).GetSize().y, listHeight) << "a hidden frame leaves no hole";

  form.cmdOk.caption = "A caption that is a good deal longer than anything that the window has shown so far";
  form.lblTyped.caption = "A longer label than before, too:";
  SetHeight(15, true);
  ExpectNothingCutOff();
}

TEST_F(FormWindowTest, TheTooltipOfAShortenedLabelHasItsWholeText) {
  auto& value = Widget<wxStaticText>(form.value);
  EXPECT_EQ(value.GetToolTipText(), "Path to folder.");
  form.value.caption = kLongPath;
  Settle();
  EXPECT_EQ(value.GetToolTipText(), wxString(kLongPath) + "\nPath to folder.");
  EXPECT_LT(Window().GetSize().x, 1000) << "a long path must not widen the window without end";
  Window().SetSize(Window().GetSize() + wxSize(600, 0));
  Settle();
  EXPECT_EQ(value.GetToolTipText(), "Path to folder.");
}

TEST_F(FormWindowTest, ALongOptionIsShortenedWithItsTextInTheTooltip) {
  form.second.caption = std::string(kLongPath) + ".wab";
  Settle();
  auto& second = Widget<wxRadioButton>(form.second);
  EXPECT_LT(second.GetSize().x, 450);
  EXPECT_TRUE(second.GetLabelText().StartsWith("C:\\Docu") && second.GetLabelText().EndsWith(".wab"));
  EXPECT_EQ(second.GetToolTipText(), wxString(kLongPath) + ".wab\nClick to select");
}

TEST(ReadableColour, ContrastIsThatOfTheGuidelinesAndRedIsReadableOnAnyTheme) {
  const wxColour black(0, 0, 0);
  const wxColour white(255, 255, 255);
  const wxColour red(255, 0, 0);
  EXPECT_DOUBLE_EQ(Contrast(black, white), 21);
  EXPECT_NEAR(Contrast(red, white), 4.00, 0.005);
  EXPECT_NEAR(Contrast(red, black), 5.25, 0.005);
  EXPECT_EQ(Readable(red, black), red);
  for (const unsigned char grey : std::initializer_list<unsigned char>{0, 38, 56, 118, 200, 246, 255}) {
    const wxColour background(grey, grey, grey);
    EXPECT_GE(Contrast(Readable(red, background), background), 4.5) << int{grey};
  }
}

TEST_F(FormWindowTest, WhatIsPressedWhileAHandlerRunsWaitsForItsEnd) {
  form.cmdOk.onClick = [this] {
    form.pointer = Pointer::Hourglass;
    ClickWithoutSettling(Widget<wxButton>(form.cmdInner));
    for (int i = 0; i < 10; ++i) {
      wxMilliSleep(10);
      form.cmdOk.caption = "Please Wait " + std::to_string(i);
    }
    form.pointer = Pointer::Normal;
    form.acts += "ok-end ";
  };
  ClickOn(Widget<wxButton>(form.cmdOk));
  Settle();
  EXPECT_EQ(TakeActs(), "ok-end inner ");
}

TEST_F(FormWindowTest, LayoutThatLeavesOutAControlIsRefused) {
  struct Incomplete : Form {
    using Form::Form;
    LayoutNode Layout() override { return Column({Item(shown)}); }
    Label shown{*this, "shown"}, forgotten{*this, "forgotten"};
  } incomplete(guard, "Incomplete", "");
  FormWindow other(incomplete);
  EXPECT_THROW(incomplete.Show(), std::logic_error);
}

}  // namespace
}  // namespace quillbox
