#include <gtk/gtk.h>
#include <wx/dataview.h>

#include <string>

#include "ui/wx/port.h"

namespace quillbox {

void SetAccessibleName(wxWindow& window, const std::string& name) {
  atk_object_set_name(gtk_widget_get_accessible(window.GetHandle()), name.c_str());
}

void GiveRowsOneHeight(wxDataViewCtrl& list) {
  gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(list.GtkGetTreeView()), TRUE);
}

}  // namespace quillbox
