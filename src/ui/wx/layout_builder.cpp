// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/layout_builder.h"

#include <wx/bookctrl.h>
#include <wx/listbox.h>
#include <wx/panel.h>
#include <wx/sizer.h>
#include <wx/statbox.h>

#include <algorithm>
#include <cstddef>

namespace quillbox {
namespace {

constexpr int kGap = 6;      // between neighbours, in device-independent pixels
constexpr int kMargin = 10;  // around the whole

class Builder {
 public:
  Builder(wxWindow& parent, const WidgetMaker& make)
      : parent_(parent), make_(make), gap_(parent.FromDIP(kGap)), margin_(parent.FromDIP(kMargin)) {}

  wxSizer* Build(const LayoutNode& root) {
    auto* around = new wxBoxSizer(wxVERTICAL);
    AddWhole(*around, root, margin_);
    return around;
  }

 private:
  /// A child's item: a widget, a sizer, or an empty place.
  wxSizerItem* Make(const LayoutNode& node, bool growing) {
    switch (node.kind) {
      case LayoutNode::Kind::Item:
        if (wxWindow* widget = make_(*node.control, parent_, growing)) return new wxSizerItem(widget, wxSizerFlags());
        break;
      case LayoutNode::Kind::Row:
        return new wxSizerItem(MakeBox(node, wxHORIZONTAL), wxSizerFlags());
      case LayoutNode::Kind::Column:
        return new wxSizerItem(MakeBox(node, wxVERTICAL), wxSizerFlags());
      case LayoutNode::Kind::Grid:
        return new wxSizerItem(MakeGrid(node), wxSizerFlags());
      case LayoutNode::Kind::Group:
        return new wxSizerItem(MakeGroup(node), wxSizerFlags());
      case LayoutNode::Kind::Tabs:
        return new wxSizerItem(MakePages(node), wxSizerFlags());
      case LayoutNode::Kind::Space:
        break;
    }
    return new wxSizerItem(0, 0, wxSizerFlags());
  }

  static bool IsOneLine(const LayoutNode& node, const wxSizerItem& item) {
    return node.kind == LayoutNode::Kind::Item && !dynamic_cast<wxListBox*>(item.GetWindow());
  }

  /// Adds `node` so that it fills `sizer`.
  void AddWhole(wxSizer& sizer, const LayoutNode& node, int border) {
    wxSizerItem* item = Make(node, false);
    item->SetProportion(1);
    item->SetFlag(wxEXPAND | wxALL);
    item->SetBorder(border);
    sizer.Add(item);
  }

  wxSizer* MakeBox(const LayoutNode& node, int direction) {
    auto* sizer = new wxBoxSizer(direction);
    const bool isRow = direction == wxHORIZONTAL;
    for (const LayoutNode& child : node.children) {
      wxSizerItem* item = Make(child, isRow && child.grow > 0);
      item->SetProportion(child.grow);
      // One line of text or one button beside something taller is centred.
      const bool centred = isRow && (!child.fill || IsOneLine(child, *item));
      const int across = centred ? int{wxALIGN_CENTRE_VERTICAL} : child.fill ? int{wxEXPAND} : 0;
      const bool first = &child == &node.children.front();
      item->SetFlag(across | (first ? 0 : int{isRow ? wxLEFT : wxTOP}));
      item->SetBorder(first ? 0 : gap_);
      sizer->Add(item);
    }
    return sizer;
  }

  wxSizer* MakeGrid(const LayoutNode& node) {
    const std::size_t columns = std::max<std::size_t>(node.columns, 1);
    auto* sizer = new wxFlexGridSizer(static_cast<int>(columns), gap_, gap_);
    for (const std::size_t column : node.growingColumns) sizer->AddGrowableCol(column, 1);
    for (std::size_t i = 0; i < node.children.size(); ++i) {
      const LayoutNode& child = node.children[i];
      const auto& growing = node.growingColumns;
      wxSizerItem* item = Make(child, std::find(growing.begin(), growing.end(), i % columns) != growing.end());
      const bool oneLine = IsOneLine(child, *item);
      item->SetFlag((child.fill ? int{wxEXPAND} : 0) | (oneLine ? int{wxALIGN_CENTRE_VERTICAL} : 0));
      sizer->Add(item);
      const std::size_t row = i / columns;
      if (child.grow > 0 && !sizer->IsRowGrowable(row)) sizer->AddGrowableRow(row, child.grow);
    }
    return sizer;
  }

  wxSizer* MakeGroup(const LayoutNode& node) {
    auto* box = static_cast<wxStaticBox*>(make_(*node.control, parent_, false));
    // The controls are in a panel of their own, which keeps their tab order; a bare box would order them by position.
    auto* panel = new wxPanel(box);
    Builder inside(*panel, make_);
    auto* around = new wxBoxSizer(wxVERTICAL);
    for (const LayoutNode& child : node.children) inside.AddWhole(*around, child, gap_);
    panel->SetSizer(around);
    auto* sizer = new wxStaticBoxSizer(box, wxVERTICAL);
    sizer->Add(panel, wxSizerFlags(1).Expand());
    panel->Show(box->IsShown());
    return sizer;
  }

  /// Fills the book's pages, which are empty so far.
  wxWindow* MakePages(const LayoutNode& node) {
    auto* book = static_cast<wxBookCtrlBase*>(make_(*node.control, parent_, false));
    for (std::size_t i = 0; i < node.children.size() && i < book->GetPageCount(); ++i) {
      wxWindow* page = book->GetPage(i);
      page->SetSizer(Builder(*page, make_).Build(node.children[i]));
    }
    return book;
  }

  wxWindow& parent_;
  const WidgetMaker& make_;
  int gap_;
  int margin_;
};

}  // namespace

wxSizer* BuildLayout(const LayoutNode& root, wxWindow& parent, const WidgetMaker& make) {
  return Builder(parent, make).Build(root);
}

}  // namespace quillbox
