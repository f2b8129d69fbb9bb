// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/list_view_widget.h"

#include <wx/dataview.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ui/list_view.h"
#include "ui/wx/port.h"
#include "ui/wx/wx_text.h"

namespace quillbox {
namespace {

constexpr int kColumnPadding = 16;
constexpr int kCheckBoxWidth = 28;
constexpr int kShownLines = 9;
constexpr int kLineHeight = 24;
constexpr int kLeastColumnWidth = 150;
constexpr int kLeastPath = 120;
/// How many of a column's longest texts are measured to find the widest.
constexpr std::size_t kTextsMeasured = 40;

/// Column 0 holds the row's first text, with its check box in a list that has them.
class Rows : public wxDataViewVirtualListModel {
 public:
  explicit Rows(ListView& control) : control_(control) {}

  void GetValueByRow(wxVariant& value, unsigned row, unsigned column) const override {
    if (row >= control_.RowCount()) return;
    const wxString text = ToWx(control_.Text(row, column));
    if (column == 0 && control_.HasCheckBoxes()) {
      value << wxDataViewCheckIconText(text, wxBitmapBundle(),
                                       control_.IsChecked(row) ? wxCHK_CHECKED : wxCHK_UNCHECKED);
    } else {
      value = text;
    }
  }

  // NOLINTNEXTLINE(bugprone-easily-swappable-parameters): the toolkit's own
  bool SetValueByRow(const wxVariant& value, unsigned row, unsigned column) override {
    if (column != 0) return false;
    wxDataViewCheckIconText cell;
    cell << value;
    control_.check(row, cell.GetCheckedState() == wxCHK_CHECKED);
    return true;
  }

 private:
  ListView& control_;
};

int WidestText(const ListView& control, std::size_t column, const wxWindow& window) {
  std::vector<std::string> longest;
  const auto isLonger = [](const std::string& a, const std::string& b) { return a.size() > b.size(); };
  for (std::size_t row = 0; row < control.RowCount(); ++row) {
    std::string text = control.Text(row, column);
    if (longest.size() == kTextsMeasured) {
      if (text.size() <= longest.front().size()) continue;
      std::pop_heap(longest.begin(), longest.end(), isLonger);
      longest.pop_back();
    }
    longest.push_back(std::move(text));
    std::push_heap(longest.begin(), longest.end(), isLonger);
  }
  int widest = window.GetTextExtent(ToWx(control.Columns()[column])).x;
  for (const std::string& text : longest) widest = std::max(widest, window.GetTextExtent(ToWx(text)).x);
  return widest;
}

/// The widths that the columns' contents need.
std::vector<int> NeededWidths(const ListView& control, const wxDataViewCtrl& list) {
  std::vector<int> widths;
  for (unsigned column = 0; column < list.GetColumnCount(); ++column) {
    const int extra = kColumnPadding + (column == 0 ? kCheckBoxWidth : 0);
    widths.push_back(WidestText(control, column, list) + list.FromDIP(extra));
  }
  return widths;
}

/// Gives the columns these widths. The last one gets no more than the room that the others leave, and shortens its
/// texts in the middle where that is not enough.
void SizeColumns(const std::vector<int>& widths, wxDataViewCtrl& list) {
  int room = list.GetClientSize().x;
  for (unsigned column = 0; column < widths.size(); ++column) {
    const bool isLast = column + 1 == widths.size();
    const int width = isLast ? std::min(widths[column], std::max(room, list.FromDIP(kLeastPath))) : widths[column];
    list.GetColumn(column)->SetWidth(width);
    room -= width;
  }
}

std::string TipOf(const ListView& control, const wxDataViewCtrl& list, const std::vector<int>& widths,
                  std::size_t row) {
  const auto last = static_cast<unsigned>(widths.size() - 1);
  if (row >= control.RowCount() || list.GetColumn(last)->GetWidth() >= widths.back()) return {};
  return FromWx(ToWx(control.Text(row, last)));
}

void AddColumns(const ListView& control, wxDataViewCtrl& list) {
  for (unsigned column = 0; column < control.Columns().size(); ++column) {
    const bool hasBox = column == 0 && control.HasCheckBoxes();
    wxDataViewRenderer* renderer = hasBox ? static_cast<wxDataViewRenderer*>(new wxDataViewCheckIconTextRenderer)
                                          : new wxDataViewTextRenderer("string", wxDATAVIEW_CELL_INERT);
    renderer->EnableEllipsize(wxELLIPSIZE_MIDDLE);
    list.AppendColumn(new wxDataViewColumn(ToWx(control.Columns()[column]), renderer, column, wxCOL_WIDTH_DEFAULT,
                                           wxALIGN_LEFT, wxDATAVIEW_COL_RESIZABLE));
  }
}

/// Redraws the rows in view.
void RedrawRowsInView(const wxDataViewCtrl& list, Rows& rows) {
  const wxDataViewItem top = list.GetTopItem();
  if (!top.IsOk()) return;
  const unsigned first = rows.GetRow(top);
  const auto seen = static_cast<unsigned>(std::max(list.GetCountPerPage(), 0)) + 2;
  for (unsigned row = first; row < std::min(first + seen, rows.GetCount()); ++row) rows.RowChanged(row);
}

}  // namespace

Widget MakeListViewWidget(ListView& control, wxWindow& parent) {
  auto* list = new wxDataViewCtrl(&parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxDV_SINGLE | wxDV_ROW_LINES);
  const int columns = static_cast<int>(control.Columns().size());
  list->SetMinSize(list->FromDIP(wxSize(columns * kLeastColumnWidth, kShownLines * kLineHeight)));
  const wxObjectDataPtr<Rows> rows(new Rows(control));
  list->AssociateModel(rows.get());
  AddColumns(control, *list);
  const auto widths = std::make_shared<std::vector<int>>(NeededWidths(control, *list));
  SizeColumns(*widths, *list);
  GiveRowsOneHeight(*list);
  ShowRowTips(*list, [&control, list, widths](std::size_t row) { return TipOf(control, *list, *widths, row); });
  list->Bind(wxEVT_SIZE, [list, widths](wxSizeEvent& event) {
    event.Skip();
    SizeColumns(*widths, *list);
  });

  const auto rowOf = [rows](const wxDataViewItem& item) { return static_cast<std::size_t>(rows->GetRow(item)); };
  list->Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [&control, rowOf](wxDataViewEvent& event) {
    if (event.GetItem().IsOk()) control.pick(rowOf(event.GetItem()));
  });
  list->Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED, [&control, rowOf](wxDataViewEvent& event) {
    if (event.GetItem().IsOk()) control.open(rowOf(event.GetItem()));
  });

  Widget widget;
  widget.window = list;
  widget.show = [list, rows, widths, &control, rowOf, generation = control.Generation() - 1,
                 texts = control.TextGeneration()]() mutable {
    const bool isOther = std::exchange(generation, control.Generation()) != control.Generation();
    if (isOther) rows->Reset(static_cast<unsigned>(control.RowCount()));
    if (std::exchange(texts, control.TextGeneration()) != control.TextGeneration() || isOther) {
      *widths = NeededWidths(control, *list);
      SizeColumns(*widths, *list);
    }
    const wxDataViewItem shown = list->GetSelection();
    const auto selected = shown.IsOk() ? std::optional(rowOf(shown)) : std::nullopt;
    if (!control.selected.Get() && selected) list->UnselectAll();
    if (control.selected.Get() && !(control.selected == selected)) {
      const wxDataViewItem item = rows->GetItem(static_cast<unsigned>(*control.selected.Get()));
      list->Select(item);
      list->EnsureVisible(item);
    }
    RedrawRowsInView(*list, *rows);
  };
  return widget;
}

}  // namespace quillbox
