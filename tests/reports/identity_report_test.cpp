#include "reports/identity_report.h"

#include "reports/golden.h"
#include "support/sample_ids.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

using ::testing::HasSubstr;

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
  EXPECT_THAT(MakeIdentityReport(facts, ReportFormat::Text), HasSubstr("\r\nNumber of  Files Found: 3\r\n"))
      << "other types of files have no label";
}

}  // namespace
}  // namespace quillbox
