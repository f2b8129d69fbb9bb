#include "ui/forms/settings_window.h"

#include "settings/settings_tabs.h"
#include "support/sample_windows.h"
#include "support/settings_walk.h"

namespace quillbox {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kKeys[] = {"", "", "\\Mail", "\\News", "\\Rules"};  // as SettingKey

class Form13Test : public SampleWindows {
 protected:
  Form13& Open() {
    Start().menuBar.click("regEntry");
    return windows->form13;
  }
  std::filesystem::path Hive() const {
    return sample.driveC / "Documents and Settings" / sample.profile / "NTUSER.DAT";
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

TEST_F(Form13Test, EveryPickIsOnTheDiskAtOnceAndIsShownAgain) {
  if (!CanExportHives()) GTEST_SKIP() << "hivexregedit is not installed";
  const SettingsWalk walk{
      .form = Open(),
      .tabs = SettingsTabs(),
      .keyInHive = [this](SettingKey key) { return "\\" + Key(kKeys[static_cast<std::size_t>(key)]); },
      .readDisk = [this] { return ExportHive(Hive(), "\\" + Key("")); },
      .reload = [this] { Reload(); },
      .shownOtherwise = {{"cmbEncryptMessages Off", "Of"}, {"cmbEncryptionWarningBits 168", "0"}},
  };
  EXPECT_GT(walk.Run(), 100U);
  EXPECT_TRUE(dialogs.messages.size() == 0 && platform->log.lines.empty());
}

TEST_F(Form13Test, ShowingNeverWrites) {
  Start();
  const std::string before = Content(Hive());
  windows->form1.menuBar.click("regEntry");
  Form13& form = windows->form13;
  for (std::size_t identity : {1U, 0U}) {
    form.cmboUserIDs10.pick(identity);
    for (std::size_t tab = 0; tab < form.SSTab1.Tabs().size(); ++tab) form.SSTab1.pick(tab);
  }
  Combo("cmbLaunchInbox").type("Off");
  Box("txtLogFilePOP").type("other.log");
  EXPECT_EQ(Shown("cmbLaunchInbox") + Shown("txtLogFilePOP"), "OnPop3.log");
  form.close();
  EXPECT_TRUE(windows->form1.visible && !form.visible);
  EXPECT_TRUE(Content(Hive()) == before);
}

TEST_F(Form13Test, StoredValuesAreShownInWords) {
  Start();
  const auto set = [&](const char* below, const char* name, const RegValue& value, ValueType type = ValueType::Dword) {
    Store().SetKeyValue(Key(below), name, value, type);
  };
  set("\\Mail", "Poll For Mail", 90000);
  set("\\Mail", "MarkPreviewAsRead", -1);
  set("\\News", "Download at a time", 0);
  set("", "SendMDN", 3);
  set("", "Watched Message Color", 17);
  set("", "Launch Inbox", "1", ValueType::Sz);
  set("", "Expand Unread", "yes", ValueType::Sz);
  set("\\Mail", "Log File (IMAP4)", 7);
  platform->GetRegistry().SetValue(Store().OpenKey(CurrentUser(Key("\\Mail"))).key, "Safe Attachments",
                                   ValueType::Binary, Bytes{1, 0, 0, 0});
  Open();
  const std::pair<const char*, const char*> shown[] = {
      {"txtPollForMail", "1.5"},
      {"txtMarkPreviewAsRead", "Off"},
      {"txtDownloadatatime", "0"},
      {"cmbSendMDN", ""},
      {"cmbWatchedMessageColor", ""},
      {"cmbLaunchInbox", "On"},
      {"cmbExpandUnread", ""},
      {"txtLogFileIMAP", "7"},
      {"cmbSafeAttachments", ""},
      {"cmbEncryptMessages", "Of"},
      {"cmbEncryptionWarningBits", "0"},
      {"txtVCardDisplayNameMail", "None Selected"},
      {"cmbMessengerAutologon", "Off"},
      {"cmbSecurityLabel", "Disabled"},
      {"txtLogFileHTTP", "No Active File"},
  };
  for (const auto& [control, text] : shown) EXPECT_EQ(Shown(control), text) << control;
  EXPECT_EQ(platform->log.lines.size(), 4U) << "each that is shown as nothing has its reason in the log";

  windows->form13.cmboUserIDs10.pick(1);
  EXPECT_EQ(Shown("txtPollForMail"), "-1");
  EXPECT_EQ(Shown("cmbEncryptionWarningBits"), "128");
  EXPECT_EQ(Shown("cmbNewgroupnotification"), "Off");
  EXPECT_EQ(Shown("cmbDialDuringPoll"), "Connect even when working offline");
  EXPECT_EQ(Shown("cmbAutoExpandThreads"), "Disabled");
}

TEST_F(Form13Test, WithoutAKeyNothingIsShownOrMade) {
  Start();
  for (const char* below : {"\\Mail", "\\News", "\\Rules"}) Store().DeleteKey(CurrentUser(Key(below)));
  Open();
  EXPECT_EQ(Shown("cmbPlaySoundOnNewMail") + Shown("txtPollForMail") + Shown("cmbLog"), "");
  EXPECT_EQ(Shown("cmbMessengerAutologon"), "Off");
  Combo("cmbPlaySoundOnNewMail").pick("On");
  Enter("txtDownloadatatime", "100", "cmdDownloadatatime");
  EXPECT_EQ(Store().OpenKey(CurrentUser(Key("\\Mail"))).status, Status::FileNotFound);
  EXPECT_EQ(Store().OpenKey(CurrentUser(Key("\\News"))).status, Status::FileNotFound);
  EXPECT_THAT(dialogs.messages, IsEmpty());
}

struct Entry {
  const char* typed;
  std::int32_t stored;
  const char* shown;
  bool hasMessage = false;
};

TEST_F(Form13Test, NumbersAreEnteredAndOthersAreRefused) {
  Open();
  const auto check = [this](const char* box, const char* button, const char* below, const char* value,
                            const std::vector<Entry>& entries) {
    for (const Entry& entry : entries) {
      dialogs.messages.clear();
      Enter(box, entry.typed, button);
      EXPECT_EQ(Read(Key(below), value), RegValue(entry.stored)) << value << ": " << entry.typed;
      EXPECT_EQ(Shown(box), entry.shown) << value << ": " << entry.typed;
      EXPECT_EQ(dialogs.messages.size(), entry.hasMessage ? 1U : 0U) << value << ": " << entry.typed;
    }
  };
  check("txtPollForMail", "cmdChangePollForMail", "\\Mail", "Poll For Mail",
        {{"1.5", 90000, "1.5"},
         {"-1", -1, "Off"},
         {"Off", -1, "Off", true},
         {"0", 0, "0"},
         {"35791.394", 2147483640, "35791.394"},
         {"35792", 2147483640, "35792", true},
         {"", 2147483640, "", true},
         {"nan", 2147483640, "nan", true},
         {"5 min", 2147483640, "5 min", true}});
  check("txtMarkPreviewAsRead", "cmdMarkPreviewAsRead", "\\Mail", "MarkPreviewAsRead",
        {{"999", 999, "999"},
         {" 7 ", 7, "7"},
         {"seven", 7, "seven", true},
         {"1.6", 2, "2"},
         {"-5", -5, "Off"},
         {"-1", -1, "Off"}});
  EXPECT_EQ(Box("txtMarkPreviewAsRead").tooltip, "Please enter a value between 0 and 480.");
  Enter("txtMarkPreviewAsRead", "seven", "cmdMarkPreviewAsRead");
  EXPECT_EQ(dialogs.LastMessage(),
            "Please enter a number of seconds between -2147483648 and 2147483647. Use -1 to turn this off.")
      << "999 was stored";
  check("txtDownloadatatime", "cmdDownloadatatime", "\\News", "Download at a time",
        {{"1000", 1000, "1000"},
         {"1001", 50, "50", true},
         {"-1", -1, "Off"},
         {"49", 50, "50", true},
         {"many", 50, "many", true},
         {"-2", 50, "50", true},
         {"51", 51, "51"},
         {"0", 50, "50", true}});
  EXPECT_EQ(dialogs.LastMessage(), "Please enter a value between 50 and 1000. Use -1 to disable.");
}

TEST_F(Form13Test, ANumberThatIsTypedButNotAppliedIsAskedAbout) {
  Form13& form = Open();
  const auto stored = [this](std::size_t identity) { return Read(Key("\\Mail", identity), "Poll For Mail"); };
  Box("txtPollForMail").type("15");
  form.SSTab1.pick(3);
  dialogs.messageAnswers = {MessageAnswer::Cancel};
  form.close();
  EXPECT_EQ(dialogs.LastMessage(),
            "\"15\" was typed for \"Poll For Mail      (Minutes)\" and is not applied yet. Apply it?");
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
  EXPECT_EQ(dialogs.LastMessage(),
            "This Identity has not been set up. Please log into that Identity and set the values from the Options "
            "menu.");
  EXPECT_EQ(Shown("cmbLaunchInbox") + Shown("txtPollForMail"), "");
  EXPECT_THAT(Combo("cmbLaunchInbox").items.Get(), IsEmpty());
  Reload();
  EXPECT_THAT(Combo("cmbLaunchInbox").items.Get(), ElementsAre("On", "Off"));
  EXPECT_EQ(Shown("cmbLaunchInbox"), "On");
}

}  // namespace
}  // namespace quillbox
