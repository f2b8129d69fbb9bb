// Owns the windows, so that each can reach the others.
#pragma once

#include <functional>
#include <memory>

#include "ui/forms/form1.h"
#include "ui/forms/form10.h"
#include "ui/forms/form2.h"
#include "ui/forms/form3.h"
#include "ui/forms/form6.h"
#include "ui/forms/form9.h"
#include "ui/forms/program.h"

namespace quillbox {

class Windows {
 public:
  explicit Windows(Platform& platform)
      : program(platform),
        form1(program, *this),
        form2(program, *this),
        form3(program, *this),
        form6(program, *this),
        form9(program, *this),
        form10(program, *this, RulesForm::kMail),
        form11(program, *this, RulesForm::kNews) {}

  Program program;
  Form1 form1;
  Form2 form2;
  Form3 form3;
  Form6 form6;
  Form9 form9;
  RulesForm form10;
  RulesForm form11;

  /// Every window, for a renderer.
  std::vector<Form*> All() { return {&form1, &form2, &form3, &form6, &form9, &form10, &form11}; }
  /// Shows the search window in place of the main window.
  void OpenSearch();
  /// Hides every window and ends the program.
  void UnloadAll();
};

}  // namespace quillbox
