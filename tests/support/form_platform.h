// SPDX-License-Identifier: GPL-3.0-or-later
// The little that windows of a test need of a platform: dialogs with queued answers, a log that is kept, and the end of
// commands counted. Asking for anything else throws.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "support/scripted_dialogs.h"
#include "support/test_log.h"

namespace quillbox {

struct FormPlatform : Platform {
  ScriptedDialogs dialogs;
  TestLog log;
  std::function<void()> onEndCommand;
  int commandsEnded = 0;

  Registry& GetRegistry() override { return Missing<Registry>(); }
  FileSystem& GetFiles() override { return Missing<FileSystem>(); }
  Drives& GetDrives() override { return Missing<Drives>(); }
  SystemFacts& GetSystemFacts() override { return Missing<SystemFacts>(); }
  Shell& GetShell() override { return Missing<Shell>(); }
  Processes& GetProcesses() override { return Missing<Processes>(); }
  Dialogs& GetDialogs() override { return dialogs; }
  Clock& GetClock() override { return Missing<Clock>(); }
  Guids& GetGuids() override { return Missing<Guids>(); }
  Clipboard& GetClipboard() override { return Missing<Clipboard>(); }
  Log& GetLog() override { return log; }
  ChosenFolders& GetChosenFolders() override { return Missing<ChosenFolders>(); }
  void EndCommand() override {
    ++commandsEnded;
    if (onEndCommand) onEndCommand();
  }
  std::string SystemDescription() override { return "test"; }

 private:
  template <class T>
  T& Missing() {
    throw std::logic_error("this test's platform has no such part");
  }
};

}  // namespace quillbox
