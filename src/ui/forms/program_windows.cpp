// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/program_windows.h"

#include <initializer_list>

namespace quillbox {

void ProgramWindows::ReplaceMainWindow(Form& window) {
  window.Show();
  form1.Hide();
}

void ProgramWindows::ReturnToMainWindow(Form& window) {
  if (searchAlone_) return OpenAnotherDisk();
  form1.Show();
  window.Hide();
}

void ProgramWindows::OpenSearchAlone() {
  searchAlone_ = true;
  form2.RunHandler("Open", [this] {
    form2.FillFileTypes();
    session.CheckBackupFolder(false);
    form2.Open();
    form2.ShowNoSearches();
  });
}

void ProgramWindows::OpenAnotherDisk() {
  session.platform.EndCommand();
  for (Form* window : All()) window->Hide();
  chooseDisk();
}

void ProgramWindows::UnloadAll() {
  for (Form* window : std::initializer_list<Form*>{&form2, &form3, &form4, &form6, &form9, &form1}) window->Hide();
  quit();
}

}  // namespace quillbox
