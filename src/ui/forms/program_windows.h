// SPDX-License-Identifier: GPL-3.0-or-later
// Owns the windows, so that each can reach the others.
#pragma once

#include <functional>
#include <vector>

#include "session/session.h"
#include "ui/forms/address_book_window.h"
#include "ui/forms/backup_folder_window.h"
#include "ui/forms/check_backup_window.h"
#include "ui/forms/clone_identity_window.h"
#include "ui/forms/create_identity_window.h"
#include "ui/forms/delete_identities_window.h"
#include "ui/forms/export_contacts_window.h"
#include "ui/forms/export_mail_window.h"
#include "ui/forms/last_backup_window.h"
#include "ui/forms/main_window.h"
#include "ui/forms/manage_identities_window.h"
#include "ui/forms/odds_and_ends_window.h"
#include "ui/forms/replace_user_id_window.h"
#include "ui/forms/rules_window.h"
#include "ui/forms/search_window.h"
#include "ui/forms/select_address_books_window.h"
#include "ui/forms/settings_window.h"

namespace quillbox {

class ProgramWindows {
 public:
  explicit ProgramWindows(Platform& platform)
      : session(platform),
        guard(platform),
        form1(*this),
        form2(*this),
        form3(*this),
        form4(*this),
        form5(*this),
        form6(*this),
        form7(*this),
        form8(*this),
        form9(*this),
        form10(*this, RulesForm::kMail),
        form11(*this, RulesForm::kNews),
        form12(*this),
        form13(*this),
        form17(*this),
        lastBackup(*this),
        exportMail(*this),
        exportContacts(*this),
        checkBackup(*this) {}

  Session session;
  HandlerGuard guard;
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
  LastBackupForm lastBackup;
  ExportMailForm exportMail;
  ExportContactsForm exportContacts;
  CheckBackupForm checkBackup;

  /// Every window, for a renderer.
  std::vector<Form*> All() {
    return {&form1,  &form2,  &form3,  &form4,  &form5,  &form6,      &form7,      &form8,          &form9,
            &form10, &form11, &form12, &form13, &form17, &lastBackup, &exportMail, &exportContacts, &checkBackup};
  }

  /// Shows `window` in place of the main window, and the main window again.
  void ReplaceMainWindow(Form& window);
  void ReturnToMainWindow(Form& window);

  /// Shows the search window alone, on a disk whose registry could not be opened. Leaving it leads to another disk.
  void OpenSearchAlone();
  /// Saves what is still to be saved and leaves the disk for another one. Throws Error, with the disk still open, when
  /// that fails.
  void OpenAnotherDisk();
  /// Leads to the choice of a disk; set by whoever runs the windows.
  std::function<void()> chooseDisk = [] {};

  /// Hides the windows that may be open, the main window last, and ends the program, which closes any other.
  void UnloadAll();
  /// Ends the program; set by whoever runs the windows.
  std::function<void()> quit = [] {};

 private:
  bool searchAlone_ = false;
};

}  // namespace quillbox
