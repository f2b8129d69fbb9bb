// SPDX-License-Identifier: GPL-3.0-or-later
// Opens folders, pages and the program's manual with the host's own programs, also where no disk is open. Failures are
// shown to the person.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/host_path.h"
#include "host/host_program.h"
#include "platform/dialogs.h"
#include "platform/platform.h"

namespace quillbox {

/// The manual's page: below the folder of the program, as where it was built and on Windows, else where an
/// installation has it.
HostPath ManualOf(const HostPath& programFolder);

class Opener {
 public:
  /// `dialogs` and `log` must outlive the opener. `program` is the host's program that opens a folder or a page given
  /// as its argument.
  Opener(Dialogs& dialogs, Log& log, std::string program = kSystemOpener);
  ~Opener();
  Opener(const Opener&) = delete;
  Opener& operator=(const Opener&) = delete;

  /// Starts the host's program detached from this one, which it outlives. Shows `failure` when it isn't there, and
  /// later when it has ended soon with an exit code that says so; the windows go on meanwhile.
  void Open(const std::string& folderOrPage, const Message& failure);
  /// Opens the manual's page in the person's browser, or says that it is not there.
  void OpenManual(const HostPath& page);

 private:
  struct Child;
  void ReapEnded();

  Dialogs& dialogs_;
  Log& log_;
  std::string program_;
  std::vector<std::shared_ptr<Child>> started_;
};

}  // namespace quillbox
