// SPDX-License-Identifier: GPL-3.0-or-later
// The widgets with insides of their own: the list of very many rows, and pages behind tabs.
#include <gtest/gtest.h>
#include <wx/dataview.h>
#include <wx/notebook.h>
#include <wx/textctrl.h>

#include <chrono>

#include "support/window_test.h"
#include "ui/list_view.h"
#include "ui/tab_control.h"

namespace quillbox {
namespace {

constexpr std::size_t kManyRows = 100000;
constexpr std::size_t kLongRow = 77777;
constexpr int kNarrow = 320;
constexpr int kWide = 1100;

struct ListForm : Form {
  explicit ListForm(HandlerGuard& guard) : Form(guard, "ListForm", "List") {
    list.onDblClick = [this] { opened.push_back(list.selected->value()); };
    list.SetRowCount(5);
  }
  LayoutNode Layout() override { return Column({Item(list, 1)}); }

  std::size_t asked = 0;
  std::vector<std::size_t> opened;
  ListView list{*this, "list", {"File Name", "Path"}, [this](std::size_t row, std::size_t column) {
                  ++asked;
                  const std::string number = std::to_string(row);
                  const std::string name = row == kLongRow ? std::string(60, 'W') : number;
                  return column == 0 ? "Folder " + name + ".dbx" : "C:\\Mail\\" + name + "\\";
                }};
};

struct ListViewWidgetTest : ShownForm<ListForm> {
  wxDataViewCtrl& List() { return Widget<wxDataViewCtrl>(form.list); }
  wxPoint InRow(unsigned row, int x) {
    const auto* model = dynamic_cast<wxDataViewVirtualListModel*>(List().GetModel());
    const wxRect rect = List().GetItemRect(model->GetItem(row), List().GetColumn(0));
    return List().ClientToScreen(rect.GetPosition()) + wxPoint(x, rect.height / 2);
  }
};

TEST_F(ListViewWidgetTest, MouseAndKeysCheckSelectAndOpen) {
  constexpr int kOnBox = 12;
  constexpr int kOnText = 90;
  ClickAt(InRow(1, kOnBox));
  EXPECT_EQ(form.list.CheckedRows(), std::vector<std::size_t>{1});
  ClickAt(InRow(2, kOnText));
  EXPECT_EQ(form.list.selected, 2U);
  Press(WXK_DOWN);
  EXPECT_EQ(form.list.selected, 3U);
  Press(WXK_SPACE);
  EXPECT_EQ(form.list.CheckedRows(), (std::vector<std::size_t>{1, 3}));
  EXPECT_TRUE(form.opened.empty());
  DoubleClickAt(InRow(4, kOnText));
  EXPECT_EQ(form.opened, std::vector<std::size_t>{4});
  EXPECT_EQ(form.list.CheckedRows(), (std::vector<std::size_t>{1, 3}));
}

TEST_F(ListViewWidgetTest, AHundredThousandRowsStayUsable) {
  const auto start = std::chrono::steady_clock::now();
  form.list.SetRowCount(kManyRows);
  Settle();
  EXPECT_GT(List().GetColumn(0)->GetWidth(), kNarrow) << "a column is as wide as its widest text, seen or not";
  Window().SetSize(kWide, Window().GetSize().y);
  Settle();
  const int path = List().GetColumn(1)->GetWidth();
  EXPECT_LT(path, kWide - kNarrow) << "the last one takes the room that is left and shortens its texts";
  form.asked = 0;
  form.list.SetAllChecked(true);
  Settle();
  form.list.pick(kManyRows - 1);
  Settle();
  EXPECT_GT(form.asked, 0U);
  EXPECT_LT(form.asked, 2000U) << "only rows that are seen are asked for";
  form.list.check(kLongRow, false);
  Settle();
  EXPECT_EQ(form.list.CheckedRows().size(), kManyRows - 1);
  form.list.SetRowCount(0);
  Settle();
  EXPECT_FALSE(List().GetSelection().IsOk());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15))
      << "rows that are not seen are not measured";
}

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

struct TabControlTest : ShownForm<TabbedForm> {
  bool Seen(const Control& control) { return Widget<wxTextCtrl>(control).IsShownOnScreen(); }
};

TEST_F(TabControlTest, OnePageIsSeenAndAPersonPicksIt) {
  EXPECT_TRUE(Seen(form.first) && !Seen(form.second));
  form.tabs.selected = 1;
  Settle();
  EXPECT_TRUE(!Seen(form.first) && Seen(form.second) && Seen(form.third));
  EXPECT_EQ(form.picks, 0) << "code that shows a page runs no handler";

  Widget<wxTextCtrl>(form.second).SetFocus();
  Press(WXK_TAB);
  EXPECT_EQ(wxWindow::FindFocus()->GetName(), "third") << "the controls' order, not that of the page";
  Press(WXK_PAGEUP, wxMOD_CONTROL);
  EXPECT_TRUE(Seen(form.first));
  EXPECT_EQ(form.tabs.selected.Get(), 0U);
  EXPECT_EQ(form.picks, 1);

  // The second tab begins right of the middle of the first one's text.
  const auto& book = Widget<wxNotebook>(form.tabs);
  for (int x = 20; form.tabs.selected.Get() == 0 && x < book.GetSize().x; x += 20) {
    ClickAt(book.GetScreenPosition() + wxPoint(x, 15));
  }
  EXPECT_EQ(form.tabs.selected.Get(), 1U);
  EXPECT_EQ(form.picks, 2) << "a click on the tab that is seen picks nothing";
  EXPECT_EQ(book.GetPageText(1), "Two & three");
}

}  // namespace
}  // namespace quillbox
