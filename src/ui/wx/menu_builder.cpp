#include "ui/wx/menu_builder.h"

#include <wx/frame.h>
#include <wx/menu.h>

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

}  // namespace

void AddMenuBar(Form& form, wxFrame& frame) {
  if (form.menuBar.Items().empty()) return;
  auto* bar = new wxMenuBar;
  Menus menus(*bar);
  for (const MenuItem& item : form.menuBar.Items()) {
    if (item.path.size() == 1) {
      MakeCommandOfBar(menus.At(item.path), [&form, &item] { form.menuBar.click(item.name); });
      bar->EnableTop(bar->GetMenuCount() - 1, item.enabled);
      continue;
    }
    wxMenu& menu = menus.At(MenuPath(item.path.begin(), item.path.end() - 1));
    wxMenuItem* leaf = menu.Append(wxID_ANY, ToWx(item.Caption()));
    leaf->Enable(item.enabled);
    frame.Bind(
        wxEVT_MENU, [&form, &item](wxCommandEvent&) { form.menuBar.click(item.name); }, leaf->GetId());
  }
  frame.SetMenuBar(bar);
}

}  // namespace quillbox
