// SPDX-License-Identifier: GPL-3.0-or-later
// Reports as they are written, and their dates.
#include <cstdlib>
#include <iomanip>
#include <sstream>

#include "reports/general_date.h"
#include "reports/identity_report.h"
#include "reports/rules_report.h"
#include "support/sample_ids.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

/// Reports compared byte for byte with files that were read by eye; every_mail_entry.txt and every_news_entry.txt were
/// made from the tables of the stored rules' format, not by this program. Run with QUILLBOX_NEW_GOLDEN=1 to write them
/// anew, and read what has changed before you commit it.
void ExpectGolden(const std::string& name, const std::string& bytes) {
  const std::filesystem::path file = std::filesystem::path(QUILLBOX_TESTS_DIR) / "reports/golden" / name;
  if (std::getenv("QUILLBOX_NEW_GOLDEN")) std::ofstream(file, std::ios::binary) << bytes;
  std::ifstream in(file, std::ios::binary);
  EXPECT_EQ(bytes, std::string(std::istreambuf_iterator<char>(in), {})) << name;
}

std::tm At(const std::string& time) {
  std::tm when = {};
  std::istringstream("2004-03-07 " + time) >> std::get_time(&when, "%Y-%m-%d %H:%M:%S");
  return when;
}

TEST(GeneralDateTest, PicturesAreFilled) {
  const DateStyle us;
  EXPECT_EQ(FormatGeneralDate(At("00:05:09"), us), "3/7/2004 12:05:09 AM");
  EXPECT_EQ(FormatGeneralDate(At("12:00:00"), us), "3/7/2004 12:00:00 PM");
  EXPECT_EQ(FormatGeneralDate(At("23:59:59"), us), "3/7/2004 11:59:59 PM");
  const DateStyle german = {.shortDate = "dd/MM/yy", .time = "HH:mm:ss", .dateSeparator = ".", .timeSeparator = ":"};
  EXPECT_EQ(FormatGeneralDate(At("09:05:09"), german), "07.03.04 09:05:09");
  const DateStyle words = {.shortDate = "dddd, d 'de' MMM yyy 'open", .time = "t h''H", .morning = "Ä1"};
  EXPECT_EQ(FormatGeneralDate(At("01:00:00"), words), "Sunday, 7 de Mar 2004 open Ä 11");
}

using GeneralDateOnDisk = SamplePlatform;

TEST_F(GeneralDateOnDisk, ThePersonsStyleIsUsed) {
  const Key key = store->CreateKey(CurrentUser("Control Panel\\International"));
  const auto set = [&](const char* name, const char* text) { store->SetValueEx(key, name, ValueType::Sz, text); };
  set("sShortDate", "yyyy/MM/dd");
  set("sDate", "-");
  set("sTimeFormat", "");
  store->SetValueEx(key, "sTime", ValueType::Dword, 7);
  EXPECT_EQ(FormatGeneralDate(At("15:04:05"), ReadDateStyle(*store)), "2004-03-07 3:04:05 PM");
  set("sTimeFormat", "h:mm tt");
  set("sTime", ".");
  set("s1159", "early");
  set("s2359", "late");
  EXPECT_EQ(FormatGeneralDate(At("15:04:05"), ReadDateStyle(*store)), "2004-03-07 3.04 late");
  EXPECT_EQ(FormatGeneralDate(At("03:04:05"), ReadDateStyle(*store)), "2004-03-07 3.04 early");
}

TEST(GeneralDateTest, MonthsAndDaysHaveTheirNames) {
  for (int n = 0; n < 12; ++n) {
    std::tm when = At("00:00:00");
    when.tm_mon = n;
    when.tm_wday = n % 7;
    char names[32] = {};
    std::strftime(names, sizeof names, "%A %B %a %b ", &when);
    EXPECT_EQ(FormatGeneralDate(when, {.shortDate = "dddd MMMM ddd MMM", .time = ""}), names);
  }
}

class IdentityReportTest : public SamplePlatform {
 protected:
  void SetUp() override {
    MakeDisk();
    const IdentityCatalogue catalogue = LoadCatalogue(*store, platform->GetSystemFacts());
    facts = {.created = "3/7/2004 12:05:09 AM",
             .identities = catalogue.identities,
             .defaultUsername = catalogue.defaultUsername,
             .defaultUserId = catalogue.defaultUserId,
             .addressBookFile = catalogue.addressBookFile,
             .selectedFolder = "D:\\Mail\\Office",
             .fileType = "*.dbx",
             .foundFiles = {"Folders.dbx", "Inbox.dbx", "Inbox.dbx"}};
  }
  IdentityReportFacts facts;
};

TEST_F(IdentityReportTest, TheSampleDisksReportsReadAsTheyShould) {
  for (const auto& [name, format] :
       {std::pair("identities.txt", ReportFormat::Text), std::pair("identities.htm", ReportFormat::Html)}) {
    WriteReport(platform->GetFiles(), platform->GetSystemFacts(), WinPath("D:\\report"),
                MakeIdentityReport(facts, format));
    ExpectGolden(name, Content(sample.driveD / "report"));
  }
}

TEST_F(IdentityReportTest, AllIdentitiesOfTheSelectedFolderAreListedWithNamesInOneLine) {
  facts.identities[0].storeFolder = WinPath(facts.selectedFolder);
  facts.identities[0].username = "<Main>\r\nEnd";
  facts.fileType = "*.idx";
  const std::string report = MakeIdentityReport(facts, ReportFormat::Html);
  EXPECT_THAT(report, HasSubstr("\r\n<Main>\u240D\u240AEnd: " + kMain + "</DIV>\r\nBüro: " + kOffice + "</DIV>\r\n"));
  const std::pair<const char*, const char*> labels[] = {{"*.idx", ""},  // nor have other patterns
                                                        {"*.mbx", "Outlook Express 4 MBX"},
                                                        {"*.wab", "Address Book WAB"},
                                                        {"*.wa~", "Address Book Backup WA~"}};
  for (const auto& [type, label] : labels) {
    facts.fileType = type;
    EXPECT_THAT(MakeIdentityReport(facts, ReportFormat::Text),
                HasSubstr("\r\nNumber of " + std::string(label) + " Files Found: 3\r\n"));
  }
}

constexpr const char* kOwn = "{1}";  // an identity that has the rules that a test writes, and no others
constexpr const char* kCreated = "3/7/2004 12:05:09 AM";
constexpr std::int32_t kSubject = 8, kFrom = 12, kPriority = 13, kSize = 15, kSecure = 31;
constexpr std::int32_t kReply = 5, kDelete = 7, kHighlight = 10, kWatch = 17;

Bytes List(std::string_view words) {
  Bytes bytes(words.begin(), words.end());
  bytes.resize(bytes.size() + 2);
  return bytes;
}

class RulesReportTest : public SamplePlatform {
 protected:
  static RegistryPath Rule(const std::string& userId, RuleSet set, const std::string& name) {
    return CurrentUser(IdentitySettingsKey(userId) + "\\Rules\\" + (set == RuleSet::Mail ? "Mail\\" : "News\\") + name);
  }
  /// Writes `values` below `path`; one that is empty is left out.
  void Write(const RegistryPath& path, const std::vector<std::pair<const char*, RegValue>>& values) {
    const Key key = store->CreateKey(path);
    for (const auto& [name, value] : values) {
      if (value.Data()) {
        platform->GetRegistry().SetValue(key, name, ValueType::Binary, *value.Data());
      } else if (!value.IsEmpty()) {
        store->SetValueEx(key, name, value.Number() ? ValueType::Dword : ValueType::Sz, value);
      }
    }
  }
  using Entry = std::vector<std::pair<const char*, RegValue>>;
  static Entry Criterion(RegValue type, RegValue flags, RegValue value) {
    return {{"Type", std::move(type)}, {"Flags", std::move(flags)}, {"Value", std::move(value)}};
  }
  static Entry Action(RegValue type, RegValue value) {
    return {{"Type", std::move(type)}, {"Value", std::move(value)}};
  }
  /// Writes the entries of a rule of kOwn. `kind`: "Criteria" or "Actions".
  void WriteEntries(RuleSet set, const char* kind, const std::vector<Entry>& entries) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
      Write(Rule(kOwn, set, "002").Child(kind).Child(std::to_string(1000 + i)), entries[i]);
    }
  }

  RulesReport Make(RuleSet set, ReportFormat format, const std::string& userId = kMain) {
    RuleReader reader(*store, set, CodePage(platform->GetSystemFacts().CodePageNumber()));
    return MakeRulesReport(reader, userId, kCreated, format);
  }
  std::string Written(const RulesReport& report) {
    EXPECT_EQ(report.brokenOff, std::nullopt);
    WriteReport(platform->GetFiles(), platform->GetSystemFacts(), WinPath("D:\\report"), report.text);
    return Content(sample.driveD / "report");
  }
};

TEST_F(RulesReportTest, TheSampleDisksReportsReadAsTheyShould) {
  ExpectGolden("mail_rules.txt", Written(Make(RuleSet::Mail, ReportFormat::Text)));
  ExpectGolden("mail_rules.htm", Written(Make(RuleSet::Mail, ReportFormat::Html)));
  ExpectGolden("news_rules.txt", Written(Make(RuleSet::News, ReportFormat::Text)));
  ExpectGolden("news_rules.htm", Written(Make(RuleSet::News, ReportFormat::Html)));
}

// Every type, flag and colour that is or could be in a table, in both sets, then values of all kinds.
TEST_F(RulesReportTest, EveryEntryReadsAsItsTableSays) {
  std::vector<Entry> criteria, actions;
  for (std::int32_t type = -1; type <= 32; ++type) criteria.push_back(Criterion(type, 0, "2"));
  for (std::int32_t flags = 1; flags <= 4; ++flags) {
    for (const std::int32_t type : {8, 9, 10, 11, 12, 22}) criteria.push_back(Criterion(type, flags, "2"));
  }
  for (const Entry& entry : {Criterion(kSubject, {}, List(std::string_view("alpha\0beta", 10))),
                             Criterion("8", 2, List("b\xFCro")), Criterion(kSubject, -1, 17), Criterion(kFrom, 0, {}),
                             Criterion(kPriority, 0, 1), Criterion(kPriority, -1, " 2 "), Criterion(kPriority, 0, 3),
                             Criterion(kSize, 0, 50), Criterion(kSize, 0, {}), Criterion(kSecure, 0, 1), Entry{}}) {
    criteria.push_back(entry);
  }
  for (std::int32_t type = -1; type <= 18; ++type) actions.push_back(Action(type, "2"));
  for (std::int32_t colour = 0; colour <= 17; ++colour) actions.push_back(Action(kHighlight, colour));
  for (const Entry& entry : {Action(kReply, Bytes{'o', 0, 'k', 0}), Action(kDelete, 1), Action(kHighlight, {}),
                             Action(kHighlight, List("x")), Action(kWatch, 1), Action(kWatch, 3), Entry{}}) {
    actions.push_back(entry);
  }
  for (const RuleSet set : {RuleSet::Mail, RuleSet::News}) {
    Write(Rule(kOwn, set, "000"), {});
    Write(Rule(kOwn, set, "001"), {{"Name", 7}, {"Enabled", "1"}, {"Version", List("ab")}});
    Write(Rule(kOwn, set, "002"), {{"Name", Bytes{'o', 0, 'k', 0}}, {"Enabled", 2}, {"Version", -1}});
    WriteEntries(set, "Criteria", criteria);
    WriteEntries(set, "Actions", actions);
  }
  platform->EndCommand();
  OpenDisk();
  ExpectGolden("every_mail_entry.txt", Written(Make(RuleSet::Mail, ReportFormat::Text, kOwn)));
  ExpectGolden("every_news_entry.txt", Written(Make(RuleSet::News, ReportFormat::Text, kOwn)));
}

TEST_F(RulesReportTest, DoubleByteListsAreDecodedAndABrokenPairSwallowsNoWord) {
  WriteEntries(RuleSet::Mail, "Criteria",
               {Criterion(kSubject, 0, List(std::string_view("\x93\xFA\x96{\0\x95\\", 7))),
                Criterion(kSubject, 0, List(std::string_view("\x93\0b", 3)))});
  RuleReader reader(*store, RuleSet::Mail, CodePage(932));
  const RulesReport report = MakeRulesReport(reader, kOwn, kCreated, ReportFormat::Text);
  EXPECT_THAT(report.text, HasSubstr("CriteriaValue: 日本 表  \r\n"));
  EXPECT_THAT(report.text, HasSubstr("CriteriaValue: \xEF\xBF\xBD b  \r\n"));
}

TEST_F(RulesReportTest, ACriterionThatCannotBeDecodedEndsTheReportWhereItStands) {
  for (const Entry& broken :
       {Criterion(kPriority, {}, {}), Criterion(kSecure, {}, "high"), Criterion(kSecure, {}, List("high"))}) {
    Write(Rule(kMain, RuleSet::Mail, "001\\Criteria\\00A"), broken);
    const RulesReport report = Make(RuleSet::Mail, ReportFormat::Text);
    EXPECT_THAT(report.brokenOff, Optional(HasSubstr("not a number")));
    EXPECT_THAT(report.text, EndsWith("CriteriaValue: news@example.com shop@example.net  \r\n"));
    EXPECT_THAT(report.text, Not(HasSubstr("End Of File")));
    Write(Rule(kMain, RuleSet::News, "001\\Criteria\\00A"), broken);
    EXPECT_THAT(Written(Make(RuleSet::News, ReportFormat::Text)), HasSubstr("End Of File")) << "news have no such type";
  }
}

TEST_F(RulesReportTest, WhatIsFilledInIsNotATemplateAndTakesOneLine) {
  const RegistryPath rule = Rule(kMain, RuleSet::News, "000");
  Write(rule, {{"Name", "50 %version% <b> \xE6\x97\xA5\r\nEnabled: no"}});
  EXPECT_THAT(Written(Make(RuleSet::News, ReportFormat::Html)),
              HasSubstr("<DIV>Name: 50 %version% <b> ???Enabled: no</DIV>\r\n"));
  EXPECT_THAT(Written(Make(RuleSet::News, ReportFormat::Text)),
              HasSubstr("\r\nName: 50 %version% <b> ???Enabled: no\r\nEnabled: "));
  const std::string longName(70'000, 'n');
  Write(rule, {{"Name", longName}});
  EXPECT_THAT(Make(RuleSet::News, ReportFormat::Text).text, HasSubstr("\r\nName: " + longName + "\r\n"));
}

}  // namespace
}  // namespace quillbox
