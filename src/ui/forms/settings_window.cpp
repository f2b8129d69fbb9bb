// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/settings_window.h"

#include "settings/settings_tabs.h"
#include "ui/forms/identity_picker.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kNotSetUp =
    "This Identity has not been set up. Please log into that Identity and set the values from the Options menu.";

std::vector<std::string> TabCaptions() {
  std::vector<std::string> captions;
  for (const SettingsTab* tab : SettingsTabs()) captions.emplace_back(tab->caption);
  return captions;
}

}  // namespace

Form13::Form13(ProgramWindows& windows)
    : Form(windows.guard, "Form13", "5.0 Settings"),
      lblOERegSet(*this, "lblOERegSet",
                  "Outlook Express Registry Entries. These are the names of the values used in the registry. The "
                  "friendly name that appears in OE's Tools | Options can be seen by moving the mouse over the item to "
                  "show in the tooltips."),
      lbluseridlbl(*this, "lbluseridlbl", "User ID: ", "This is the Identity's {USER_ID} string."),
      cmboUserIDs10(*this, "cmboUserIDs10"),
      lblusernamelbl(*this, "lblusernamelbl", "User Name: ", "This is the User name of the Identity selected above."),
      lblusername(*this, "lblusername"),
      lbluserid(*this, "lbluserid"),
      SSTab1(*this, "SSTab1", TabCaptions()),
      editor(windows.session.platform, windows.session.store),
      tabs(MakeTabs(windows.session.platform.GetDialogs())),
      lblNote(*this, "lblNote",
              "NOTE: Some registry entries will not appear until that item has been selected in Outlook Express's "
              "Options."),
      lblNote2(*this, "lblNote2", "If an items is disabled, it has not been set in Tools | Options"),
      lblProtected(*this, "lblProtected"),
      cmdClose10(*this, "cmdClose10", "Close", "Close this window."),
      session_(windows.session),
      windows_(windows) {
  for (Label* label : {&lblOERegSet, &lblProtected}) label->wraps = true;
  SSTab1.spokenName = "Settings";
  cmdClose10.isCancel = true;
  cmboUserIDs10.onClick = [this] { cmboUserIDs10_Click(); };
  cmdClose10.onClick = [this] { cmdClose10_Click(); };
}

std::vector<std::unique_ptr<SettingControls>> Form13::MakeTabs(Dialogs& dialogs) {
  std::vector<std::unique_ptr<SettingControls>> made;
  for (const SettingsTab* tab : SettingsTabs()) {
    made.push_back(
        std::make_unique<SettingControls>(*this, *tab, editor, dialogs, [this] { return cmboUserIDs10.text.Get(); }));
  }
  return made;
}

LayoutNode Form13::Layout() {
  std::vector<LayoutNode> pages;
  for (const auto& tab : tabs) pages.push_back(tab->Layout());
  return Column({
      Item(lblOERegSet),
      Row({Item(lbluseridlbl), Item(cmboUserIDs10, 1), Item(lblusernamelbl), Item(lblusername), Item(lbluserid, 1)}),
      Tabs(SSTab1, std::move(pages), 1),
      Item(lblNote),
      Item(lblProtected),
      Row({Item(lblNote2, 1), Item(cmdClose10)}),
  });
}

void Form13::Open() {
  lblProtected.caption = session_.platform.WriteProtection({RegistryRoot::CurrentUser});
  lblProtected.visible = !lblProtected.caption->empty();
  windows_.ReplaceMainWindow(*this);
  Form_Load();
}

void Form13::Form_Load() {
  ListAndShowUserIds(cmboUserIDs10, session_.Catalogue());
  SSTab1.selected = 0;
  ShowIdentity();
}

bool Form13::SettleTyped() {
  for (std::size_t tab = 0; tab < tabs.size(); ++tab) {
    if (!tabs[tab]->IsTyped()) continue;
    SSTab1.selected = tab;
    if (!tabs[tab]->SettleTyped()) return false;
  }
  return true;
}

void Form13::cmboUserIDs10_Click() {
  if (SettleTyped()) return ShowIdentity();
  cmboUserIDs10.text = tabs.front()->ShownFor();
}

void Form13::ShowIdentity() {
  const std::string userId = cmboUserIDs10.text;
  lbluserid.caption = editor.Username(userId);
  if (editor.IsSetUp(userId)) {
    for (const auto& tab : tabs) tab->Load(SettingsEditor::Occasion::Shown);
    return;
  }
  for (const auto& tab : tabs) tab->Clear();
  session_.platform.GetDialogs().Show({.text = kNotSetUp});
}

void Form13::cmdClose10_Click() {
  if (SettleTyped()) windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
