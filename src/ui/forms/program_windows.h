// Owns the windows, so that each can reach the others.
#pragma once

#include <functional>
#include <memory>

#include "ui/forms/address_book_window.h"
#include "ui/forms/backup_folder_window.h"
#include "ui/forms/clone_identity_window.h"
#include "ui/forms/create_identity_window.h"
#include "ui/forms/delete_identities_window.h"
#include "ui/forms/main_window.h"
#include "ui/forms/manage_identities_window.h"
#include "ui/forms/odds_and_ends_window.h"
#include "ui/forms/program.h"
#include "ui/forms/replace_user_id_window.h"
#include "ui/forms/rules_window.h"
#include "ui/forms/search_window.h"
#include "ui/forms/select_address_books_window.h"
#include "ui/forms/settings_window.h"

namespace quillbox {

class ProgramWindows {
 public:
  explicit ProgramWindows(Platform& platform)
      : program(platform),
        form1(program, *this),
        form2(program, *this),
        form3(program, *this),
        form4(program, *this),
        form5(program, *this),
        form6(program, *this),
        form7(program, *this),
        form8(program, *this),
        form9(program, *this),
        form10(program, *this, RulesForm::kMail),
        form11(program, *this, RulesForm::kNews),
        form12(program, *this),
        form13(program, *this),
        form17(program, *this) {}

  Program program;
  Form1 form1;
  Form2 form2;
  Form3 form3;
  Form4 form4;
  Form5 form5;
  Form6 form6;
  Form7 form7;
  Form8 form8;
  Form9 form9;
  RulesForm form10;
  RulesForm form11;
  Form12 form12;
  Form13 form13;
  Form17 form17;

  /// Every window, for a renderer.
  std::vector<Form*> All() {
    return {&form1, &form2, &form3,  &form4,  &form5,  &form6,  &form7,
            &form8, &form9, &form10, &form11, &form12, &form13, &form17};
  }
  /// Shows the search window in place of the main window.
  void OpenSearch();
  /// Hides every window and ends the program.
  void UnloadAll();
};

}  // namespace quillbox
