#include <gtest/gtest.h>
#include <wx/dataview.h>

#include <chrono>

#include "support/form_platform.h"
#include "support/window_test.h"
#include "ui/form.h"
#include "ui/list_view.h"
#include "ui/wx/form_window.h"

namespace quillbox {
namespace {

constexpr std::size_t kManyRows = 100000;
constexpr std::size_t kLongRow = 77777;
constexpr int kNarrow = 320;

struct ListForm : Form {
  explicit ListForm(HandlerGuard& guard) : Form(guard, "ListForm", "List") {
    list.onDblClick = [this] { opened.push_back(list.selected); };
  }
  LayoutNode Layout() override { return Column({Item(list, 1)}); }

  std::size_t asked = 0;
  std::vector<int> opened;
  ListView list{*this, "list", {"File Name", "Path"}, [this](std::size_t row, std::size_t column) {
                  ++asked;
                  const std::string number = std::to_string(row);
                  if (column == 0) return "Folder " + number + ".dbx";
                  return "C:\\Mail\\" + (row == kLongRow ? std::string(60, 'W') : number) + "\\";
                }};
};

struct ListViewWidgetTest : testing::Test {
  ListViewWidgetTest() {
    form.list.SetRowCount(5);
    form.Show();
    Settle();
  }
  wxDataViewCtrl& Widget() { return Find<wxDataViewCtrl>(*window.Window(), "list"); }
  wxRect RowRect(unsigned row) {
    const auto* model = dynamic_cast<wxDataViewVirtualListModel*>(Widget().GetModel());
    wxRect rect = Widget().GetItemRect(model->GetItem(row), Widget().GetColumn(0));
    rect.SetPosition(Widget().ClientToScreen(rect.GetPosition()));
    return rect;
  }
  wxPoint InRow(unsigned row, int x) { return {RowRect(row).x + x, RowRect(row).y + RowRect(row).height / 2}; }

  FormPlatform platform;
  HandlerGuard guard{platform};
  ListForm form{guard};
  FormWindow window{form};
};

TEST_F(ListViewWidgetTest, MouseAndKeysCheckSelectAndOpen) {
  constexpr int kOnBox = 12;
  constexpr int kOnText = 90;
  MoveTo(InRow(1, kOnBox));
  wxUIActionSimulator().MouseClick();
  Settle();
  EXPECT_EQ(form.list.CheckedRows(), std::vector<std::size_t>{1});

  MoveTo(InRow(2, kOnText));
  wxUIActionSimulator().MouseClick();
  Settle();
  EXPECT_EQ(form.list.selected, 2);
  Press(WXK_DOWN);
  EXPECT_EQ(form.list.selected, 3);
  Press(WXK_SPACE);
  EXPECT_EQ(form.list.CheckedRows(), (std::vector<std::size_t>{1, 3}));
  EXPECT_TRUE(form.opened.empty());

  MoveTo(InRow(4, kOnText));
  wxUIActionSimulator().MouseDblClick();
  Settle();
  EXPECT_EQ(form.opened, std::vector<int>{4});
  EXPECT_EQ(form.list.CheckedRows(), (std::vector<std::size_t>{1, 3}));
}

TEST_F(ListViewWidgetTest, AHundredThousandRowsStayUsable) {
  const auto start = std::chrono::steady_clock::now();
  form.list.SetRowCount(kManyRows);
  Settle();
  EXPECT_GT(Widget().GetColumn(1)->GetWidth(), kNarrow) << "a column is as wide as its widest text, seen or not";
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
  EXPECT_FALSE(Widget().GetSelection().IsOk());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15))
      << "rows that are not seen are not measured";
}

}  // namespace
}  // namespace quillbox
