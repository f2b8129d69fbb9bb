// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/odds_and_ends_window.h"

#include "support/host_tricks.h"
#include "support/sample_windows.h"
#include "support/settings_walk.h"

namespace quillbox {
namespace {

constexpr const char* kMachine = "Software\\Microsoft\\Outlook Express";

class Form12Test : public SampleWindows {
 protected:
  Form12& Open() {
    windows->form1.menuBar.click("msc");
    return windows->form12;
  }
  std::string UserId(std::size_t index) { return Identities().at(index).userId; }
  std::string Key(const std::string& below, std::size_t index = 0) {
    return IdentitySettingsKey(UserId(index)) + below;
  }
  RegValue Machine(const std::string& name) {
    return Store().RegistryGetKeyValue({RegistryRoot::LocalMachine, kMachine}, name);
  }
  ComboBox& Combo(const std::string& name) { return windows->form12.Named<ComboBox>(name); }
  TextBox& Box(const std::string& name) { return windows->form12.Named<TextBox>(name); }
  void Press(const std::string& name) { windows->form12.Named<Button>(name).click(); }
  void Remove(const RegistryPath& path, const char* name) {
    platform->GetRegistry().DeleteValue(Store().OpenKey(path).key, name);
  }
};

TEST_F(Form12Test, EverySettingIsAsTheGoldenTextHasIt) {
  Start();
  Form12& form = Open();
  SettingsWalk walk{form, *platform, Store(), dialogs, UserId(0), [&] {
                      form.close();
                      Open();
                    }};
  walk.CheckTexts();
  walk.CheckValues();
  form.close();
  const RegistrySnapshot before = Snapshot();
  OpenDisk();
  EXPECT_EQ(Snapshot(), before) << "all of it is on the disk";
}

TEST_F(Form12Test, WhatIsOfAnIdentityIsReadAndStoredForTheOneShown) {
  Start();
  Form12& form = Open();
  form.cmbUsr.pick(1);
  EXPECT_EQ(form.lblcurUsrName.caption, "Büro");
  EXPECT_EQ(Combo("cmbShowSourceEditColor").text, "Off") << "missing counts as 0";
  EXPECT_EQ(Combo("cmbNoSplash").text, "On");
  EXPECT_EQ(Read(Key("", 1), "Show Source Edit Color"), RegValue()) << "and nothing is made";
  Box("OETitle").type("abc");
  Press("cmdChngOETitle");
  EXPECT_EQ(Read(Key("", 1), "WindowTitle"), RegValue("abc"));
  EXPECT_NE(Read(Key("", 0), "WindowTitle"), RegValue("abc"));
  Press("cmdResIELogo");
  for (const char* name : {"BrandBitmap", "SmBrandBitmap"}) {
    const std::string toolbar = "Software\\Microsoft\\Internet Explorer\\Toolbar";
    EXPECT_EQ(Read(toolbar, name), RegValue("")) << name;
    const OpenResult key = Store().OpenKey(CurrentUser(toolbar));
    EXPECT_EQ(platform->GetRegistry().Query(key.key, name, std::nullopt).type, ValueType::Sz);
  }
  form.close();
  EXPECT_TRUE(windows->form1.visible && !form.visible);
  Open();
  EXPECT_EQ(form.cmbUsr.text, UserId(0)) << "each opening starts at the first identity";
}

TEST_F(Form12Test, TheSlideShowDelayFollowsTheInlineImages) {
  Start();
  Open();
  const std::vector<std::string> choices = Combo("cmbAutomaticallyInlineImages").items;
  const auto delay = [&] { return Read(Key("\\Mail"), "Automatic Slide Show Delay"); };
  Combo("cmbAutomaticallyInlineImages").pick("Slide Show");
  EXPECT_EQ(delay(), RegValue(5)) << "the delay that was chosen stays";
  Combo("cmbAutomaticallyInlineImages").pick("Disabled");
  EXPECT_EQ(delay(), RegValue(0));
  EXPECT_EQ(Box("txtAutomaticSlideShowDelay").text, "0");
  EXPECT_FALSE(Box("txtAutomaticSlideShowDelay").enabled);
  EXPECT_FALSE(windows->form12.Named<Button>("cmdChmgDelay").enabled);
  Combo("cmbAutomaticallyInlineImages").pick("Top to Bottom");
  EXPECT_TRUE(windows->form12.Named<Button>("cmdChmgDelay").enabled);
  EXPECT_EQ(delay(), RegValue(6));
  EXPECT_EQ(Box("txtAutomaticSlideShowDelay").text, "6");
  windows->form12.cmbUsr.pick(1);
  EXPECT_EQ(Combo("cmbAutomaticallyInlineImages").items, choices);
}

TEST_F(Form12Test, AMachineThatCannotBeWrittenIsShownAsItIs) {
  NEEDS(Modes);
  namespace fs = std::filesystem;
  Start();
  Store().SetKeyValue2(kMachine, "No modify accts", 1, ValueType::Dword);
  for (const char* name : {"Hide Messenger", "Disable Hotmail"}) Remove({RegistryRoot::LocalMachine, kMachine}, name);
  platform->EndCommand();
  for (const auto& entry : fs::recursive_directory_iterator(temp.Path())) {
    fs::permissions(entry, entry.is_directory() ? fs::perms{0755} : fs::perms{0644});
  }
  fs::permissions(temp.Path(), fs::perms{0755});
  const fs::path profile = sample.driveC / "Documents and Settings" / sample.profile;
  fs::permissions(profile, fs::perms{0777});
  fs::permissions(profile / "NTUSER.DAT", fs::perms{0666});
  fs::remove_all(temp / "state");
  windows.reset();
  store.reset();
  platform.reset();
  {
    const OrdinaryUser user;
    OpenDisk();
    windows->form1.Open();
    Open();
    const std::string where =
        "software; changes cannot be saved, since " + temp.Path().string() + " cannot be written: Permission denied";
    EXPECT_EQ(windows->form12.lblProtected.caption, "Write-protected: " + where + ".");
    EXPECT_NE(windows->form1.lblSystem.caption->find("(write-protected: software; "), std::string::npos);
    EXPECT_EQ(platform->WriteProtection({RegistryRoot::CurrentUser}), "") << "the person's own hive can be written";
    EXPECT_EQ(Combo("cmbNomodifyaccts").text, "On");
    EXPECT_EQ(Combo("cmbHideMessenger").text, "Off");
    EXPECT_EQ(Combo("cmbDisableHotmail").text, "Disabled") << "what cannot be asked with full access counts as 0";
    Combo("cmbNomodifyaccts").pick("Off");
    EXPECT_EQ(Combo("cmbNomodifyaccts").text, "Off");
    EXPECT_EQ(Machine("No modify accts"), RegValue(1));
    windows->form13.Open();
    EXPECT_EQ(windows->form13.lblProtected.caption, "") << "it writes nothing of the machine";
  }
  fs::permissions(profile, fs::perms{0555});
  fs::permissions(profile / "NTUSER.DAT", fs::perms{0444});
  {
    const OrdinaryUser user;
    OpenDisk();
    windows->form1.Open();
    Open();
    windows->form13.Open();
    EXPECT_THAT(windows->form12.lblProtected.caption.Get(), HasSubstr("NTUSER.DAT"));
    EXPECT_THAT(windows->form13.lblProtected.caption.Get(), HasSubstr("NTUSER.DAT"));
  }
  fs::permissions(profile, fs::perms{0755});
  dialogs.messages.clear();
}

}  // namespace
}  // namespace quillbox
