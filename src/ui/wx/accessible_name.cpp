#include "ui/wx/accessible_name.h"

#include <dlfcn.h>
#include <wx/window.h>

namespace quillbox {

// The toolkit has no call of its own for this under GTK. The two functions are looked up in the libraries that it has
// loaded, since building against their headers would need far more packages than the program does.
void SetAccessibleName(wxWindow& window, const std::string& name) {
  using GetAccessible = void* (*)(GtkWidget*);
  using SetName = void (*)(void*, const char*);
  static const auto getAccessible = reinterpret_cast<GetAccessible>(dlsym(RTLD_DEFAULT, "gtk_widget_get_accessible"));
  static const auto setName = reinterpret_cast<SetName>(dlsym(RTLD_DEFAULT, "atk_object_set_name"));
  if (getAccessible && setName) setName(getAccessible(window.GetHandle()), name.c_str());
}

}  // namespace quillbox
