// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/menu_builder.h"

#include <wx/frame.h>
#include <wx/menu.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "ui/form.h"
#include "ui/wx/port.h"
#include "ui/wx/wx_text.h"

namespace quillbox {
namespace {

using MenuPath = std::vector<std::string>;

/// The menus made so far, by the captions that lead to them.
class Menus {
 public:
  explicit Menus(wxMenuBar& bar) : bar_(bar) {}

  wxMenu& At(const MenuPath& path) {
    const auto known = menus_.find(path);
    if (known != menus_.end()) return *known->second;
    auto* menu = new wxMenu;
    if (path.size() == 1) {
      bar_.Append(menu, ToWx(path.back()));
    } else {
      At(MenuPath(path.begin(), path.end() - 1)).AppendSubMenu(menu, ToWx(path.back()));
    }
    menus_.emplace(path, menu);
    return *menu;
  }

 private:
  wxMenuBar& bar_;
  std::map<MenuPath, wxMenu*> menus_;
};

/// Where `menu` is in the bar.
std::size_t PositionOf(const wxMenu& menu, const wxMenuBar& bar) {
  std::size_t position = 0;
  while (bar.GetMenu(position) != &menu) ++position;
  return position;
}

}  // namespace

void AddMenuBar(Form& form, wxFrame& frame) {
  if (form.menuBar.Items().empty()) return;
  auto* bar = new wxMenuBar;
  Menus menus(*bar);
  std::vector<const MenuItem*> commands;
  for (const MenuItem& item : form.menuBar.Items()) {
    if (item.path.size() == 1) {
      menus.At(item.path);
      commands.push_back(&item);
      continue;
    }
    wxMenu& menu = menus.At(MenuPath(item.path.begin(), item.path.end() - 1));
    wxMenuItem* leaf = menu.Append(wxID_ANY, ToWx(item.Caption()));
    leaf->Enable(item.enabled);
    frame.Bind(
        wxEVT_MENU, [&form, &item](wxCommandEvent&) { form.menuBar.click(item.name); }, leaf->GetId());
  }
  frame.SetMenuBar(bar);
  for (const MenuItem* item : commands) {
    wxMenu& menu = menus.At(item->path);
    bar->EnableTop(PositionOf(menu, *bar), item->enabled);
    MakeCommandOfBar(menu, [&form, item] { form.menuBar.click(item->name); });
  }
}

}  // namespace quillbox
