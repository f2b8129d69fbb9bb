#include "ui/wx/list_view_widget.h"

#include <wx/dataview.h>

#include <algorithm>
#include <cstddef>
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
constexpr int kLeastWidth = 300;
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

void SizeColumns(const ListView& control, wxDataViewCtrl& list) {
  for (unsigned column = 0; column < list.GetColumnCount(); ++column) {
    const int extra = kColumnPadding + (column == 0 ? kCheckBoxWidth : 0);
    list.GetColumn(column)->SetWidth(WidestText(control, column, list) + list.FromDIP(extra));
  }
}

void AddColumns(const ListView& control, wxDataViewCtrl& list) {
  for (unsigned column = 0; column < control.Columns().size(); ++column) {
    const bool hasBox = column == 0 && control.HasCheckBoxes();
    wxDataViewRenderer* renderer = hasBox ? static_cast<wxDataViewRenderer*>(new wxDataViewCheckIconTextRenderer)
                                          : new wxDataViewTextRenderer("string", wxDATAVIEW_CELL_INERT);
    list.AppendColumn(new wxDataViewColumn(ToWx(control.Columns()[column]), renderer, column, wxCOL_WIDTH_DEFAULT,
                                           wxALIGN_LEFT, wxDATAVIEW_COL_RESIZABLE));
  }
}

/// Redraws the check boxes of the rows in view.
void ShowChecksInView(const wxDataViewCtrl& list, Rows& rows) {
  const wxDataViewItem top = list.GetTopItem();
  if (!top.IsOk()) return;
  const unsigned first = rows.GetRow(top);
  const auto seen = static_cast<unsigned>(std::max(list.GetCountPerPage(), 0)) + 2;
  for (unsigned row = first; row < std::min(first + seen, rows.GetCount()); ++row) rows.RowValueChanged(row, 0);
}

}  // namespace

Widget MakeListViewWidget(ListView& control, wxWindow& parent) {
  auto* list = new wxDataViewCtrl(&parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxDV_SINGLE | wxDV_ROW_LINES);
  list->SetMinSize(list->FromDIP(wxSize(kLeastWidth, kShownLines * kLineHeight)));
  const wxObjectDataPtr<Rows> rows(new Rows(control));
  list->AssociateModel(rows.get());
  AddColumns(control, *list);
  SizeColumns(control, *list);
  GiveRowsOneHeight(*list);

  const auto rowOf = [rows](const wxDataViewItem& item) { return static_cast<std::size_t>(rows->GetRow(item)); };
  list->Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [&control, rowOf](wxDataViewEvent& event) {
    if (event.GetItem().IsOk()) control.pick(rowOf(event.GetItem()));
  });
  list->Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED, [&control, rowOf](wxDataViewEvent& event) {
    if (event.GetItem().IsOk()) control.open(rowOf(event.GetItem()));
  });

  Widget widget;
  widget.window = list;
  widget.show = [list, rows, &control, rowOf, generation = control.Generation() - 1]() mutable {
    if (generation != control.Generation()) {
      generation = control.Generation();
      rows->Reset(static_cast<unsigned>(control.RowCount()));
      SizeColumns(control, *list);
    }
    const wxDataViewItem shown = list->GetSelection();
    const auto selected = shown.IsOk() ? std::optional(rowOf(shown)) : std::nullopt;
    if (!control.selected.Get() && selected) list->UnselectAll();
    if (control.selected.Get() && !(control.selected == selected)) {
      const wxDataViewItem item = rows->GetItem(static_cast<unsigned>(*control.selected.Get()));
      list->Select(item);
      list->EnsureVisible(item);
    }
    ShowChecksInView(*list, *rows);
  };
  return widget;
}

}  // namespace quillbox
