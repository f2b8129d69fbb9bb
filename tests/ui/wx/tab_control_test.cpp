#include "ui/tab_control.h"

#include <gtest/gtest.h>
#include <wx/notebook.h>
#include <wx/textctrl.h>

#include "support/form_platform.h"
#include "support/window_test.h"
#include "ui/form.h"
#include "ui/wx/form_window.h"

namespace quillbox {
namespace {

struct TabbedForm : Form {
  explicit TabbedForm(HandlerGuard& guard) : Form(guard, "Tabbed", "Tabbed") {
    tabs.onClick = [this] { ++picks; };
  }
  LayoutNode Layout() override {
    return Column({Tabs(tabs, {Item(first), Grid(1, {0}, {Item(third), Item(second)})}, 1), Item(cmdClose)});
  }

  TabControl tabs{*this, "tabs", {"One", "Two & three"}};
  TextBox first{*this, "first", "1"};
  TextBox second{*this, "second", "2"};
  TextBox third{*this, "third", "3"};
  Button cmdClose{*this, "cmdClose", "Close"};
  int picks = 0;
};

TEST(TabControlTest, OnePageIsSeenAndAPersonPicksIt) {
  FormPlatform platform;
  HandlerGuard guard(platform);
  TabbedForm form(guard);
  FormWindow window(form);
  form.Show();
  Settle();
  wxFrame& frame = *window.Window();
  auto& book = Find<wxNotebook>(frame, "tabs");
  const auto seen = [&](const char* name) { return Find<wxTextCtrl>(frame, name).IsShownOnScreen(); };
  EXPECT_TRUE(seen("first") && !seen("second"));

  form.tabs.selected = 1;
  Settle();
  EXPECT_TRUE(!seen("first") && seen("second") && seen("third"));
  EXPECT_EQ(form.picks, 0) << "code that shows a page is no person";

  Find<wxTextCtrl>(frame, "second").SetFocus();
  Press(WXK_TAB);
  EXPECT_EQ(wxWindow::FindFocus()->GetName(), "third") << "the controls' order, not that of the page";
  Press(WXK_PAGEUP, wxMOD_CONTROL);
  EXPECT_TRUE(seen("first"));
  EXPECT_EQ(form.tabs.selected, 0);
  EXPECT_EQ(form.picks, 1);

  // The second tab begins right of the middle of the first one's text.
  for (int x = 20; form.tabs.selected == 0 && x < book.GetSize().x; x += 20) {
    MoveTo(book.GetScreenPosition() + wxPoint(x, 15));
    wxUIActionSimulator().MouseClick();
    Settle();
  }
  EXPECT_EQ(form.tabs.selected, 1);
  EXPECT_EQ(form.picks, 2) << "a click on the tab that is seen picks nothing";
  EXPECT_EQ(book.GetPageText(1), "Two & three");
}

}  // namespace
}  // namespace quillbox
