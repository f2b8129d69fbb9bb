#include "core/editor_commands.h"

#include <string_view>

namespace quillbox {
namespace {

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
  return Run(std::string(command) + file.Text() + "\"" + KeyArgument(key, form));
}

// The quote stays open: it runs to the end of the command line.
std::optional<EditorFailure> EditorCommands::Merge(const WinPath& file) {
  return Run("regedit /s /c \"" + file.Text());
}

std::optional<EditorFailure> EditorCommands::Run(const std::string& commandLine) {
  const ProcessEnd end = processes_.RunAndWait(commandLine, ShowStyle::MinimisedWithFocus);
  if (!end.started) return EditorFailure{"The registry editor could not be started."};
  if (end.exitCode == 0) return std::nullopt;
  if (!end.errors.empty()) return EditorFailure{end.errors};
  return EditorFailure{"The registry editor ended with code " + std::to_string(end.exitCode) + ": " + commandLine};
}

}  // namespace quillbox
