// SPDX-License-Identifier: GPL-3.0-or-later
// "Export Mail": writes the mail folders of an identity, or of any folder with message stores, in a form that the mail
// programs of today read.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/identity_catalogue.h"
#include "export/mail_export.h"
#include "session/session.h"
#include "ui/form.h"
#include "ui/list_view.h"

namespace quillbox {

class ProgramWindows;

class ExportMailForm : public Form {
 public:
  explicit ExportMailForm(ProgramWindows& windows);

  // In tab order.
  Label lblIdentity;
  ComboBox cmbIdentity;
  Button cmdFromFolder;
  Label lblSource;
  ListView lvFolders;
  Label lblTotal;
  Button cmdSelectAll;
  Button cmdDeselectAll;
  Frame fraFormat;
  OptionGroup formats;
  OptionButton optMbox;
  OptionButton optFiles;
  OptionButton optMaildir;
  CheckBox chkRecover;
  CheckBox chkMerge;
  Label lblTarget;
  TextBox txtTarget;
  Button cmdBrowse;
  Button cmdExport;
  Button cmdOpenTarget;
  Button cmdClose;
  StatusBar sb1;

  /// Shows the window in place of the main window, with the folders of the selected identity.
  void Open();

  LayoutNode Layout() override;

 private:
  void Form_Load();
  void ShowNone(const std::string& why);
  void ListIdentities();
  void ShowIdentity(const IdentityInfo& identity);
  void ShowPlace(MailPlace place);
  bool CountSome(FoundFolders& folders);
  void FinishCounting();
  void ShowTotal();
  void CheckFolders();
  std::string CellOf(std::size_t row, std::size_t column) const;
  MailFormat Format() const;
  CodePage Page();
  void Tell(const std::string& text, MessageIcon icon);
  void ShowResult(const ExportResult& result);
  std::string SaveResult(const ExportResult& result);

  void cmbIdentity_Click();
  void cmdFromFolder_Click();
  void chkMerge_Click();
  void cmdBrowse_Click();
  void cmdExport_Click();
  void cmdOpenTarget_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
  std::vector<IdentityInfo> identities_;   ///< those in the list
  std::shared_ptr<FoundFolders> folders_;  ///< shared with their counting, which ends when they are gone
  std::vector<std::string> outcomes_;      ///< of each folder in the last export; empty where it was not exported
};

}  // namespace quillbox
