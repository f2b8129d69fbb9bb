// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/opener.h"

#include <chrono>
#include <string_view>
#include <system_error>

#include "host/host_fault.h"
#include "host/host_paths.h"
#include "text/message_text.h"

namespace quillbox {

namespace {

/// From the program's folder to the manual's. The build knows it, since an installation decides it.
constexpr std::string_view kInstalledManual = QUILLBOX_MANUAL_FROM_PROGRAM;
constexpr std::string_view kManualBeside = "docs";
constexpr std::string_view kManualPage = "manual.html";

/// An opener that cannot do its work says so by its exit code, and soon.
constexpr std::chrono::seconds kSoon{1};

}  // namespace

/// A program that was started.
struct Opener::Child {
  std::unique_ptr<StartedProgram> program;
  bool isWatched = true;  ///< false when the opener is gone

  bool HasEnded() { return program->ExitCode().has_value(); }
};

Opener::Opener(Dialogs& dialogs, Log& log, std::string program)
    : dialogs_(dialogs), log_(log), program_(std::move(program)) {}

Opener::~Opener() {
  ReapEnded();
  for (const auto& child : started_) child->isWatched = false;
}

void Opener::OpenManual(const HostPath& page) {
  const std::string host = page.Text();
  if (Exists(page)) {
    return Open(host, {.text = "No browser could be started. On this computer the manual is:\n\n" + OneLine(host),
                       .icon = MessageIcon::Information});
  }
  log_.Write("the manual is not there: " + host);
  dialogs_.Show({.text = "The manual is not where this installation of Quillbox has it:\n\n" + OneLine(host),
                 .icon = MessageIcon::Exclamation});
}

void Opener::Open(const std::string& folderOrPage, const Message& failure) try {
  ReapEnded();
  const auto child = std::make_shared<Child>(Child{OpenForUser(program_, folderOrPage)});
  started_.push_back(child);
  const auto end = std::chrono::steady_clock::now() + kSoon;
  dialogs_.Meanwhile([this, child, end, folderOrPage, failure] {
    if (!child->isWatched) return false;
    if (!child->HasEnded()) return std::chrono::steady_clock::now() < end;
    const int exitCode = child->program->ExitCode().value_or(0);
    if (exitCode == 0) return false;
    log_.Write(program_ + " did not open " + folderOrPage + ": its exit code is " + std::to_string(exitCode));
    dialogs_.Show(failure);
    return false;
  });
} catch (const std::system_error& fault) {
  log_.Write(program_ + " could not be started: " + ReasonOf(fault.code()));
  dialogs_.Show(failure);
}

void Opener::ReapEnded() {
  std::erase_if(started_, [](const auto& child) { return child->HasEnded(); });
}

HostPath ManualOf(const HostPath& programFolder) {
  const HostPath beside = programFolder / kManualBeside / kManualPage;
  return Exists(beside) ? beside : (programFolder / kInstalledManual).Normal() / kManualPage;
}

}  // namespace quillbox
