// SPDX-License-Identifier: GPL-3.0-or-later
// What the program needs of an operating system, in one bundle. Nothing above this layer names an implementation.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "platform/chosen_folders.h"
#include "platform/copy_result.h"
#include "platform/dialogs.h"
#include "platform/drives.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/system_facts.h"

namespace quillbox {

/// The shell: copies files and shows folders and pages. It reports its failures to the user itself.
class Shell {
 public:
  virtual ~Shell() = default;
  /// Opens a folder in the file manager; `parameters` are the platform's ("/n,/e,/select name").
  virtual void Explore(const WinPath& folder, const std::string& parameters) = 0;
  /// Opens a page in the person's browser.
  virtual void OpenUrl(const std::string& url) = 0;
  /// Opens the program's manual in the person's browser.
  virtual void OpenManual() = 0;
  /// The copies that follow are another step of the running command (the address book, one identity's files): Cancel of
  /// a question in the step before does not hold for it. "Yes to All" does, and so does Cancel of the progress display.
  virtual void BeginCopyStep() = 0;
  /// Begins to copy one file: whole or not at all, times kept. Asks before it replaces a file unless the request
  /// says otherwise; an answer about more than one file holds until the running command ends. The bytes may
  /// still be on their way to the disk when this returns, and the file has its name only when they are there.
  virtual void CopyFile(const CopyRequest& request) = 0;
  /// Waits until every copy is on the disk or has failed, and takes the progress display away; called before a message,
  /// too. The results of all copies of the running command, in the order of the requests.
  virtual std::vector<CopyResult> FinishCopies() = 0;
};

enum class ShowStyle { Normal = 1, MinimisedWithFocus = 2 };

/// The end of a process that was waited for.
struct ProcessEnd {
  bool started = false;  ///< false: the rest means nothing
  int exitCode = 0;
  std::string errors;  ///< what it wrote to standard error, where the platform knows
};

class Processes {
 public:
  virtual ~Processes() = default;
  /// Starts a command line in the current directory and returns when the process has ended. Registry changes so far
  /// are on the disk before it starts, and what it changed is seen afterwards.
  virtual ProcessEnd RunAndWait(const std::string& commandLine, ShowStyle style) = 0;
};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual std::uint64_t Now() = 0;  ///< FILETIME
};

class Guids {
 public:
  virtual ~Guids() = default;
  /// A new GUID as 38 characters in braces, upper case; empty when none could be made.
  virtual std::string Create() = 0;
};

class Clipboard {
 public:
  virtual ~Clipboard() = default;
  virtual void Clear() = 0;
};

/// For what a window does not show.
class Log {
 public:
  virtual ~Log() = default;
  virtual void Write(std::string_view text) = 0;
};

struct Platform {
  virtual ~Platform() = default;
  virtual Registry& GetRegistry() = 0;
  virtual FileSystem& GetFiles() = 0;
  virtual Drives& GetDrives() = 0;
  virtual SystemFacts& GetSystemFacts() = 0;
  virtual Shell& GetShell() = 0;
  virtual Processes& GetProcesses() = 0;
  virtual Dialogs& GetDialogs() = 0;
  virtual Clock& GetClock() = 0;
  virtual Guids& GetGuids() = 0;
  virtual Clipboard& GetClipboard() = 0;
  virtual Log& GetLog() = 0;
  virtual ChosenFolders& GetChosenFolders() = 0;

  /// Ends a command of the person: copies and registry changes reach the disk, and answers that held for the whole
  /// command ("Yes to All") are forgotten. Throws Error when registry changes could not be written; they stay in memory
  /// and are tried again at the next end.
  virtual void EndCommand() = 0;
  /// One line on the system that is being worked on, for the window's title: the disk's folder and profile.
  virtual std::string SystemDescription() = 0;
  /// A sentence on the keys below `roots` whose changes do not reach the disk because it is write-protected; empty when
  /// all of them do.
  virtual std::string WriteProtection(std::initializer_list<RegistryRoot> /*roots*/) { return {}; }
};

}  // namespace quillbox
