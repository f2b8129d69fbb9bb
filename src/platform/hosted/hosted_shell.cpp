// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/hosted_shell.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "host/host_paths.h"
#include "host/host_program.h"
#include "platform/hosted/host_open.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr std::array kPageSchemes = {"http://", "https://"};

}  // namespace

HostedShell::HostedShell(HostedFiles& files, SystemFacts& facts, Dialogs& dialogs, Log& log, std::string opener,
                         std::unique_ptr<CopyIo> io)
    : files_(files),
      facts_(facts),
      dialogs_(dialogs),
      log_(log),
      opener_(dialogs, log, std::move(opener)),
      io_(std::move(io)) {}

HostedShell::~HostedShell() = default;

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
  opener_.Open(host, {.text = "No file manager could be started. On this computer the folder is:\n\n" + OneLine(host),
                      .icon = MessageIcon::Information});
}

void HostedShell::OpenUrl(const std::string& url) {
  const bool isPage = std::any_of(kPageSchemes.begin(), kPageSchemes.end(),
                                  [&](std::string_view scheme) { return StartsWithIgnoreCase(url, scheme); });
  if (isPage) {
    return opener_.Open(
        url, {.text = "No browser could be started. The page is:\n\n" + url, .icon = MessageIcon::Information});
  }
  log_.Write("the page was not opened: " + url);
  dialogs_.Show({.text = "This is not the address of a page:\n\n" + url, .icon = MessageIcon::Information});
}

void HostedShell::OpenManual() {
  opener_.OpenManual(ManualOf(ProgramFolder()));
}

}  // namespace quillbox
