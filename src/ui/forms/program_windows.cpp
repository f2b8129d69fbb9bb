#include "ui/forms/program_windows.h"

namespace quillbox {

void ProgramWindows::OpenSearch() {
  for (auto& panel : form1.sb1.panels) panel = "";
  form2.Open();
  form1.Hide();
}

void ProgramWindows::UnloadAll() {
  form2.Hide();
  form3.Hide();
  form6.Hide();
  form9.Hide();
  form12.Hide();
  form13.Hide();
  form10.Hide();
  form11.Hide();
  form4.Hide();
  form5.Hide();
  form7.Hide();
  form8.Hide();
  form17.Hide();
  form1.Hide();
  program.quit();
}

}  // namespace quillbox
