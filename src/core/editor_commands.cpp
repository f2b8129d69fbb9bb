// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/editor_commands.h"

#include <string_view>

namespace quillbox {
namespace {

/// The longest step of a file system's times: FAT's, of 2 seconds, as a FILETIME.
constexpr std::uint64_t kTimeStep = 20'000'000;

/// How an export's command line begins; empty for a Windows that exports nothing.
std::string_view ExportCommand(OsCode code) {
  if (code == OsCode::Unknown) return "";
  return IsNtFamily(code) ? "regedit /s /e:A \"" : "regedit /s /e \"";
}

std::string KeyArgument(const std::string& key, KeyForm form) {
  switch (form) {
    case KeyForm::Quoted:
      return "  \"" + key + "\"";
    case KeyForm::Plain:
      return "  " + key;
    case KeyForm::PlainAfterOneBlank:
      break;
  }
  return " " + key;
}

}  // namespace

std::optional<EditorFailure> EditorCommands::Export(const std::string& key, const WinPath& file, KeyForm form,
                                                    OsCode code) {
  const std::string_view command = ExportCommand(code);
  if (command.empty()) return std::nullopt;
  const std::optional<FileEntry> before = platform_.GetFiles().Stat(file);
  const std::uint64_t started = platform_.GetClock().Now();
  auto failure = Run(std::string(command) + file.Text() + "\"" + KeyArgument(key, form));
  if (failure || WasWritten(file, before, started)) return failure;
  return EditorFailure{"The registry editor did not write " + file.Text() + ", to which it was to export " + key + "."};
}

/// A file that was written anew may have the time of the older one where file systems count in steps.
bool EditorCommands::WasWritten(const WinPath& file, const std::optional<FileEntry>& before, std::uint64_t started) {
  const std::optional<FileEntry> after = platform_.GetFiles().Stat(file);
  if (!after || after->isDirectory) return false;
  const bool isOlder = before && before->modified == after->modified && after->modified + kTimeStep < started;
  return !isOlder;
}

// The quote stays open: it runs to the end of the command line.
std::optional<EditorFailure> EditorCommands::Merge(const WinPath& file) {
  auto failure = Run("regedit /s /c \"" + file.Text());
  if (failure || platform_.GetFiles().Stat(file)) return failure;
  return EditorFailure{"There is no file " + file.Text() + " to merge."};
}

std::optional<EditorFailure> EditorCommands::Run(const std::string& commandLine) {
  const ProcessEnd end = platform_.GetProcesses().RunAndWait(commandLine, ShowStyle::MinimisedWithFocus);
  if (!end.started) return EditorFailure{"The registry editor could not be started."};
  if (end.exitCode == 0) return std::nullopt;
  if (!end.errors.empty()) return EditorFailure{end.errors};
  return EditorFailure{"The registry editor ended with code " + std::to_string(end.exitCode) + ": " + commandLine};
}

}  // namespace quillbox
