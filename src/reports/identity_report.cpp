#include "reports/identity_report.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace quillbox {
namespace {

enum class For { Once, EachIdentity, EachSelectedIdentity, EachFoundFile };

/// Lines of a report, and what they are repeated for. Nothing in them is escaped for HTML: what they show is written
/// as it is.
struct Lines {
  const char* text;
  For repeated = For::Once;
};

constexpr Lines kText[] = {
    {"Peltrix Text File created: %created%\n"},
    {" \n"},
    {"Number of Identities: %identities%\n"},
    {"Identity Usernames\n"},
    {"        %username%\n", For::EachIdentity},
    {" \n"},
    {"Paths to Identities: \n"},
    {"%username%\n%folder%\n \n", For::EachIdentity},
    {" \n"},
    {"Default {USER ID} Username: %defaultUsername%\n"},
    {"Default {USER ID}: %defaultUserId%\n"},
    {" \n"},
    {"Address Book Location: \n"},
    {"%addressBook%\n"},
    {" \n"},
    {"Current Selected Username and {USER ID}: \n"},
    {"%username%: %userId%\n", For::EachSelectedIdentity},
    {" \n"},
    {" \n"},
    {"Number of %fileType% Files Found: %files%\n"},
    {"%file%\n", For::EachFoundFile},
    {" \n"},
    {"End Of File\n"},
};

constexpr Lines kPage[] = {
    {"<HTML>\n"},
    {"<HEAD>\n"},
    {"<STYLE>\n"},
    {"body {font-family: Arial;font-size: 10pt;}\n"},
    {"</STYLE>\n"},
    {"</HEAD>\n"},
    {"<BODY>\n"},
    {"<DIV><B>Quillbox Text File created: </B>%created%</DIV>\n"},
    {"<DIV>&nbsp;</DIV>\n"},
    {"<DIV><B>Number of Identities: </B>%identities%</DIV>\n"},
    {"<DIV>&nbsp;</DIV>\n"},
    {"<DIV><B>Identity Usernames</B></DIV>\n"},
    {"<DIV>        %username%</DIV>\n", For::EachIdentity},
    {"<DIV>&nbsp;</DIV>\n"},
    {"<DIV><B>Paths to Identities:  </B></DIV>\n"},
    {"<DIV><I>%username%</I></DIV>\n<DIV>%folder%</DIV>\n<DIV>&nbsp;</DIV>\n", For::EachIdentity},
    {"<DIV>&nbsp;</DIV>\n"},
    {"<DIV><B>Default {USER ID} Username: </B>%defaultUsername%</DIV>\n"},
    {"<DIV><B>Default {USER ID}: </B>%defaultUserId%</DIV>\n"},
    {"<DIV>&nbsp;</DIV>\n"},
    {"<DIV><B>Address Book Location: </B>\n"},
    {"%addressBook%</DIV>\n"},
    {"<DIV>&nbsp;</DIV>\n"},
    {"<DIV><B>Current Selected Username and {USER ID}: </B>\n"},
    {"%username%: %userId%</DIV>\n", For::EachSelectedIdentity},
    {"<DIV>&nbsp;</DIV>\n"},
    {"<DIV>&nbsp;</DIV>\n"},
    {"<DIV><B>Number of </B>%fileType%<B> Files Found: </B>%files% </DIV>\n"},
    {"<DIV>%file%</DIV>\n", For::EachFoundFile},
    {"<DIV>&nbsp;</DIV>\n"},
    {"<DIV><B>End Of File<B></DIV>\n"},
    {"</BODY>\n"},
    {"</HTML>\n"},
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

void AppendOnce(std::string& report, const char* text, const IdentityReportFacts& facts) {
  AppendLines(report, text,
              {{"created", facts.created},
               {"identities", std::to_string(facts.identities.size())},
               {"defaultUsername", facts.defaultUsername},
               {"defaultUserId", facts.defaultUserId},
               {"addressBook", facts.addressBookFile},
               {"fileType", LabelOf(facts.fileType)},
               {"files", std::to_string(facts.foundFiles.size())}});
}

void Append(std::string& report, const Lines& lines, const IdentityReportFacts& facts) {
  switch (lines.repeated) {
    case For::Once:
      return AppendOnce(report, lines.text, facts);
    case For::EachFoundFile:
      for (const std::string& file : facts.foundFiles) AppendLines(report, lines.text, {{"file", file}});
      return;
    case For::EachIdentity:
    case For::EachSelectedIdentity:
      for (const IdentityInfo& identity : facts.identities) {
        if (lines.repeated == For::EachSelectedIdentity && identity.FolderText() != facts.selectedFolder) continue;
        AppendLines(report, lines.text,
                    {{"username", identity.username}, {"folder", identity.FolderText()}, {"userId", identity.userId}});
      }
  }
}

}  // namespace

std::string MakeIdentityReport(const IdentityReportFacts& facts, ReportFormat format) {
  std::string report;
  const std::span<const Lines> lines = format == ReportFormat::Text ? std::span<const Lines>(kText) : kPage;
  for (const Lines& row : lines) Append(report, row, facts);
  return report;
}

}  // namespace quillbox
