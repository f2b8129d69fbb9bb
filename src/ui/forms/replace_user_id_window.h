// SPDX-License-Identifier: GPL-3.0-or-later
// "Replace {USER_ID} String in .reg File": carries a saved registry file over to another identity, step by step.
#pragma once

#include <optional>

#include "session/session.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class Form17 : public Form {
 public:
  explicit Form17(ProgramWindows& windows);

  // In tab order.
  Label lblfirst;
  Button cmpOpen;
  Label lblselectedfile;
  Label lblsecond;
  ComboBox cmboUserIDs97;
  Label lblUserID9;
  Label lblcurUsrName17;
  Label lblfinishit;
  Button cmdReplace;
  Label lblshowem;
  Label lblFinished;
  Label lblMerge;
  Button cmdMerge;
  Button cmdClose;

  /// Shows the window with the identities that there are now, in place of the main window.
  void Open();

  LayoutNode Layout() override;

 private:
  void Form_Load();
  void cmboUserIDs97_Click();
  void cmpOpen_Click();
  void cmdReplace_Click();
  void cmdMerge_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
  std::optional<WinPath> input_;   ///< the file that was chosen
  std::optional<WinPath> output_;  ///< the file that was made of it
};

/// Asks for the registry file to replace a {USER_ID} in, beginning in the backup folder; nothing when cancelled.
std::optional<WinPath> AskRegistryFile(Session& session);
/// Makes the file with `userId` in the backup folder and returns its path; nothing after a message that says why not.
/// Throws Error when a file cannot be read or written.
std::optional<WinPath> SaveReplaced(Session& session, const WinPath& input, const std::string& userId);

}  // namespace quillbox
