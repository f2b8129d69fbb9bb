#include "platform/offline/offline_shell.h"

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "platform/offline/host_program.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr std::array kPageSchemes = {"http://", "https://"};

}  // namespace

OfflineShell::OfflineShell(OfflineFiles& files, SystemFacts& facts, Dialogs& dialogs, Log& log, std::string opener,
                           std::unique_ptr<CopyIo> io)
    : files_(files), facts_(facts), dialogs_(dialogs), log_(log), opener_(std::move(opener)), io_(std::move(io)) {}

OfflineShell::~OfflineShell() {
  ReapEnded();
}

void OfflineShell::BeginCopyStep() {
  if (copies_) copies_->BeginStep();
}

void OfflineShell::CopyFile(const CopyRequest& request) {
  if (!copies_) copies_.emplace(files_, facts_, dialogs_, log_, *io_);
  copies_->Copy(request);
}

std::vector<CopyResult> OfflineShell::FinishCopies() {
  return copies_ ? copies_->Finish() : std::vector<CopyResult>();
}

void OfflineShell::EndCommand() {
  if (copies_) copies_->Finish();
  copies_.reset();
}

void OfflineShell::Explore(const WinPath& folder, const std::string& /*parameters*/) {
  const PlaceResult place = folder.Empty() ? PlaceResult(HostFault::NoSuchDrive) : files_.OnDrives().PlaceOf(folder);
  if (!place || !IsFolder(*place)) {
    dialogs_.Show({"The path '" + OneLine(folder.Text()) + "' does not exist or is not a directory.", kProgramName,
                   MessageButtons::Ok, MessageIcon::Error});
    return;
  }
  const std::string host = place->Path().string();
  if (Start(host)) return;
  dialogs_.Show({"No file manager could be started. On this computer the folder is:\n\n" + OneLine(host), kProgramName,
                 MessageButtons::Ok, MessageIcon::Information});
}

void OfflineShell::OpenUrl(const std::string& url) {
  const bool isPage = std::any_of(kPageSchemes.begin(), kPageSchemes.end(),
                                  [&](std::string_view scheme) { return StartsWithIgnoreCase(url, scheme); });
  if (isPage && Start(url)) return;
  log_.Write("the page was not opened: " + url);
  dialogs_.Show(
      {isPage ? "No browser could be started. The page is:\n\n" + url : "This is not the address of a page:\n\n" + url,
       kProgramName, MessageButtons::Ok, MessageIcon::Information});
}

/// Starts the opener detached from this program, which it outlives. False when it isn't there.
bool OfflineShell::Start(const std::string& argument) try {
  ReapEnded();
  started_.push_back(StartProgram({.program = opener_, .arguments = {argument}, .ownSession = true}));
  return true;
} catch (const std::system_error& failure) {
  log_.Write(opener_ + " could not be started: " + ReasonOf(failure.code()));
  return false;
}

void OfflineShell::ReapEnded() {
  std::erase_if(started_, [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; });
}

}  // namespace quillbox
