#include "ui/forms/odds_and_ends_window.h"

#include <unistd.h>

#include "settings/settings_tabs.h"
#include "support/sample_windows.h"
#include "support/settings_walk.h"

namespace quillbox {
namespace {

using ::testing::ElementsAre;

constexpr const char* kMachine = "Software\\Microsoft\\Outlook Express";

constexpr const char* kMachineInHive = "\\Microsoft\\Outlook Express";

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
  ExportedValues ReadDisk() {
    ExportedValues values = ExportHive(sample.driveC / "WINDOWS/system32/config/software", kMachineInHive);
    values.merge(ExportHive(sample.driveC / "Documents and Settings" / sample.profile / "NTUSER.DAT", "\\" + Key("")));
    return values;
  }
  void Remove(const RegistryPath& path, const char* name) {
    platform->GetRegistry().DeleteValue(Store().OpenKey(path).key, name);
  }
};

constexpr const char* kMachineRows[][4] = {
    // control, value, shown and stored when it was missing
    {"cmbDisableHTTP", "HTTP Mail Enabled", "Enabled", "dword:00000001"},
    {"cmbDisableHotmail", "Disable Hotmail", "Enabled", "dword:00000002"},
    {"cmbHideMessenger", "Hide Messenger", "Off", "dword:00000000"},
    {"cmbBlockExeAttachments", "BlockExeAttachments", "Off", "dword:00000000"},
    {"cmbNomodifyaccts", "No modify accts", "Off", "dword:00000000"},
};

TEST_F(Form12Test, OpeningStoresWhatIsMissingForTheFirstIdentityAndTheMachine) {
  if (!CanExportHives()) GTEST_SKIP() << "hivexregedit is not installed";
  Start();
  for (const auto& row : kMachineRows) Remove({RegistryRoot::LocalMachine, kMachine}, row[1]);
  for (const char* name : {"NoSplash", "Show Source Edit Color", "WindowTitle"}) Remove(CurrentUser(Key("")), name);
  for (const char* name : {"Automatically Inline Images", "Automatic Slide Show Delay"}) {
    Remove(CurrentUser(Key("\\Mail")), name);
  }
  Open();
  ExportedValues stored = ReadDisk();
  for (const auto& [control, value, shown, data] : kMachineRows) {
    EXPECT_EQ(Combo(control).text, shown) << control;
    EXPECT_EQ(stored[LowerCase(std::string(kMachineInHive) + "|" + value)], data) << value;
  }
  EXPECT_EQ(Combo("cmbNoSplash").text.Get() + Combo("cmbShowSourceEditColor").text.Get() +
                Combo("cmbAutomaticallyInlineImages").text.Get() + Box("OETitle").text.Get() +
                Box("txtAutomaticSlideShowDelay").text.Get() + Combo("cmbModerator").text.Get(),
            "OnOnDisabled0Disabled");
  EXPECT_FALSE(Box("txtAutomaticSlideShowDelay").enabled);
  const auto data = [&](const char* rest) { return stored[LowerCase("\\" + Key("") + rest)]; };
  EXPECT_EQ(data("|NoSplash"), "dword:00000000");
  EXPECT_EQ(data("|Show Source Edit Color"), "dword:00000001");
  EXPECT_EQ(data("|WindowTitle"), "hex(1):00,00");
  EXPECT_EQ(data("\\Mail|Automatically Inline Images"), "dword:00000000");
  EXPECT_EQ(data("\\Mail|Automatic Slide Show Delay"), "dword:00000000");
}

TEST_F(Form12Test, EveryPickIsOnTheDiskAtOnceAndIsShownAgain) {
  if (!CanExportHives()) GTEST_SKIP() << "hivexregedit is not installed";
  Start();
  constexpr const SettingsTab* kTabs[] = {&kOddsAndEnds};
  const SettingsWalk walk{
      .form = Open(),
      .tabs = kTabs,
      .keyInHive =
          [this](SettingKey key) {
            if (key == SettingKey::Machine) return std::string(kMachineInHive);
            return "\\" + Key(key == SettingKey::Mail ? "\\Mail" : "");
          },
      .readDisk = [this] { return ReadDisk(); },
      .reload =
          [this] {
            windows->form12.close();
            Open();
          },
      .shownOtherwise = {},
  };
  EXPECT_GT(walk.Run(), 10U);
}

TEST_F(Form12Test, PicksAreStoredForTheMachineOrTheIdentityShown) {
  Start();
  Form12& form = Open();
  Combo("cmbDisableHotmail").pick("Disabled");
  EXPECT_EQ(Machine("Disable Hotmail"), RegValue(0));
  Combo("cmbHideMessenger").pick("On");
  EXPECT_EQ(Machine("Hide Messenger"), RegValue(1));
  Combo("cmbNoSplash").pick("Off");
  EXPECT_EQ(Read(Key(""), "NoSplash"), RegValue(1));

  form.cmbUsr.pick(1);
  EXPECT_EQ(form.lblcurUsrName.caption, "Büro");
  EXPECT_EQ(Combo("cmbShowSourceEditColor").text, "Off") << "missing counts as 0";
  EXPECT_EQ(Combo("cmbNoSplash").text, "On");
  EXPECT_EQ(Read(Key("", 1), "Show Source Edit Color"), RegValue()) << "and nothing is made";
  Box("OETitle").type("abc");
  Press("cmdChngOETitle");
  EXPECT_EQ(Read(Key("", 1), "WindowTitle"), RegValue("abc"));
  EXPECT_NE(Read(Key("", 0), "WindowTitle"), RegValue("abc"));
  Box("IETitle").type("Browser");
  Press("cmdChngIETitle");
  EXPECT_EQ(Read("Software\\Microsoft\\Internet Explorer\\Main", "Window Title"), RegValue("Browser"));
  Press("cmdResIELogo");
  for (const char* name : {"BrandBitmap", "SmBrandBitmap"}) {
    EXPECT_EQ(Read("Software\\Microsoft\\Internet Explorer\\Toolbar", name), RegValue("")) << name;
  }
  form.close();
  EXPECT_TRUE(windows->form1.visible && !form.visible);

  Store().SetKeyValue2(kMachine, "Hide Messenger", 5, ValueType::Dword);
  Open();
  EXPECT_EQ(Combo("cmbHideMessenger").text, "");
  EXPECT_EQ(Machine("Hide Messenger"), RegValue(5));
  EXPECT_EQ(form.cmbUsr.text, UserId(0)) << "each opening starts at the first identity";
}

TEST_F(Form12Test, TheSlideShowDelayFollowsTheInlineImages) {
  Start();
  Open();
  const std::vector<std::string> choices = Combo("cmbAutomaticallyInlineImages").items;
  EXPECT_THAT(choices, ElementsAre("Disabled", "Top to Bottom", "Slide Show"));
  const auto stored = [&](const char* name) { return Read(Key("\\Mail"), name); };
  Combo("cmbAutomaticallyInlineImages").pick("Slide Show");
  EXPECT_EQ(stored("Automatically Inline Images"), RegValue(2));
  EXPECT_EQ(stored("Automatic Slide Show Delay"), RegValue(5)) << "the delay that was chosen stays";
  Combo("cmbAutomaticallyInlineImages").pick("Disabled");
  EXPECT_EQ(stored("Automatic Slide Show Delay"), RegValue(0));
  EXPECT_EQ(Box("txtAutomaticSlideShowDelay").text, "0");
  EXPECT_FALSE(Box("txtAutomaticSlideShowDelay").enabled);
  EXPECT_FALSE(windows->form12.Named<Button>("cmdChmgDelay").enabled);
  Combo("cmbAutomaticallyInlineImages").pick("Top to Bottom");
  EXPECT_TRUE(windows->form12.Named<Button>("cmdChmgDelay").enabled);
  EXPECT_EQ(stored("Automatic Slide Show Delay"), RegValue(6));
  EXPECT_EQ(Box("txtAutomaticSlideShowDelay").text, "6");
  Box("txtAutomaticSlideShowDelay").type("fast");
  Press("cmdChmgDelay");
  EXPECT_EQ(dialogs.LastMessage(), "Please enter a number of seconds between -2147483648 and 2147483647.");
  EXPECT_EQ(stored("Automatic Slide Show Delay"), RegValue(6));
  Box("txtAutomaticSlideShowDelay").type("12");
  Press("cmdChmgDelay");
  EXPECT_EQ(stored("Automatic Slide Show Delay"), RegValue(12));
  windows->form12.cmbUsr.pick(1);
  EXPECT_EQ(Combo("cmbAutomaticallyInlineImages").items, choices);
}

/// Gives up an administrator's right to write everywhere while it lives.
class OrdinaryPerson {
 public:
  OrdinaryPerson() { change_ = geteuid() == 0 && seteuid(65534) == 0; }
  ~OrdinaryPerson() {
    if (change_ && seteuid(0) != 0) std::abort();
  }
  OrdinaryPerson(const OrdinaryPerson&) = delete;
  OrdinaryPerson& operator=(const OrdinaryPerson&) = delete;

 private:
  bool change_;
};

TEST_F(Form12Test, AMachineThatCannotBeWrittenIsShownAsItIs) {
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
    const OrdinaryPerson person;
    OpenDisk();
    windows->form1.Open();
    Open();
    EXPECT_EQ(windows->form12.lblProtected.caption, "Write-protected: software; changes go to a private copy.");
    EXPECT_TRUE(windows->form1.lblSystem.caption->ends_with(
        "(write-protected: software; registry changes go to a private copy)"));
    EXPECT_EQ(platform->WriteProtection({RegistryRoot::CurrentUser}), "") << "the person's own hive can be written";
    EXPECT_EQ(Combo("cmbNomodifyaccts").text, "On");
    EXPECT_EQ(Combo("cmbHideMessenger").text, "Off");
    EXPECT_EQ(Combo("cmbDisableHotmail").text, "Disabled") << "what cannot be asked with full access counts as 0";
    Combo("cmbNomodifyaccts").pick("Off");
    EXPECT_EQ(Combo("cmbNomodifyaccts").text, "Off");
    EXPECT_EQ(Machine("No modify accts"), RegValue(1));
  }
  dialogs.messages.clear();
}

}  // namespace
}  // namespace quillbox
