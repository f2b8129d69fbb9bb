// SPDX-License-Identifier: GPL-3.0-or-later
// The program's windows as a person meets them: drawn by the toolkit on a sample disk, opened and closed by keys, and
// walked through by Tab.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <wx/button.h>
#include <wx/combobox.h>
#include <wx/textctrl.h>

#include <map>

#include "support/sample_windows.h"
#include "support/window_test.h"
#include "ui/list_view.h"
#include "ui/tab_control.h"

namespace quillbox {
namespace {

/// The smallest screen that is supported, less a title bar.
const wxSize kRoom(1024, 768 - 40);

struct Window {
  const char* form;
  const char* keys;  ///< from the main window: m the menu bar, arrows, e Enter; t Tab
  const char* item;  ///< the menu item that they reach
};
constexpr Window kWindows[] = {
    {"Form6", "m>ve", "chAddBk"},
    {"Form3", "m>>vv>e", "crtbkfldr2"},
    {"Form13", "m>>v^^^^e", "regEntry"},
    {"Form12", "m>>v^^^e", "msc"},
    {"LastBackup", "m>>v^^e", "lastBackup"},
    {"CheckBackup", "m>>v^e", "checkBackup"},
    {"Form10", "m>>v^^^^^^e", "svMailMsgRules"},
    {"Form11", "m>>v^^^^^e", "svNewsRules"},
    {"Form17", "m>>>ve", "usrIDString"},
    {"Form8", "m>>>vve", "chgStartIdent"},
    {"Form7", "m>>>>ve", "crtnewID"},
    {"Form4", "m>>>>vve", "CloneIdentity"},
    {"Form5", "m>>>>>ve", "remIdent"},
    {"Form2", "m>>>>>>e", "Search"},
    {"ExportMail", "m>>>>>>>ve", "exportMail"},
    {"ExportContacts", "m>>>>>>>v^e", "exportContacts"},
};

class RealWindows : public SampleWindows {
 protected:
  void SetUp() override {
    SampleWindows::SetUp();
    for (Form* form : windows->All()) drawn_.emplace(form, *form);
    Start();
    Settle();
    PointAt(windows->form1);
  }
  void TearDown() override { drawn_.clear(); }

  Form& Named(const std::string& name) {
    for (Form* form : windows->All()) {
      if (form->Name() == name) return *form;
    }
    throw std::invalid_argument(name);
  }
  wxFrame& FrameOf(Form& form) { return *drawn_.at(&form).Window(); }
  wxWindow& Widget(Form& form, const Control& control) { return Find<wxWindow>(FrameOf(form), control.Name()); }
  /// Gives the keyboard to the window.
  void PointAt(Form& form) { MoveTo(FrameOf(form).GetScreenRect().GetBottomLeft() + wxPoint(5, -5)); }

  void PressKeys(const char* keys) {
    const std::map<char, int> codes = {{'m', WXK_F10}, {'>', WXK_RIGHT},  {'<', WXK_LEFT}, {'v', WXK_DOWN},
                                       {'^', WXK_UP},  {'e', WXK_RETURN}, {'t', WXK_TAB},  {'x', WXK_ESCAPE}};
    for (; *keys != 0; ++keys) Press(codes.at(*keys));
  }

  /// The controls that a person can reach, in the order in which the window names them.
  std::vector<std::string> Reachable(Form& form) {
    std::vector<std::string> names;
    for (Control* control : form.Controls()) {
      if (dynamic_cast<Label*>(control) || dynamic_cast<Frame*>(control) || dynamic_cast<StatusBar*>(control)) continue;
      const wxWindow& widget = Widget(form, *control);
      if (widget.IsShownOnScreen() && widget.IsEnabled()) names.push_back(control->Name());
    }
    return names;
  }
  /// Presses Tab until the first control has the focus again. Each stop must have a name that can be spoken.
  std::vector<std::string> WalkByTab(Form& form) {
    std::vector<std::string> stops;
    auto* window = GTK_WINDOW(FrameOf(form).GetHandle());
    for (GtkWidget *first = gtk_window_get_focus(window), *now = first; now && stops.size() < 100;) {
      const char* spoken = atk_object_get_name(gtk_widget_get_accessible(now));
      const wxWindow* focused = wxWindow::FindFocus();
      stops.push_back(focused ? focused->GetName().utf8_string() : "?");
      EXPECT_TRUE(spoken && *spoken) << form.Name() << ": " << stops.back() << " has no name";
      wxUIActionSimulator().Char(WXK_TAB);
      if (!WaitFor([&] { return gtk_window_get_focus(window) != now; })) {
        ADD_FAILURE() << stops.back() << " keeps the focus";
        break;
      }
      now = gtk_window_get_focus(window);
      if (now == first) break;
    }
    return stops;
  }
  void ExpectTabReachesAll(Form& form) { EXPECT_EQ(WalkByTab(form), Reachable(form)) << form.Name(); }

 private:
  std::map<Form*, FormWindow> drawn_;
};

TEST_F(RealWindows, OpenByKeysAreWalkedByTabAndCloseByEsc) {
  windows->form1.cmdShowAdditionalInfo.click();
  Settle();
  ExpectTabReachesAll(windows->form1);
  for (const Window& row : kWindows) {
    SCOPED_TRACE(row.form);
    Form& form = Named(row.form);
    PointAt(windows->form1);
    PressKeys(row.keys);
    ASSERT_TRUE(form.visible && !windows->form1.visible);
    PointAt(form);
    ExpectTabReachesAll(form);
    PressKeys("x");
    EXPECT_TRUE(!form.visible && windows->form1.visible);
  }
}

TEST_F(RealWindows, EveryPageOfTheSettingsIsWalkedByTab) {
  windows->form1.menuBar.click("regEntry");
  Form13& form = windows->form13;
  Settle();
  PointAt(form);
  for (std::size_t tab = 1; tab < form.tabs.size(); ++tab) {
    form.SSTab1.pick(tab);
    Settle();
    Widget(form, form.cmboUserIDs10).SetFocus();
    Settle();
    ExpectTabReachesAll(form);
  }
}

TEST_F(RealWindows, HaveTheirSizeWhenTheyAreShownAndFitASmallScreen) {
  for (const Window& row : kWindows) {
    SCOPED_TRACE(row.form);
    Form& form = Named(row.form);
    windows->form1.menuBar.click(row.item);
    const wxSize shown = FrameOf(form).GetSize();
    Settle();
    if (auto* settings = dynamic_cast<Form13*>(&form)) {
      for (std::size_t tab = 0; tab < settings->tabs.size(); ++tab) {
        settings->SSTab1.pick(tab);
        Settle();
      }
    }
    EXPECT_EQ(FrameOf(form).GetSize(), shown);
    EXPECT_TRUE(shown.x <= kRoom.x && shown.y <= kRoom.y) << shown.x << " x " << shown.y;
    std::map<int, std::string> heights;
    for (Control* control : form.Controls()) {
      const wxWindow& widget = Widget(form, *control);
      const bool isField = dynamic_cast<const wxTextCtrl*>(&widget) || dynamic_cast<const wxComboBox*>(&widget) ||
                           dynamic_cast<const wxButton*>(&widget);
      if (isField && widget.IsShownOnScreen()) heights[widget.GetSize().y] += control->Name() + " ";
    }
    EXPECT_EQ(heights.size(), 1U) << testing::PrintToString(heights);
    form.close();
  }
}

TEST_F(RealWindows, EscAndEnterDoNothingInTheMainWindowAndEscClosesAnOpenListFirst) {
  PressKeys("xe");
  PressKeys("mvx");
  PressKeys("xx");
  EXPECT_TRUE(windows->form1.visible);
  EXPECT_TRUE(Names(BackupFolderOnHost()).empty());
  windows->form1.menuBar.click("remIdent");
  Settle();
  ClickOn(Widget(windows->form5, windows->form5.cmbDelIdent));
  PressKeys("x");
  EXPECT_TRUE(windows->form5.visible) << "only the list is closed";
  PressKeys("x");
  EXPECT_FALSE(windows->form5.visible);
}

TEST_F(RealWindows, TheMouseWheelChangesNoClosedPicker) {
  for (const ComboBox* picker : {&windows->form1.cmbUserNames, &windows->form1.inpth1}) {
    const wxRect place = Widget(windows->form1, *picker).GetScreenRect();
    const std::string before = picker->text;
    for (const int fromRight : {place.width / 2, 10}) {
      MoveTo(place.GetTopRight() + wxPoint(-fromRight, place.height / 2));
      ASSERT_EQ(std::system("xdotool click 5 click 5 click 4"), 0);
      Settle();
      EXPECT_EQ(picker->text, before);
    }
  }
}

}  // namespace
}  // namespace quillbox
