// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtk/gtk.h>
#include <langinfo.h>
#include <wx/app.h>
#include <wx/artprov.h>
#include <wx/bmpbndl.h>
#include <wx/combobox.h>
#include <wx/dataview.h>
#include <wx/dialog.h>
#include <wx/listbox.h>
#include <wx/menu.h>
#include <wx/statbox.h>
#include <wx/string.h>
#include <wx/textctrl.h>

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ui/wx/port.h"

namespace quillbox {
namespace {

constexpr int kTitleIndent = 8;
constexpr int kListCharacters = 120;

/// Applies `css` to `widget` alone.
void AddStyle(GtkWidget* widget, const char* css) {
  GtkCssProvider* provider = gtk_css_provider_new();
  gtk_css_provider_load_from_data(provider, css, -1, nullptr);
  gtk_style_context_add_provider(gtk_widget_get_style_context(widget), GTK_STYLE_PROVIDER(provider),
                                 GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  g_object_unref(provider);
}

/// Names `widget` and its parts. Pages and buttons inside it have names of their own.
void NameWithParts(GtkWidget* widget, gpointer name) {
  if (GTK_IS_BUTTON(widget) && !GTK_IS_CHECK_BUTTON(widget)) return;
  atk_object_set_name(gtk_widget_get_accessible(widget), static_cast<const char*>(name));
  if (GTK_IS_CONTAINER(widget) && !GTK_IS_NOTEBOOK(widget)) {
    gtk_container_forall(GTK_CONTAINER(widget), NameWithParts, name);
  }
}

void TakeArrowOutOfTabOrder(GtkWidget* part, gpointer /*data*/) {
  if (GTK_IS_TOGGLE_BUTTON(part)) {
    gtk_widget_set_can_focus(part, FALSE);
  } else if (GTK_IS_CONTAINER(part)) {
    gtk_container_forall(GTK_CONTAINER(part), TakeArrowOutOfTabOrder, nullptr);
  }
}

/// Connects `signal` of `object` to a function that lives as long as the connection.
template <class F>
void Connect(gpointer object, const char* signal, GCallback callback, F function) {
  g_signal_connect_data(
      object, signal, callback, new F(std::move(function)),
      [](gpointer data, GClosure* /*closure*/) { delete static_cast<F*>(data); }, GConnectFlags(0));
}

using Act = std::function<void()>;
using TipOfRow = std::function<std::string(std::size_t)>;

void RunAct(GtkMenuItem* /*item*/, gpointer act) {
  (*static_cast<Act*>(act))();
}

/// Without this a short click only marks the item, as it would open a menu.
gboolean RunActOnPress(GtkWidget* item, GdkEventButton* event, gpointer act) {
  if (event->type != GDK_BUTTON_PRESS || event->button != GDK_BUTTON_PRIMARY) return FALSE;
  gtk_menu_shell_deactivate(GTK_MENU_SHELL(gtk_widget_get_parent(item)));
  wxTheApp->CallAfter(*static_cast<Act*>(act));
  return TRUE;
}

/// Toggles the line that is pressed and leaves the others as they are. Shift extends from it later.
gboolean TogglePressedLine(GtkWidget* list, GdkEventButton* event, gpointer /*data*/) {
  if (event->button != GDK_BUTTON_PRIMARY || (event->state & GDK_SHIFT_MASK) != 0) return FALSE;
  GtkTreeView* lines = GTK_TREE_VIEW(list);
  GtkTreePath* pressed = nullptr;
  if (event->type != GDK_BUTTON_PRESS ||
      !gtk_tree_view_get_path_at_pos(lines, static_cast<int>(event->x), static_cast<int>(event->y), &pressed, nullptr,
                                     nullptr, nullptr)) {
    return TRUE;
  }
  GtkTreeSelection* selection = gtk_tree_view_get_selection(lines);
  const bool wasSelected = gtk_tree_selection_path_is_selected(selection, pressed);
  GList* selected = gtk_tree_selection_get_selected_rows(selection, nullptr);
  gtk_widget_grab_focus(list);
  gtk_tree_view_set_cursor(lines, pressed, nullptr, FALSE);  // selects this line alone
  for (GList* each = selected; each; each = each->next) {
    gtk_tree_selection_select_path(selection, static_cast<GtkTreePath*>(each->data));
  }
  if (wasSelected) gtk_tree_selection_unselect_path(selection, pressed);
  g_list_free_full(selected, [](gpointer path) { gtk_tree_path_free(static_cast<GtkTreePath*>(path)); });
  gtk_tree_path_free(pressed);
  return TRUE;
}

gboolean ShowRowTip(GtkWidget* list, gint x, gint y, gboolean byKeyboard, GtkTooltip* tooltip, gpointer tipOf) {
  GtkTreePath* path = nullptr;
  if (!gtk_tree_view_get_tooltip_context(GTK_TREE_VIEW(list), &x, &y, byKeyboard, nullptr, &path, nullptr))
    return FALSE;
  const int row = gtk_tree_path_get_indices(path)[0];
  const std::string tip = (*static_cast<TipOfRow*>(tipOf))(static_cast<std::size_t>(row));
  gtk_tooltip_set_text(tooltip, tip.c_str());
  gtk_tree_view_set_tooltip_row(GTK_TREE_VIEW(list), tooltip, path);
  gtk_tree_path_free(path);
  return tip.empty() ? FALSE : TRUE;
}

wxArtID ArtOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::None:
      break;
    case MessageIcon::Exclamation:
      return wxART_WARNING;
    case MessageIcon::Question:
      return wxART_QUESTION;
    case MessageIcon::Error:
      return wxART_ERROR;
    case MessageIcon::Information:
      return wxART_INFORMATION;
  }
  return {};
}

}  // namespace

/// In a session without a message bus (a bare display) the toolkit's libraries would complain at every dialog that they
/// cannot store its size.
void PrepareToolkitStart() {
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  if (std::getenv("DBUS_SESSION_BUS_ADDRESS") || (folder && std::filesystem::exists(std::string(folder) + "/bus")))
    return;
  setenv("GSETTINGS_BACKEND", "memory", 0);
}

/// File names and texts are UTF-8 even when the session sets no language, and numbers have the same form everywhere.
void FinishToolkitStart() {
  if (std::string_view(nl_langinfo(CODESET)) != "UTF-8") std::setlocale(LC_CTYPE, "C.UTF-8");
  std::setlocale(LC_NUMERIC, "C");
}

HostPath FromDialogPath(const wxString& path) {
  return HostPath(static_cast<const char*>(path.fn_str()));
}

wxString ToDialogPath(const HostPath& path) {
  return wxString(path.Text().c_str(), *wxConvFileName);
}

/// "*.WAB" as "*.[wW][aA][bB]".
wxString PatternInAnyCase(const wxString& pattern) {
  wxString result;
  for (const wxUniChar c : pattern) {
    const wxString lower = wxString(c).Lower();
    const wxString upper = wxString(c).Upper();
    result += lower == upper ? wxString(c) : "[" + lower + upper + "]";
  }
  return result;
}

void SetAccessibleName(wxWindow& window, const std::string& name) {
  NameWithParts(window.GetHandle(), const_cast<char*>(name.c_str()));
}

wxBitmapBundle PictureOf(MessageIcon icon) {
  return wxArtProvider::GetBitmapBundle(ArtOf(icon), wxART_MESSAGE_BOX);
}

void MarkAsAlert(wxDialog& dialog) {
  atk_object_set_role(gtk_widget_get_accessible(dialog.GetHandle()), ATK_ROLE_ALERT);
}

/// The toolkit's own best height of an entry depends on whether it has been shown.
void GiveOneHeight(const std::vector<wxWindow*>& fields) {
  int height = 0;
  for (wxWindow* field : fields) {
    int natural = 0;
    gtk_widget_get_preferred_height(field->GetHandle(), nullptr, &natural);
    height = std::max(height, natural);
  }
  for (wxWindow* field : fields) field->SetMinSize(wxSize(field->GetMinWidth(), height));
}

/// Items wider than a screen are shortened in the middle.
void TameComboBox(wxComboBox& box) {
  const auto stop = +[](GtkWidget*, GdkEvent*, gpointer) -> gboolean { return TRUE; };
  g_signal_connect(box.GetHandle(), "scroll-event", G_CALLBACK(stop), nullptr);
  gtk_container_forall(GTK_CONTAINER(box.GetHandle()), TakeArrowOutOfTabOrder, nullptr);
  GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(box.GetHandle()));
  for (GList* cell = cells; cell; cell = cell->next) {
    g_object_set(cell->data, "ellipsize", PANGO_ELLIPSIZE_MIDDLE, "max-width-chars", kListCharacters, nullptr);
  }
  g_list_free(cells);
}

void OpenByClick(wxComboBox& box) {
  box.Bind(wxEVT_LEFT_DOWN, [&box](wxMouseEvent&) {
    box.SetFocus();
    box.Popup();
  });
}

void ShowReadOnly(wxTextCtrl& entry, bool readOnly) {
  GtkStyleContext* style = gtk_widget_get_style_context(entry.GetHandle());
  if (gtk_style_context_has_class(style, "quillbox-read-only") == static_cast<gboolean>(readOnly)) return;
  if (!readOnly) return gtk_style_context_remove_class(style, "quillbox-read-only");
  AddStyle(entry.GetHandle(), ".quillbox-read-only { background-color: @theme_bg_color; background-image: none; }");
  gtk_style_context_add_class(style, "quillbox-read-only");
}

void SetTitleBesideLine(wxStaticBox& frame) {
  if (GtkWidget* label = gtk_frame_get_label_widget(GTK_FRAME(frame.GetHandle()))) {
    AddStyle(label, "* { padding: 0 4px; }");
    gtk_widget_set_margin_start(label, kTitleIndent);
  }
}

bool IsFocusMoving() {
  GdkEvent* event = gtk_get_current_event();
  if (event == nullptr) return true;
  guint key = 0;
  const GdkEventType type = gdk_event_get_event_type(event);
  const bool isKey = type == GDK_KEY_PRESS && gdk_event_get_keyval(event, &key) == TRUE;
  const bool isTab = key == GDK_KEY_Tab || key == GDK_KEY_ISO_Left_Tab || key == GDK_KEY_KP_Tab;
  gdk_event_free(event);
  return isKey ? isTab : type == GDK_FOCUS_CHANGE || type == GDK_MAP || type == GDK_EXPOSE;
}

bool IsPopupOpen() {
  GtkWidget* grabbing = gtk_grab_get_current();
  if (!grabbing) return false;
  return GTK_IS_MENU_SHELL(grabbing) || gtk_widget_get_ancestor(grabbing, GTK_TYPE_MENU) != nullptr;
}

void MakeCommandOfBar(wxMenu& menu, std::function<void()> act) {
  gtk_menu_item_set_submenu(GTK_MENU_ITEM(menu.m_owner), nullptr);
  Connect(menu.m_owner, "button-press-event", G_CALLBACK(RunActOnPress), Act(act));
  Connect(menu.m_owner, "activate", G_CALLBACK(RunAct), Act(std::move(act)));
}

void ToggleByClick(wxListBox& list) {
  GtkWidget* lines = gtk_bin_get_child(GTK_BIN(list.GetHandle()));
  g_signal_connect(lines, "button-press-event", G_CALLBACK(TogglePressedLine), nullptr);
}

void ShowRowTips(wxDataViewCtrl& list, std::function<std::string(std::size_t row)> tipOf) {
  GtkWidget* rows = list.GtkGetTreeView();
  gtk_widget_set_has_tooltip(rows, TRUE);
  Connect(rows, "query-tooltip", G_CALLBACK(ShowRowTip), TipOfRow(std::move(tipOf)));
}

void GiveRowsOneHeight(wxDataViewCtrl& list) {
  gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(list.GtkGetTreeView()), TRUE);
}

}  // namespace quillbox
