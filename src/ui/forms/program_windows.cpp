#include "ui/forms/program_windows.h"

#include <initializer_list>

namespace quillbox {

void ProgramWindows::ReplaceMainWindow(Form& window) {
  window.Show();
  form1.Hide();
}

void ProgramWindows::ReturnToMainWindow(Form& window) {
  form1.Show();
  window.Hide();
}

void ProgramWindows::UnloadAll() {
  for (Form* window : std::initializer_list<Form*>{&form2, &form3, &form4, &form6, &form9, &form1}) window->Hide();
  quit();
}

}  // namespace quillbox
