// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/identity_report.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>

namespace quillbox {
namespace {

// The groups, as constants so that a misspelt name does not compile.
constexpr const char* kIdentities = "identities";
constexpr const char* kSelected = "selected";
constexpr const char* kFound = "found";

constexpr TemplateRow kText[] = {
    {"Peltrix Text File created: %created%"},
    {" "},
    {"Number of Identities: %identities%"},
    {"Identity Usernames"},
    {"        %username%", kIdentities},
    {" "},
    {"Paths to Identities: "},
    {"%username%", kIdentities},
    {"%folder%", kIdentities},
    {" ", kIdentities},
    {" "},
    {"Default {USER ID} Username: %defaultUsername%"},
    {"Default {USER ID}: %defaultUserId%"},
    {" "},
    {"Address Book Location: "},
    {"%addressBook%"},
    {" "},
    {"Current Selected Username and {USER ID}: "},
    {"%username%: %userId%", kSelected},
    {" "},
    {" "},
    {"Number of %fileType% Files Found: %files%"},
    {"%file%", kFound},
    {" "},
    {"End Of File"},
};

constexpr TemplateRow kPage[] = {
    {"<HTML>"},
    {"<HEAD>"},
    {"<STYLE>"},
    {"body {font-family: Arial;font-size: 10pt;}"},
    {"</STYLE>"},
    {"</HEAD>"},
    {"<BODY>"},
    {"<DIV><B>Quillbox Text File created: </B>%created%</DIV>"},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV><B>Number of Identities: </B>%identities%</DIV>"},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV><B>Identity Usernames</B></DIV>"},
    {"<DIV>        %username%</DIV>", kIdentities},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV><B>Paths to Identities:  </B></DIV>"},
    {"<DIV><I>%username%</I></DIV>", kIdentities},
    {"<DIV>%folder%</DIV>", kIdentities},
    {"<DIV>&nbsp;</DIV>", kIdentities},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV><B>Default {USER ID} Username: </B>%defaultUsername%</DIV>"},
    {"<DIV><B>Default {USER ID}: </B>%defaultUserId%</DIV>"},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV><B>Address Book Location: </B>"},
    {"%addressBook%</DIV>"},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV><B>Current Selected Username and {USER ID}: </B>"},
    {"%username%: %userId%</DIV>", kSelected},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV><B>Number of </B>%fileType%<B> Files Found: </B>%files% </DIV>"},
    {"<DIV>%file%</DIV>", kFound},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV><B>End Of File<B></DIV>"},
    {"</BODY>"},
    {"</HTML>"},
};

struct FileType {
  const char* pattern;
  const char* label;
};
constexpr FileType kFileTypes[] = {
    {"*.dbx", "Outlook Express 5 and 6 DBX"},
    {"*.mbx", "Outlook Express 4 MBX"},
    {"*.wab", "Address Book WAB"},
    {"*.wa~", "Address Book Backup WA~"},
};

std::string LabelOf(const std::string& fileType) {
  const auto found = std::find_if(std::begin(kFileTypes), std::end(kFileTypes),
                                  [&](const FileType& t) { return t.pattern == fileType; });
  return found == std::end(kFileTypes) ? std::string() : found->label;
}

ReportScope ScopeOf(const IdentityInfo& identity) {
  return {{{"username", identity.username}, {"folder", identity.FolderText()}, {"userId", identity.userId}}};
}

ReportScope ScopeOf(const IdentityReportFacts& facts) {
  const auto identities = [&facts](const auto& fill) {
    for (const IdentityInfo& identity : facts.identities) fill(ScopeOf(identity));
  };
  const auto selected = [&facts](const auto& fill) {
    for (const IdentityInfo& identity : facts.identities) {
      if (identity.FolderText() == facts.selectedFolder) fill(ScopeOf(identity));
    }
  };
  const auto found = [&facts](const auto& fill) {
    for (const std::string& file : facts.foundFiles) fill(ReportScope{{{"file", file}}});
  };
  return {{{"created", facts.created},
           {"identities", std::to_string(facts.identities.size())},
           {"defaultUsername", facts.defaultUsername},
           {"defaultUserId", facts.defaultUserId},
           {"addressBook", facts.addressBookFile.Text()},
           {"fileType", LabelOf(facts.fileType)},
           {"files", std::to_string(facts.foundFiles.size())}},
          {{kIdentities, identities}, {kSelected, selected}, {kFound, found}}};
}

}  // namespace

IdentityReportFacts FactsOf(const IdentityCatalogue& catalogue, std::string created) {
  return {.created = std::move(created),
          .identities = catalogue.identities,
          .defaultUsername = catalogue.defaultUsername,
          .defaultUserId = catalogue.defaultUserId,
          .addressBookFile = catalogue.addressBookFile,
          .selectedFolder = {},
          .fileType = {},
          .foundFiles = {}};
}

std::string MakeIdentityReport(const IdentityReportFacts& facts, ReportFormat format) {
  std::string report;
  const std::span<const TemplateRow> rows = format == ReportFormat::Text ? std::span<const TemplateRow>(kText) : kPage;
  AppendReport(report, rows, ScopeOf(facts));
  return report;
}

}  // namespace quillbox
