// SPDX-License-Identifier: GPL-3.0-or-later
#include "regedit/run.h"

#include <ostream>

#include "regedit/export.h"
#include "regedit/merge.h"
#include "regedit/outcome.h"
#include "text/error.h"

namespace quillbox {
namespace {

/// The file that is merged.
class FileSource : public ByteSource {
 public:
  FileSource(FileSystem& files, const WinPath& file)
      : files_(files), path_(file), before_(files.Stat(file)), reader_(files.OpenForReading(file)) {}

  std::optional<std::uint64_t> Size() const override { return before_ ? std::optional(before_->size) : std::nullopt; }
  std::size_t Read(std::span<char> buffer) override { return reader_->Read(buffer); }
  void GoBackTo(std::uint64_t offset) override { reader_->GoTo(offset); }

  /// Throws Error when the file is not what it was when it was opened.
  void RequireUnchanged() const {
    const std::optional<FileEntry> now = files_.Stat(path_);
    if (before_ && now && before_->size == now->size && before_->modified == now->modified) return;
    throw Error("merging a registry file", {path_.Text(), {}, {}},
                "another program changed it while it was read; nothing was merged");
  }

 private:
  FileSystem& files_;
  WinPath path_;
  std::optional<FileEntry> before_;
  std::unique_ptr<FileReader> reader_;
};

RegeditExit RunExport(Platform& platform, const RegeditCommand& command, const WinPath& file, std::ostream& out,
                      std::ostream& err) {
  const CodePage codePage(platform.GetSystemFacts().CodePageNumber());
  const std::unique_ptr<FileWriter> writer = platform.GetFiles().StartFile(file);
  const ExportedKeys result = ExportKey(platform.GetRegistry(), command.key, command.form, codePage,
                                        [&](std::string_view bytes) { writer->Write(bytes); });
  writer->Commit();
  err << FormNotice(result, command.file);
  if (!command.silent) out << ExportSummary(result, FullName(command.key), command.file);
  return RegeditExit::Done;
}

RegeditExit RunMerge(Platform& platform, const RegeditCommand& command, const WinPath& file, std::ostream& out,
                     std::ostream& err) {
  const CodePage codePage(platform.GetSystemFacts().CodePageNumber());
  FileSource source(platform.GetFiles(), file);
  const MergeReport report = MergeFile(platform.GetRegistry(), source, command.file, codePage);
  source.RequireUnchanged();
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
