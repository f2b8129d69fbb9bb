// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's way to the identities: the windows that manage them, the rename, and the replacement of a {USER_ID}
// by prompts.
#include "identities/replace_user_id.h"
#include "ui/forms/main_window.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kAboutReplacing =
    "You will be prompted for a {USER_ID} to replace the {USER_ID} in the registry file. If you are unsure as to what "
    "to put here, press Cancel now and check the documentation on this part of the program.";

}  // namespace

void Form1::crtnewID_Click() {
  ClearStatus();
  windows_.form7.Open();
}

void Form1::CloneIdentity_Click() {
  ClearStatus();
  windows_.form4.Open();
}

void Form1::remIdent_Click() {
  ClearStatus();
  windows_.form5.Open();
}

void Form1::chgStartIdent_Click() {
  ClearStatus();
  windows_.form8.Open();
}

void Form1::usrIDString_Click() {
  ClearStatus();
  windows_.form17.Open();
}

void Form1::chgIdentName_Click() {
  ClearStatus();
  if (!HasSelection()) return;
  const IdentityInfo identity = Selected();
  Dialogs& dialogs = session_.platform.GetDialogs();
  const std::string username =
      dialogs.Input("Enter new Username", "Current Username: " + identity.username, identity.username)
          .value_or(std::string());
  if (username.empty()) {
    sb1.panels[0] = "No changes made.";
  } else if (!session_.Rename(username)) {
    dialogs.Show({.text = "Name already exists", .icon = MessageIcon::Exclamation});
  }
}

void Form1::repUSERID_Click() {
  ClearStatus();
  Dialogs& dialogs = session_.platform.GetDialogs();
  if (dialogs.Show({.text = kAboutReplacing, .buttons = MessageButtons::YesNo}) != MessageAnswer::Yes) return;
  const auto input = AskRegistryFile(session_);
  if (!input) return;
  FileSystem& files = session_.platform.GetFiles();
  SystemFacts& facts = session_.platform.GetSystemFacts();
  const std::string old = FindOldUserId(files, facts, *input).value_or(std::string());
  const std::string userId =
      dialogs.Input("Enter new {USER_ID}", "Current {USER_ID}: " + old, "").value_or(std::string());
  if (userId.empty()) return;
  const HourglassScope hourglass(*this);
  const auto output = SaveReplaced(session_, *input, userId);
  if (output) sb1.panels[0] = "File Saved as: " + output->Text();
}

}  // namespace quillbox
