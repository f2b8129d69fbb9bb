#include "reports/rules_report.h"

#include "reports/golden.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

constexpr const char* kHome = "{2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}";
constexpr const char* kCreated = "3/7/2004 12:05:09 AM";

class RulesReportTest : public SamplePlatform {
 protected:
  void SetUp() override { MakeDisk(); }
  RulesReport Make(RuleSet set, ReportFormat format) {
    RuleReader reader(*store, set, CodePage(platform->GetSystemFacts().CodePageNumber()));
    return MakeRulesReport(reader, kHome, kCreated, format);
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

TEST_F(RulesReportTest, ACriterionThatCannotBeDecodedEndsTheReportWhereItStands) {
  const RegistryPath rules = CurrentUser(IdentitySettingsKey(kHome) + "\\Rules\\Mail");
  const Key entry = store->CreateKey(rules.Child("001\\Criteria\\00A"));
  store->SetValueEx(entry, "Type", ValueType::Dword, 13);
  const RulesReport report = Make(RuleSet::Mail, ReportFormat::Text);
  EXPECT_THAT(report.brokenOff, Optional(HasSubstr("not a number")));
  EXPECT_THAT(report.text, EndsWith("CriteriaValue: news@example.com shop@example.net  \r\n"));
  EXPECT_THAT(report.text, Not(HasSubstr("End Of File")));
}

TEST_F(RulesReportTest, WhatIsFilledInIsNoTemplateAndTakesOneLine) {
  const RegistryPath rules = CurrentUser(IdentitySettingsKey(kHome) + "\\Rules\\News");
  store->SetValueEx(store->CreateKey(rules.Child("000")), "Name", ValueType::Sz,
                    "50 %version% <b> \xE6\x97\xA5\r\nEnabled: no");
  EXPECT_THAT(Written(Make(RuleSet::News, ReportFormat::Html)),
              HasSubstr("<DIV>Name: 50 %version% <b> ???Enabled: no</DIV>\r\n"));
  EXPECT_THAT(Written(Make(RuleSet::News, ReportFormat::Text)),
              HasSubstr("\r\nName: 50 %version% <b> ???Enabled: no\r\nEnabled: "));
}

}  // namespace
}  // namespace quillbox
