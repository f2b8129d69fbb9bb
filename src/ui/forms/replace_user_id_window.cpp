// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/replace_user_id_window.h"

#include "core/refusal_message.h"
#include "identities/replace_user_id.h"
#include "ui/forms/identity_picker.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

Form17::Form17(ProgramWindows& windows)
    : Form(windows.guard, "Form17", "Replace {USER_ID} String in .reg File"),
      lblfirst(*this, "lblfirst", "1:  Select Registry file (.reg) to be changed."),
      cmpOpen(*this, "cmpOpen", "Open", "Click here to open the .reg file to change."),
      lblselectedfile(*this, "lblselectedfile"),
      lblsecond(*this, "lblsecond", "2:   Select {USER_ID} to be used for replacement fron list below."),
      cmboUserIDs97(*this, "cmboUserIDs97", "", "Select the {USER_ID} (Identity) to be placed into the .reg file."),
      lblUserID9(*this, "lblUserID9", "Username"),
      lblcurUsrName17(*this, "lblcurUsrName17"),
      lblfinishit(*this, "lblfinishit", "3:  Press button below to make new .reg file with {USER_ID} from above."),
      cmdReplace(*this, "cmdReplace", "Replace {USER_ID}", "Click here to change the {USER_ID} in the .reg file."),
      lblshowem(*this, "lblshowem", "4:  File has been saved as the name below."),
      lblFinished(*this, "lblFinished"),
      lblMerge(*this, "lblMerge", "5:  Press Button to the right to merge the file into the registry."),
      cmdMerge(*this, "cmdMerge", "Merge File?", "Click here to merge the .reg file created into the registry."),
      cmdClose(*this, "cmdClose", "Close", "Close this window."),
      session_(windows.session),
      windows_(windows) {
  cmpOpen.isDefault = true;
  cmdClose.isCancel = true;
  cmboUserIDs97.onClick = [this] { cmboUserIDs97_Click(); };
  cmpOpen.onClick = [this] { cmpOpen_Click(); };
  cmdReplace.onClick = [this] { cmdReplace_Click(); };
  cmdMerge.onClick = [this] { cmdMerge_Click(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode Form17::Layout() {
  return Column({
      Item(lblfirst),
      Row({Item(cmpOpen), Item(lblselectedfile, 1)}),
      Item(lblsecond),
      Item(cmboUserIDs97),
      Row({Item(lblUserID9), Item(lblcurUsrName17, 1)}),
      Item(lblfinishit),
      Row({Item(cmdReplace), Space()}),
      Item(lblshowem),
      Item(lblFinished),
      Row({Item(lblMerge), Item(cmdMerge), Space()}),
      Space(),
      Row({Space(), Item(cmdClose)}),
  });
}

void Form17::Open() {
  Form_Load();
  windows_.ReplaceMainWindow(*this);
}

void Form17::Form_Load() {
  session_.GetInputPaths();
  input_.reset();
  output_.reset();
  lblselectedfile.caption = "";
  lblFinished.caption = "";
  ListAndShowUserIds(cmboUserIDs97, session_.Catalogue());
  cmboUserIDs97_Click();
}

void Form17::cmboUserIDs97_Click() {
  lblcurUsrName17.caption = ReadUsername(session_.store, cmboUserIDs97.text);
}

void Form17::cmpOpen_Click() {
  const auto chosen = AskRegistryFile(session_);
  if (!chosen) return;
  input_ = *chosen;
  lblselectedfile.caption = GetFileName(chosen->Text());
}

void Form17::cmdReplace_Click() {
  output_.reset();
  lblFinished.caption = "";
  if (!input_) return;
  const HourglassScope hourglass(*this);
  output_ = SaveReplaced(session_, *input_, cmboUserIDs97.text);
  if (output_) lblFinished.caption = "File Saved as: " + output_->Text();
}

void Form17::cmdMerge_Click() {
  Dialogs& dialogs = session_.platform.GetDialogs();
  dialogs.Show({.text = output_ ? output_->Text() : std::string()});
  if (output_) session_.store.RegMerge(*output_);
  dialogs.Show({.text = "Registry file has been merged."});
  if (output_) session_.GetInputPaths();
}

void Form17::cmdClose_Click() {
  windows_.ReturnToMainWindow(*this);
}

std::optional<WinPath> AskRegistryFile(Session& session) {
  return session.platform.GetDialogs().OpenFile({.title = {},
                                                 .folder = session.backupFolder.Get().value_or(WinPath()),
                                                 .name = "*.reg",
                                                 .filter = "Registration Files (*.reg) | *.reg",
                                                 .askOverwrite = false});
}

std::optional<WinPath> SaveReplaced(Session& session, const WinPath& input, const std::string& userId) {
  const auto folder = session.backupFolder.Guard(FolderMessage::WithFullStop);
  if (!folder) return std::nullopt;
  FileSystem& files = session.platform.GetFiles();
  SystemFacts& facts = session.platform.GetSystemFacts();
  const UserIdReplacement what{input, ReplacedFile(*folder, input), userId};
  if (const auto refusal = RefusalOf(files, facts, what)) {
    ShowRefusal(session.platform.GetDialogs(), *refusal);
    return std::nullopt;
  }
  ReplaceUserId(files, facts, what);
  return what.output;
}

}  // namespace quillbox
