// SPDX-License-Identifier: GPL-3.0-or-later
// "report": the report of the identities with the files of their stores, and those of their rules beside it.
#include "cli/commands.h"
#include "core/message_store.h"
#include "host/host_paths.h"
#include "reports/general_date.h"
#include "reports/identity_report.h"
#include "reports/rules_report.h"
#include "text/error.h"

namespace quillbox {
namespace {

class ReportCommand {
 public:
  ReportCommand(Console& console, OpenedDisk& disk, const CommandArguments& arguments)
      : console_(console), disk_(disk), arguments_(arguments) {}

  void WriteIdentities() {
    IdentityReportFacts facts = FactsOf(disk_.session.Catalogue(), created_);
    facts.fileType = "*.dbx";
    for (const IdentityInfo& identity : facts.identities) {
      if (!identity.storeFolder) continue;
      const auto store = FindStore(disk_.session.store, disk_.platform, identity.userId);
      if (const auto* fault = std::get_if<StoreFault>(&store)) {
        console_.NotDone("the files of \"" + identity.username + "\" are not in the report: " + fault->clause);
        continue;
      }
      const WinPath& folder = std::get<WinPath>(store);
      for (const std::string& name : FilesLike(disk_.platform.GetFiles(), folder.Join("*.dbx"))) {
        facts.foundFiles.push_back(folder.Join(name).Text());
      }
    }
    Write(GivenPath(arguments_.to), MakeIdentityReport(facts, Format()));
  }

  void WriteRules(RuleSet set, const char* words) {
    RuleReader reader(disk_.session.store, set, CodePage(disk_.platform.GetSystemFacts().CodePageNumber()));
    for (const IdentityInfo& identity : disk_.session.Catalogue().identities) {
      if (reader.EnumRules(identity.userId).empty()) continue;
      const RulesReport report = MakeRulesReport(reader, identity.userId, created_, Format());
      const HostPath file = Beside(words, identity);
      Write(file, report.text);
      if (report.brokenOff) console_.NotDone(file.Text() + " ends early. " + *report.brokenOff);
    }
  }

 private:
  ReportFormat Format() const { return arguments_.html ? ReportFormat::Html : ReportFormat::Text; }

  /// "out.txt" has "out - Mail Rules {USER_ID}.txt" beside it.
  HostPath Beside(const std::string& words, const IdentityInfo& identity) const {
    const HostPath file = GivenPath(arguments_.to);
    const std::string name = file.Name();
    const std::size_t dot = name.rfind('.') == std::string::npos ? name.size() : name.rfind('.');
    return file.Parent().Join(name.substr(0, dot) + " - " + words + " " + identity.userId + name.substr(dot));
  }

  void Write(const HostPath& file, const std::string& text) try {
    if (!arguments_.overwrite && Exists(file)) {
      return console_.NotDone(file.Text() + " is there already; --overwrite replaces it");
    }
    WriteReport(disk_.platform.GetFiles(), disk_.platform.GetSystemFacts(), disk_.PathOf(file), text);
    console_.Result(file.Text());
  } catch (const Error& error) {
    console_.NotDone(Describe(error));
  }

  Console& console_;
  OpenedDisk& disk_;
  const CommandArguments& arguments_;
  std::string created_ = GeneralDate(disk_.session.store, disk_.platform.GetClock().Now());
};

}  // namespace

CliExit RunReport(Console& console, const CommandArguments& arguments) {
  OpenedDisk disk(console, arguments.disk, OpenedDisk::Use::Look);
  ReportCommand report(console, disk, arguments);
  report.WriteIdentities();
  if (arguments.rules) {
    report.WriteRules(RuleSet::Mail, "Mail Rules");
    report.WriteRules(RuleSet::News, "News Rules");
  }
  return console.End();
}

}  // namespace quillbox
