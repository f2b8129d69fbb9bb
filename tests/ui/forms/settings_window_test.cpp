// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/settings_window.h"

#include "support/sample_windows.h"
#include "support/settings_walk.h"

namespace quillbox {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Form13Test : public SampleWindows {
 protected:
  Form13& Open() {
    Start().menuBar.click("regEntry");
    return windows->form13;
  }
  SettingsWalk OpenWalk() {
    return {Open(), *platform, Store(), dialogs, UserId(0), [this] { Reload(); }};
  }
  std::string UserId(std::size_t index) { return Identities().at(index).userId; }
  std::string Key(const std::string& below, std::size_t index = 0) {
    return IdentitySettingsKey(UserId(index)) + below;
  }
  ComboBox& Combo(const std::string& name) { return windows->form13.Named<ComboBox>(name); }
  TextBox& Box(const std::string& name) { return windows->form13.Named<TextBox>(name); }
  std::string Shown(const std::string& name) {
    return name.starts_with("cmb") ? Combo(name).text.Get() : Box(name).text.Get();
  }
  void Enter(const std::string& box, const std::string& text, const std::string& button) {
    Box(box).type(text);
    windows->form13.Named<Button>(button).click();
  }
  void Reload() { windows->form13.cmboUserIDs10.pick(0); }
};

TEST_F(Form13Test, EverySettingIsAsTheGoldenTextHasIt) {
  SettingsWalk walk = OpenWalk();
  walk.CheckTexts();
  walk.CheckValues();
  windows->form13.close();
  const RegistrySnapshot before = Snapshot();
  OpenDisk();
  EXPECT_EQ(Snapshot(), before) << "all of it is on the disk";
}

TEST_F(Form13Test, DataOfOtherTypesAreShownWhereTheySayANumberOrAText) {
  Start();
  const auto set = [&](const char* below, const char* name, const RegValue& value, ValueType type = ValueType::Dword) {
    Store().SetKeyValue(Key(below), name, value, type);
  };
  set("", "Launch Inbox", "1", ValueType::Sz);
  set("", "Expand Unread", "yes", ValueType::Sz);
  set("\\Mail", "Log File (IMAP4)", 7);
  platform->GetRegistry().SetValue(Store().OpenKey(CurrentUser(Key("\\Mail"))).key, "Safe Attachments",
                                   ValueType::Binary, Bytes{1, 0, 0, 0});
  Open();
  EXPECT_EQ(Shown("cmbLaunchInbox") + Shown("cmbExpandUnread") + Shown("cmbSafeAttachments"), "On");
  EXPECT_EQ(Shown("txtLogFileIMAP"), "7");
  EXPECT_EQ(platform->log.lines.size(), 2U) << "each that is shown as nothing has its reason in the log";
  EXPECT_THAT(platform->log.lines.back(), EndsWith("shown as an empty text because none is known for its data"));
}

TEST_F(Form13Test, WithoutAKeyNothingIsShownOrMade) {
  SettingsWalk walk = OpenWalk();
  for (const std::string key : {"Mail", "News", "Rules"}) {
    const RegistryPath path = CurrentUser(Key("\\" + key));
    Store().DeleteKey(path);
    Reload();
    for (const auto& [control, text] : walk.ShownWithoutKey(key)) EXPECT_EQ(walk.Text(control), text) << control;
    Combo("cmbPlaySoundOnNewMail").pick("On");
    Enter("txtDownloadatatime", "100", "cmdDownloadatatime");
    EXPECT_EQ(Store().OpenKey(path).status, Status::FileNotFound);
  }
  EXPECT_THAT(dialogs.messages, IsEmpty());
}

TEST_F(Form13Test, ANumberThatIsTypedButNotAppliedIsAskedAbout) {
  Form13& form = Open();
  const auto stored = [this](std::size_t identity) { return Read(Key("\\Mail", identity), "Poll For Mail"); };
  Box("txtPollForMail").type("15");
  form.SSTab1.pick(3);
  dialogs.messageAnswers = {MessageAnswer::Cancel};
  form.close();
  EXPECT_THAT(dialogs.LastMessage(), StartsWith("\"15\" was typed for \"Poll For Mail      (Minutes)\""));
  EXPECT_TRUE(form.visible && form.SSTab1.selected.Get() == 0) << "the number is in view";
  EXPECT_EQ(stored(0), RegValue(1800000));

  dialogs.messageAnswers = {MessageAnswer::Cancel, MessageAnswer::Yes};
  form.cmboUserIDs10.pick(1);
  EXPECT_EQ(form.cmboUserIDs10.text, UserId(0));
  form.cmboUserIDs10.pick(1);
  EXPECT_EQ(stored(0), RegValue(900000)) << "of the identity that was shown";
  EXPECT_EQ(Shown("txtPollForMail"), "-1");

  Box("txtPollForMail").type("soon");
  dialogs.messageAnswers = {MessageAnswer::Yes, MessageAnswer::No};
  form.close();
  EXPECT_TRUE(form.visible) << "the text was refused";
  form.close();
  EXPECT_FALSE(form.visible);
  EXPECT_EQ(stored(1), RegValue(-1));
}

TEST_F(Form13Test, TheReceiptForListsFollowsTheOneForAll) {
  Open();
  EXPECT_EQ(windows->form13.SSTab1.selected.Get(), 0U);
  EXPECT_FALSE(Combo("cmbSendReceiptToList").enabled) << "the sample asks each time";
  Combo("cmbSendMDN").pick("Always send a read receipt");
  EXPECT_TRUE(Combo("cmbSendReceiptToList").enabled);
  Combo("cmbSendMDN").pick("Never send a read receipt");
  EXPECT_FALSE(Combo("cmbSendReceiptToList").enabled);
  Store().SetKeyValue(Key(""), "SendMDN", 1, ValueType::Dword);
  Reload();
  EXPECT_TRUE(Combo("cmbSendReceiptToList").enabled);
}

TEST_F(Form13Test, AnIdentityThatWasNeverUsedIsNotShown) {
  Form13& form = Open();
  EXPECT_EQ(form.lbluserid.caption, "Main Identity");
  form.cmboUserIDs10.pick(2);
  EXPECT_EQ(form.lbluserid.caption, "Guest");
  EXPECT_THAT(dialogs.LastMessage(), StartsWith("This Identity has not been set up."));
  EXPECT_EQ(Shown("cmbLaunchInbox") + Shown("txtPollForMail"), "");
  EXPECT_THAT(Combo("cmbLaunchInbox").items.Get(), IsEmpty());
  Store().DeleteKey(CurrentUser(Key("", 1)));
  form.cmboUserIDs10.pick(1);
  EXPECT_EQ(dialogs.messages.size(), 2U) << "nor is one without a key";
  Reload();
  EXPECT_THAT(Combo("cmbLaunchInbox").items.Get(), ElementsAre("On", "Off"));
  EXPECT_EQ(Shown("cmbLaunchInbox"), "On");
}

}  // namespace
}  // namespace quillbox
