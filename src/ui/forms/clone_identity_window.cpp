// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/clone_identity_window.h"

#include "core/copy_tally.h"
#include "identities/create_identity.h"
#include "text/message_text.h"
#include "ui/forms/identity_picker.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kUseBelow = "Check box to use the Identity Below";
constexpr const char* kNoNewIdentity = "Please create a new Identity";
constexpr const char* kSelectFolder = "Please select a backup folder or create one from the Tools menu";

}  // namespace

Form4::Form4(ProgramWindows& windows)
    : Form(windows.guard, "Form4", "Clone An Identity"),
      Frame3(*this, "Frame3", "Select Source Identity"),
      cmbSource(*this, "cmbSource", "", "Select the Identity to be cloned."),
      lblSourceUsername(*this, "lblSourceUsername", "Username"),
      lblSourceUser(*this, "lblSourceUser", "", "Source Identity Username"),
      Label2(*this, "Label2", "NOTE:"),
      Label1(*this, "Label1",
             "Select an existing Identity to use or create a new Identity to use as the Destination Identity. You can "
             "look at the Identity's Username to help in your selection."),
      Frame1(*this, "Frame1", "Select or Create Destination Identity"),
      Check1(*this, "Check1", kUseBelow,
             "Check this box to use the existing Identity selected below to be the cloned Identity."),
      cmbDestination(*this, "cmbDestination", "",
                     "Select an existing Identity then check the box above to use this Identity as the cloned "
                     "Identity."),
      lblDestUName(*this, "lblDestUName", "", "Existing Identity Username"),
      cmdCreateIdentity(*this, "cmdCreateIdentity", "Create New Identity", "Click here to create a new identity."),
      Check2(*this, "Check2", kUseBelow,
             "Check this box to select the newly created Identity below as the cloned Identity."),
      usrlbl(*this, "usrlbl", "New {USER_ID}"),
      txtuserid(*this, "txtuserid", "",
                "Press the Create New Identity button,, then check the box to use this new Identity as the cloned "
                "Identity."),
      lblDestinationUsername(*this, "lblDestinationUsername", "Username"),
      lblDestinationUser(*this, "lblDestinationUser", "", "Newly Created Username"),
      chkCopyDBX(*this, "chkCopyDBX", "Copy DBX files to cloned Identity",
                 "Check this box to copy the messages stores (DBX files) then the cloned Identity."),
      chkKeepReg(*this, "chkKeepReg", "Keep temporary registry files",
                 "Check this box to retain the temp registry files created for the cloned Identity."),
      cmdClone(*this, "cmdClone", "Clone Identity", "When ready to clone the Identity, click here."),
      cmdClose(*this, "cmdClose", "Close", "Close this window."),
      StatusBar1(*this, "StatusBar1", 2),
      session_(windows.session),
      windows_(windows) {
  Label1.wraps = true;
  cmbSource.spokenName = "Source identity";
  cmbDestination.spokenName = "Destination identity";
  txtuserid.readOnly = true;
  cmdClose.isCancel = true;
  cmbSource.onClick = [this] { ShowUsername(lblSourceUser, cmbSource.text); };
  cmbDestination.onClick = [this] { ShowUsername(lblDestUName, cmbDestination.text); };
  cmdCreateIdentity.onClick = [this] { cmdCreateIdentity_Click(); };
  cmdClone.onClick = [this] { cmdClone_Click(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode Form4::Layout() {
  return Column({
      Group(Frame3, Row({Item(cmbSource, 1), Item(lblSourceUsername), Item(lblSourceUser, 1)})),
      Row({Item(Label2), Item(Label1, 1)}),
      Group(Frame1,
            Row({
                Column({Item(Check1), Item(cmbDestination), Item(lblDestUName)}, 1),
                Column({Item(cmdCreateIdentity), Item(Check2),
                        Grid(2, {1},
                             {Item(usrlbl), Item(txtuserid), Item(lblDestinationUsername), Item(lblDestinationUser)})},
                       1),
            })),
      Row({Item(chkCopyDBX), Item(chkKeepReg), Space()}),
      Space(),
      Row({Item(cmdClone, 1), Item(cmdClose, 1)}),
      Item(StatusBar1),
  });
}

void Form4::Open() {
  windows_.ReplaceMainWindow(*this);
  session_.GetInputPaths();
  Form_Load();
}

void Form4::Form_Load() {
  for (auto& panel : StatusBar1.panels) panel = "";
  for (CheckBox* box : {&Check1, &Check2, &chkCopyDBX, &chkKeepReg}) box->checked = false;
  ListAndShowUserIds(cmbSource, session_.Catalogue());
  ListAndShowUserIds(cmbDestination, session_.Catalogue());
  txtuserid.text = kNoNewIdentity;
  lblDestinationUser.caption = "";
  lblSourceUser.caption = "";
  lblDestUName.caption = "";
  const Status status = session_.store.OpenKey(CurrentUser(kIdentitiesKey)).status;
  if (status == Status::Success) {
    ShowUsername(lblDestUName, cmbDestination.text);
    ShowUsername(lblSourceUser, cmbSource.text);
  } else {
    session_.store.ShowRegistryReadError(status, "Identities");
  }
  if (!session_.backupFolder.Get()) Tell(kSelectFolder, MessageIcon::None);
}

void Form4::ShowUsername(Label& label, const std::string& userId) {
  label.caption = ReadUsername(session_.store, userId);
}

void Form4::Tell(const std::string& text, MessageIcon icon) {
  session_.platform.GetDialogs().Show({.text = text, .icon = icon});
}

void Form4::cmdCreateIdentity_Click() {
  for (auto& panel : StatusBar1.panels) panel = "";
  const auto made = session_.identityMaker.Run(
      {.onUserId = [this](const std::string& userId) { txtuserid.text = userId; },
       .onUsername = [this](const std::string& name) { lblDestinationUser.caption = name; }});
  if (!made) return;
  session_.GetInputPaths();
  StatusBar1.panels[0] = made->userId + " Created";
}

std::optional<std::string> Form4::ChooseDestination() {
  if (Check1.checked && Check2.checked) {
    Tell("Check only one Destination Identity USER_IDs to be cloned.", MessageIcon::None);
    Check1.checked = false;
    Check2.checked = false;
    return std::nullopt;
  }
  if (!Check1.checked && !Check2.checked) {
    Tell("No Destination Identity USER_IDs were checked to be cloned.");
    return std::nullopt;
  }
  const std::string destination = Check1.checked ? cmbDestination.text.Get() : txtuserid.text.Get();
  if (Check1.checked && destination == cmbSource.text) {
    Tell("Source and Destination Identities can not be the same Identity, please choose another Destination Identity.");
    return std::nullopt;
  }
  ShowUsername(lblDestUName, destination);
  return destination.empty() ? std::nullopt : std::optional(destination);
}

void Form4::cmdClone_Click() {
  for (auto& panel : StatusBar1.panels) panel = "";
  const auto folder = session_.backupFolder.Guard(FolderMessage::WithoutEnding);
  if (!folder) return;
  const auto destination = ChooseDestination();
  if (!destination) return;
  const bool copyMessages = chkCopyDBX.checked;
  IdentityClone clone(session_.platform, session_.store, {cmbSource.text, *destination, *folder, chkKeepReg.checked});
  if (const auto refusal = clone.Refusal()) return Tell(refusal->message);
  const HourglassScope hourglass(*this);
  if (!CloneSettings(clone)) return;
  StatusBar1.panels[0] = "Cloning Complete";
  session_.GetInputPaths();
  if (copyMessages) CopyMessages(clone);
  for (CheckBox* box : {&Check1, &Check2, &chkCopyDBX}) box->checked = false;
}

bool Form4::CloneSettings(IdentityClone& clone) {
  const CommandFailures::Scope failures(session_.store.Failures());
  try {
    clone.CloneSettings();
    return true;
  } catch (const std::exception& error) {
    std::string text = std::string("The Identity was not cloned.\n\n") + error.what() + "\n";
    if (clone.Done().empty()) text += "\nThe registry is as it was.";
    for (const std::string& change : clone.Done()) text += "\nDone before that: " + change;
    Tell(text);
  }
  session_.GetInputPaths();
  return false;
}

void Form4::CopyMessages(IdentityClone& clone) {
  std::optional<CloneRefusal> refusal;
  try {
    refusal = clone.CopyMessages();
  } catch (const std::exception& error) {
    refusal =
        CloneRefusal{std::string("The Identity was cloned, but not all of its DBX files were copied: ") + error.what()};
  }
  StatusBar1.panels[1] = CopyTally(session_.platform.GetShell().FinishCopies()).Text();
  if (refusal) return Tell(refusal->message);
  OfferTheCopiesFolder(clone);
}

/// A Windows in another language, or with moved folders, keeps its message stores elsewhere than the path that a clone
/// writes.
void Form4::OfferTheCopiesFolder(IdentityClone& clone) {
  const auto elsewhere = clone.FindElsewhere();
  if (!elsewhere) return;
  const Message question{
      .text =
          "The messages were copied to\n\n" + OneLine(elsewhere->copied.Text()) +
          "\n\nbut the \"Store Root\" of the cloned Identity leads to\n\n" + OneLine(elsewhere->recorded.Text()) +
          "\n\nOutlook Express would not find the messages there. Write the folder that has them into the registry?",
      .buttons = MessageButtons::YesNo,
      .icon = MessageIcon::Question};
  if (session_.platform.GetDialogs().Show(question) != MessageAnswer::Yes) return;
  if (!clone.PointToCopies()) Tell("The \"Store Root\" was not changed. The log says why.");
  session_.GetInputPaths();
}

void Form4::cmdClose_Click() {
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
