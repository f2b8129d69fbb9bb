// SPDX-License-Identifier: GPL-3.0-or-later
// usage: fault_window FOLDER STATE COMMAND
// The program without its display, for tests that let its calls fail: opens the disk that was made in FOLDER (with the
// drives C and D), gives COMMAND, and prints what a person would then see, one text a line. Says yes to every question.
#include <cstdio>
#include <exception>
#include <string>

#include "support/sample_platform.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

struct AgreeingDialogs : ScriptedDialogs {
  MessageAnswer Show(const Message& message) override {
    messages.push_back(message);
    const bool asks = message.buttons == MessageButtons::YesNo || message.buttons == MessageButtons::YesNoCancel;
    return asks ? MessageAnswer::Yes : MessageAnswer::Ok;
  }
  std::optional<WinPath> OpenFile(const FileDialog&) override { return WinPath("D:\\Backup\\Ann Miller.wab"); }
  OverwriteAnswer AskOverwrite(const OverwriteQuestion&) override { return OverwriteAnswer::YesToAll; }
};

void Print(const char* what, std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::printf("%s: %s\n", what, text.c_str());
}

bool Give(ProgramWindows& windows, const std::string& command) {
  Form1& form = windows.form1;
  if (command == "prepare") {
    form.chkOverwrite.click();
    form.cmdComplete.click();
  } else if (command == "quick-backup") {
    form.cmbUserNames.pick("Main Identity");
    form.cmdQuickBackup.click();
  } else if (command == "restore") {
    form.cmdRestore.click();
  } else {
    return false;
  }
  return true;
}

int Run(const std::filesystem::path& folder, const std::filesystem::path& state, const std::string& command) {
  AgreeingDialogs dialogs;
  OfflinePlatform platform({.folder = folder / "C",
                            .profile = "Ann Miller",
                            .drives = {{'D', folder / "D"}},
                            .stateFolder = state,
                            .registryEditor = HostPath(QUILLBOX_BIN_DIR "/regedit")},
                           dialogs);
  for (const std::string& warning : platform.Warnings()) Print("message", warning);
  ProgramWindows windows(platform);
  if (command == "prepare") windows.session.backupFolder.Choose(WinPath("D:\\Backup"));
  windows.form1.Open();
  if (!Give(windows, command)) return 2;
  for (const Message& message : dialogs.messages) Print("message", message.text);
  Print("done", windows.form1.sb1.panels[0]);
  Print("note", windows.form1.sb1.panels[1]);
  return 0;
}

}  // namespace
}  // namespace quillbox

int main(int count, char** arguments) {
  if (count != 4) return 2;
  try {
    return quillbox::Run(arguments[1], arguments[2], arguments[3]);
  } catch (const std::exception& error) {
    quillbox::Print("message", error.what());
    return 1;
  }
}
