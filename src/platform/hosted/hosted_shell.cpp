// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/hosted_shell.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>
#include <system_error>

#include "host/host_program.h"
#include "platform/hosted/host_open.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr std::array kPageSchemes = {"http://", "https://"};
/// An opener that cannot do its work says so by its exit code, and soon.
constexpr std::chrono::seconds kSoon{1};

}  // namespace

/// An opener that was started.
struct HostedShell::Child {
  std::unique_ptr<StartedProgram> program;
  bool isWatched = true;  ///< false when the shell is gone

  bool HasEnded() { return program->ExitCode().has_value(); }
};

HostedShell::HostedShell(HostedFiles& files, SystemFacts& facts, Dialogs& dialogs, Log& log, std::string opener,
                         std::unique_ptr<CopyIo> io)
    : files_(files), facts_(facts), dialogs_(dialogs), log_(log), opener_(std::move(opener)), io_(std::move(io)) {}

HostedShell::~HostedShell() {
  ReapEnded();
  for (const auto& child : started_) child->isWatched = false;
}

void HostedShell::BeginCopyStep() {
  if (copies_) copies_->BeginStep();
}

void HostedShell::CopyFile(const CopyRequest& request) {
  if (!copies_) copies_.emplace(files_, facts_, dialogs_, log_, *io_);
  copies_->Copy(request);
}

std::vector<CopyResult> HostedShell::FinishCopies() {
  return copies_ ? copies_->Finish() : std::vector<CopyResult>();
}

void HostedShell::EndCommand() {
  if (copies_) copies_->Finish();
  copies_.reset();
}

void HostedShell::Explore(const WinPath& folder, const std::string& parameters) {
  const PlaceResult place = folder.Empty() ? PlaceResult(DiskFault::NoSuchDrive) : files_.OnDrives().PlaceOf(folder);
  if (!place || !IsFolder(*place)) {
    dialogs_.Show({"The path '" + OneLine(folder.Text()) + "' does not exist or is not a directory.", kProgramName,
                   MessageButtons::Ok, MessageIcon::Error});
    return;
  }
  ShowFolder(place->Path(), parameters);
}

void HostedShell::ShowFolder(const HostPath& folder, const std::string& /*parameters*/) {
  const std::string host = folder.Text();
  Start(host, {.text = "No file manager could be started. On this computer the folder is:\n\n" + OneLine(host),
               .icon = MessageIcon::Information});
}

void HostedShell::OpenUrl(const std::string& url) {
  const bool isPage = std::any_of(kPageSchemes.begin(), kPageSchemes.end(),
                                  [&](std::string_view scheme) { return StartsWithIgnoreCase(url, scheme); });
  if (isPage) {
    return Start(url,
                 {.text = "No browser could be started. The page is:\n\n" + url, .icon = MessageIcon::Information});
  }
  log_.Write("the page was not opened: " + url);
  dialogs_.Show({.text = "This is not the address of a page:\n\n" + url, .icon = MessageIcon::Information});
}

/// Starts the opener detached from this program, which it outlives. Shows `failure` when it isn't there, and later when
/// it has ended soon with an exit code that says so; the windows go on meanwhile.
void HostedShell::Start(const std::string& argument, const Message& failure) try {
  ReapEnded();
  const auto child = std::make_shared<Child>(Child{OpenForUser(opener_, argument)});
  started_.push_back(child);
  const auto end = std::chrono::steady_clock::now() + kSoon;
  dialogs_.Meanwhile([this, child, end, argument, failure] {
    if (!child->isWatched) return false;
    if (!child->HasEnded()) return std::chrono::steady_clock::now() < end;
    const int exitCode = child->program->ExitCode().value_or(0);
    if (exitCode == 0) return false;
    log_.Write(opener_ + " did not open " + argument + ": its exit code is " + std::to_string(exitCode));
    dialogs_.Show(failure);
    return false;
  });
} catch (const std::system_error& fault) {
  log_.Write(opener_ + " could not be started: " + ReasonOf(fault.code()));
  dialogs_.Show(failure);
}

void HostedShell::ReapEnded() {
  std::erase_if(started_, [](const auto& child) { return child->HasEnded(); });
}

}  // namespace quillbox
