#include "platform/offline/offline_shell.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/offline/file_copy.h"
#include "platform/offline/host_file.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr const char* kCopyErrorTitle = "Error Copying File";
constexpr const char* kProgressTitle = "Copying...";
constexpr std::array kPageSchemes = {"http://", "https://"};

/// "3.1 of 10.0 MB", "12 of 40 KB".
std::string Amount(std::uint64_t done, std::uint64_t total) {
  constexpr double kKilo = 1024;
  constexpr double kMega = kKilo * kKilo;
  const bool large = static_cast<double>(total) >= kMega;
  std::array<char, 64> text = {};
  const auto scaled = [unit = large ? kMega : kKilo](std::uint64_t bytes) { return static_cast<double>(bytes) / unit; };
  std::snprintf(text.data(), text.size(), large ? "%.1f of %.1f MB" : "%.0f of %.0f KB", scaled(done), scaled(total));
  return text.data();
}

/// Why a place is refused, as a sentence's end; nothing when it is only not there.
std::optional<std::string> RefusalOf(const PlaceResult& place) {
  if (place || place.Fault() == HostFault::NoSuchDrive) return std::nullopt;
  return ReasonOf(place.Fault()) + ".";
}

}  // namespace

/// Both ends of a copy, with what is known of them.
struct OfflineShell::Copy {
  WinPath source, target;  ///< absolute
  PlaceResult from = HostFault::NoSuchDrive, to = HostFault::NoSuchDrive;
  std::optional<FileEntry> sourceEntry;
};

OfflineShell::OfflineShell(OfflineFiles& files, Dialogs& dialogs, Log& log, std::string opener)
    : files_(files), dialogs_(dialogs), log_(log), opener_(std::move(opener)) {}

OfflineShell::~OfflineShell() {
  ReapEnded();
}

void OfflineShell::EndCommand() {
  swept_.clear();
  yesToAll_ = false;
  cancelled_ = false;
  progress_.reset();
}

bool OfflineShell::CopyFile(const WinPath& source, const WinPath& target, bool noConfirm) {
  if (cancelled_) return false;
  Copy copy;
  copy.source = files_.Absolute(source);
  copy.target = files_.Absolute(target);
  copy.from = files_.PlaceOf(copy.source);
  copy.sourceEntry = files_.Stat(copy.source);
  std::optional<FileEntry> existing = files_.Stat(copy.target);
  if (existing && existing->isDirectory) {
    copy.target = copy.target.Join(copy.source.Name());
    existing = files_.Stat(copy.target);
  }
  copy.to = files_.PlaceOf(copy.target, LastStep::NoLink);

  if (const std::string fault = FaultOf(copy); !fault.empty()) {
    ShowCopyError(copy.source.Name(), fault);
    return false;
  }
  if (existing && !noConfirm && !MayReplace(copy, *existing)) return false;
  return Run(copy);
}

/// Why the copy cannot even be begun; empty when it can.
std::string OfflineShell::FaultOf(const Copy& copy) const {
  if (const auto refusal = RefusalOf(copy.from)) return copy.source.Text() + ": " + *refusal;
  if (!copy.sourceEntry) return copy.source.Text() + ": the file cannot be found.";
  if (copy.sourceEntry->isDirectory) return copy.source.Text() + ": it is a folder, not a file.";
  if (const auto refusal = RefusalOf(copy.to)) return copy.target.Text() + ": " + *refusal;
  const WinPath folder = copy.target.Parent();
  if (!copy.to || copy.to->IsRoot() || !IsFolder(copy.to->Folder()))
    return folder.Text() + ": there is no such folder.";
  if (IsFolder(*copy.to)) return copy.target.Text() + ": a folder of that name is in the way.";
  const std::string nameFault = FileNameFault(copy.target.Name());
  return nameFault.empty() ? nameFault : copy.target.Text() + ": no file can have that name: " + nameFault + ".";
}

bool OfflineShell::MayReplace(const Copy& copy, const FileEntry& existing) {
  if (yesToAll_) return true;
  progress_.reset();
  const OverwriteAnswer answer = dialogs_.AskOverwrite(
      {copy.source, copy.target, copy.sourceEntry->size, existing.size, copy.sourceEntry->modified, existing.modified});
  yesToAll_ = answer == OverwriteAnswer::YesToAll;
  cancelled_ = answer == OverwriteAnswer::Cancel;
  return answer == OverwriteAnswer::Yes || yesToAll_;
}

bool OfflineShell::Run(const Copy& copy) {
  const HostPlace folder = copy.to->Folder();
  if (swept_.insert(folder.Path()).second) RemoveAbandonedFiles(folder);
  try {
    return CopyWholeFile({*copy.from, copy.source.Text()}, {*copy.to, copy.target.Text()},
                         [&](std::uint64_t done, std::uint64_t total) { return Report(copy, done, total); });
  } catch (const Error& error) {
    ShowCopyError(copy.source.Name(), error.Place().name + ": " + error.Why() + ".");
    return false;
  }
}

bool OfflineShell::Report(const Copy& copy, std::uint64_t done, std::uint64_t total) {
  if (!progress_) progress_ = dialogs_.ShowProgress(kProgressTitle);
  cancelled_ = !progress_->Update(copy.source.Name() + "  (" + Amount(done, total) + ")", done, total);
  return !cancelled_;
}

void OfflineShell::ShowCopyError(const std::string& name, const std::string& why) {
  progress_.reset();
  log_.Write("copying failed: " + why);
  dialogs_.Show({"Cannot copy " + name + ".\n\n" + why, kCopyErrorTitle, MessageButtons::Ok, MessageIcon::Exclamation});
}

void OfflineShell::Explore(const std::string& folder, const std::string& /*parameters*/) {
  const PlaceResult place = folder.empty() ? PlaceResult(HostFault::NoSuchDrive) : files_.PlaceOf(WinPath(folder));
  if (!place || !IsFolder(*place)) {
    dialogs_.Show({"The path '" + folder + "' does not exist or is not a directory.", kProgramName, MessageButtons::Ok,
                   MessageIcon::Error});
    return;
  }
  const std::string host = place->Path().string();
  if (Start(host)) return;
  dialogs_.Show({"No file manager could be started. On this computer the folder is:\n\n" + host, kProgramName,
                 MessageButtons::Ok, MessageIcon::Information});
}

void OfflineShell::OpenUrl(const std::string& url) {
  const bool isPage = std::any_of(kPageSchemes.begin(), kPageSchemes.end(),
                                  [&](std::string_view scheme) { return StartsWithIgnoreCase(url, scheme); });
  if (isPage && Start(url)) return;
  log_.Write("the page was not opened: " + url);
  dialogs_.Show(
      {isPage ? "No browser could be started. The page is:\n\n" + url : "This is no address of a page:\n\n" + url,
       kProgramName, MessageButtons::Ok, MessageIcon::Information});
}

/// Starts the opener detached from this program, which it outlives. False when it isn't there.
bool OfflineShell::Start(const std::string& argument) {
  ReapEnded();
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
  std::string program = opener_;
  std::string copy = argument;
  std::array<char*, 3> arguments = {program.data(), copy.data(), nullptr};
  pid_t child = 0;
  const int code = posix_spawnp(&child, opener_.c_str(), nullptr, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  if (code != 0) {
    log_.Write(opener_ + " could not be started: " + SystemReason(code));
    return false;
  }
  started_.push_back(child);
  return true;
}

void OfflineShell::ReapEnded() {
  std::erase_if(started_, [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; });
}

}  // namespace quillbox
