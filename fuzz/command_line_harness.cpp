// SPDX-License-Identifier: GPL-3.0-or-later
// The registry editor's command line in both of its ways: as one text, and as arguments with a line feed after each.
#include "harness.h"
#include "regedit/command_line.h"
#include "text/registry_path.h"

namespace quillbox {
namespace {

bool IsDone(const RegeditCommand& command) {
  if (command.file.empty()) return false;
  return command.action == RegeditAction::Merge || command.key.root != RegistryRoot::None;
}

void RequireWhole(const RegeditRequest& request) {
  Require(request.fault || IsDone(request.command), "a command without a fault names all that it needs");
  if (request.fault || request.command.action != RegeditAction::Export) return;
  Require(ParseRegistryPath(FullName(request.command.key)) == request.command.key, "a key's full name leads to it");
}

bool Same(const RegeditCommand& a, const RegeditCommand& b) {
  return a.action == b.action && a.silent == b.silent && a.form == b.form && a.file == b.file && a.key == b.key;
}

void RunCommandLine(ByteView input) {
  const std::string text = TextFrom(input);
  const RegeditRequest line = ParseCommandLine(text);
  RequireWhole(line);
  Require(!line.command.isHostFile, "a Windows command line names no host files");

  const RegeditRequest passed = ParseArguments({"--disk", "c", "--command-line", text});
  Require(passed.fault == line.fault, "a command line that is passed on has the same fault");
  Require(passed.fault.has_value() || Same(passed.command, line.command),
          "a command line that is passed on is the same");

  std::vector<std::string> arguments(1);
  for (const char c : text) {
    if (c == '\n') {
      arguments.emplace_back();
    } else {
      arguments.back() += c;
    }
  }
  const RegeditRequest byHand = ParseArguments(arguments);
  RequireWhole(byHand);
  Require(byHand.fault.has_value() || !byHand.disk.folder.empty(), "a command without a fault names a disk");
}

std::vector<Seed> CommandLineSeeds() {
  const auto seed = [](const char* name, std::string_view text) { return Seed{name, BytesFrom(text)}; };
  return {
      seed("export", R"(regedit /s /e:A "C:\Backup\Main Identity.reg"  "HKEY_CURRENT_USER\Software\Microsoft\WAB")"),
      seed("export-open-quote", R"(regedit.exe /e "C:\x.reg" "HKEY_CURRENT_USER\Identities\)"),
      seed("merge", R"(regedit /s /c "C:\My Mail\All.reg)"),
      seed("merge-plain", R"(regedit C:\My Mail\All.reg)"),
      seed("arguments", "--disk\nc\n--profile\nAnn\n--drive\nD=d\n/s\n/e:A\nout.reg\nhkcu\\Identities"),
      seed("passed-on", "--disk\nc\n--lock\n7\n--directory\nC:\\\n--command-line\nregedit /s C:\\a.reg"),
  };
}

}  // namespace

const Harness kCommandLineHarness = {"command_line", 1024, RunCommandLine, CommandLineSeeds};

}  // namespace quillbox
