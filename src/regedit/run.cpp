#include "regedit/run.h"

#include <ostream>

#include "regedit/export.h"
#include "regedit/merge.h"
#include "regedit/outcome.h"
#include "text/error.h"

namespace quillbox {
namespace {

RegeditExit RunExport(Platform& platform, const RegeditCommand& command, const WinPath& file, std::ostream& out,
                      std::ostream& err) {
  const CodePage codePage(platform.GetFiles().CodePageNumber());
  const ExportResult result = ExportKey(platform.GetRegistry(), command.key, command.form, codePage);
  platform.GetFiles().WriteFile(file, result.bytes);
  err << FormNotice(result, command.file);
  if (!command.silent) out << ExportSummary(result, FullName(command.key), command.file);
  return RegeditExit::Done;
}

RegeditExit RunMerge(Platform& platform, const RegeditCommand& command, const WinPath& file, std::ostream& out,
                     std::ostream& err) {
  const CodePage codePage(platform.GetFiles().CodePageNumber());
  const std::string bytes = platform.GetFiles().ReadFile(file);
  const MergeReport report = MergeFile(platform.GetRegistry(), bytes, command.file, codePage);
  err << ProblemLines(report, command.file);
  platform.EndCommand();
  if (!command.silent) out << MergeSummary(report, command.file);
  return report.problemCount == 0 ? RegeditExit::Done : RegeditExit::Failed;
}

}  // namespace

RegeditExit RunRegedit(Platform& platform, const RegeditCommand& command, const WinPath& file, std::ostream& out,
                       std::ostream& err) {
  const auto run = command.action == RegeditAction::Export ? RunExport : RunMerge;
  try {
    return run(platform, command, file, out, err);
  } catch (const Error& error) {
    if (error.Place().name != file.Text()) throw;
    throw Error(error.Doing(), {command.file, error.Place().offset, error.Place().line}, error.Why());
  }
}

}  // namespace quillbox
