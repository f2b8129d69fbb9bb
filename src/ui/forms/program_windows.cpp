#include "ui/forms/program_windows.h"

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
  for (Form* window : All()) window->Hide();
  quit();
}

}  // namespace quillbox
