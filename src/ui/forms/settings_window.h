// SPDX-License-Identifier: GPL-3.0-or-later
// "5.0 Settings": the Outlook Express option values of one identity, on ten tabs, under the names that they have in the
// registry.
#pragma once

#include <memory>
#include <vector>

#include "session/session.h"
#include "ui/form.h"
#include "ui/forms/setting_controls.h"
#include "ui/tab_control.h"

namespace quillbox {

class ProgramWindows;

class Form13 : public Form {
 public:
  explicit Form13(ProgramWindows& windows);

  // In tab order; those of the settings, on SSTab1, are reached by their names.
  Label lblOERegSet;
  Label lbluseridlbl;
  ComboBox cmboUserIDs10;
  Label lblusernamelbl;
  Label lblusername;
  Label lbluserid;
  TabControl SSTab1;
  SettingsEditor editor;
  std::vector<std::unique_ptr<SettingControls>> tabs;
  Label lblNote;
  Label lblNote2;
  Label lblProtected;
  Button cmdClose10;

  /// Shows this window in place of the main window, with everything read afresh.
  void Open();

  LayoutNode Layout() override;

 private:
  std::vector<std::unique_ptr<SettingControls>> MakeTabs(Dialogs& dialogs);
  void Form_Load();
  /// Asks about what was typed and not applied; false when the person wants to go on with it.
  bool SettleTyped();
  void cmboUserIDs10_Click();
  /// Shows what the chosen identity has stored, or says that it was never used.
  void ShowIdentity();
  void cmdClose10_Click();

  Session& session_;
  ProgramWindows& windows_;
};

}  // namespace quillbox
