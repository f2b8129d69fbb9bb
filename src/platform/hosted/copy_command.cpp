// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/copy_command.h"

#include <array>
#include <cstdio>
#include <system_error>
#include <utility>

#include "platform/hosted/damaged_copy.h"
#include "platform/hosted/host_open.h"
#include "text/code_page.h"
#include "text/error.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {

using namespace std::chrono_literals;

namespace {

constexpr const char* kErrorTitle = "Error Copying File";
constexpr const char* kProgressTitle = "Copying...";
constexpr const char* kCancelled = "cancelled";
/// One that is read and one that is flushed, or two that are flushed.
constexpr std::size_t kMostInFlight = 2;
constexpr auto kShownEvery = 50ms;

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

std::string Hex(std::uint64_t offset) {
  std::array<char, 24> text = {};
  std::snprintf(text.data(), text.size(), "0x%llX", static_cast<unsigned long long>(offset));
  return text.data();
}

bool MayWriteIn(const HostPlace& folder) try {
  return OpenFolder(folder).MayWrite();
} catch (const std::system_error&) {
  return false;
}

/// Why a place is refused; nothing when it is only not there.
std::optional<std::string> RefusalOf(const PlaceResult& place) {
  if (place || place.Fault() == DiskFault::NoSuchDrive) return std::nullopt;
  return ReasonOf(place.Fault());
}

bool IsTargetFull(const CopyFault& fault) {
  return fault.End() == CopyFault::At::Target && IsFull(fault.Code());
}

}  // namespace

class CopyCommand::Watcher : public CopyWatcher {
 public:
  Watcher(CopyCommand& command, const Job& job) : command_(command), job_(job) {}
  bool OnProgress(std::uint64_t done, std::uint64_t total) override {
    if (command_.Report(job_.source.Name() + "  (" + Amount(done, total) + ")", done, total)) return true;
    command_.Stop(kCancelled);
    return false;
  }
  UnreadableAnswer OnUnreadable(std::uint64_t offset, const std::error_code& code) override {
    return command_.AskAboutDamage(job_, offset, code);
  }

 private:
  CopyCommand& command_;
  const Job& job_;
};

void CopyCommand::Copy(const CopyRequest& request) {
  results_.push_back({.source = files_.OnDrives().Absolute(request.source),
                      .target = {},
                      .end = CopyEnd::Failed,
                      .keptAs = {},
                      .reason = "it was not finished"});
  while (!flights_.empty() && (flights_.size() >= kMostInFlight || flights_.front().flush->EndsWithin(0ms))) {
    SettleFirst();
  }
  Job job = Plan(request, results_.size() - 1);
  if (MeetsFlight(job)) {
    SettleAll();
    job = Plan(request, job.result);
  }
  if (const auto reason = StopReason()) return End(job, CopyEnd::Cancelled, *reason);
  if (const auto fault = FaultOf(job)) return Fail(job, *fault);
  if (job.existing && !request.noConfirm && !MayReplace(job)) {
    return stepCancelled_ ? End(job, CopyEnd::Cancelled, kCancelled) : End(job, CopyEnd::NotReplaced);
  }
  Run(job);
}

const std::vector<CopyResult>& CopyCommand::Finish() {
  SettleAll();
  progress_.reset();
  return results_;
}

CopyCommand::Job CopyCommand::Plan(const CopyRequest& request, std::size_t result) {
  Job job;
  job.request = request;
  job.result = result;
  job.source = files_.OnDrives().Absolute(request.source);
  job.target = files_.OnDrives().Absolute(request.target);
  job.from = files_.OnDrives().PlaceOf(job.source);
  job.sourceEntry = files_.Stat(job.source);
  job.existing = files_.Stat(job.target);
  if (job.existing && job.existing->isDirectory) {
    job.target = job.target.Join(job.source.Name());
    job.existing = files_.Stat(job.target);
  }
  job.to = files_.OnDrives().PlaceOf(job.target, LastStep::NoLink);
  return job;
}

/// Why the copy cannot even be begun; nothing when it can.
std::optional<CopyCommand::Fault> CopyCommand::FaultOf(const Job& job) const {
  const auto file = [](const WinPath& path, std::string why) {
    return Fault{FaultKind::File, path.Text(), std::move(why)};
  };
  if (const auto refusal = RefusalOf(job.from)) return file(job.source, *refusal);
  if (!job.sourceEntry || !job.from) return file(job.source, "the file cannot be found");
  if (job.sourceEntry->isDirectory) return file(job.source, "it is a folder, not a file");
  if (const auto refusal = RefusalOf(job.to)) return file(job.target, *refusal);
  if (!job.to || job.to->IsRoot() || !IsFolder(job.to->Folder())) {
    return Fault{FaultKind::Place, job.target.Parent().Text(), "there is no such folder"};
  }
  if (IsFolder(*job.to)) return file(job.target, "a folder of that name is in the way");
  if (const auto fault = FileNameFault(job.target.Name())) {
    return file(job.target, "no file can have that name: " + fault->reason);
  }
  if (IsSameEntry(*job.from, *job.to)) return file(job.target, "the source and the target are the same file");
  return std::nullopt;
}

CopyCommand::Fault CopyCommand::FaultOf(const Job& job, const CopyFault& fault) const {
  if (fault.End() == CopyFault::At::Target) return TargetFault(job, fault.Code());
  return {FaultKind::File, job.source.Text(), fault.what()};
}

/// What keeps the user from writing anything to that place is not reported file by file.
CopyCommand::Fault CopyCommand::TargetFault(const Job& job, const std::error_code& code) const {
  const auto place = [](std::string about, std::string why) {
    return Fault{FaultKind::Place, std::move(about), std::move(why)};
  };
  if (code == std::errc::no_space_on_device) return place(job.target.Text(), "the disk is full");
  if (IsFull(code)) return place(job.target.Text(), "the space that you may use on the disk is full");
  if (code == std::errc::read_only_file_system) return place(job.target.Text(), "the disk is read-only");
  if (code == std::errc::io_error) return place(job.target.Text(), ReasonOf(code));
  if (ForbidsWriting(code) && !MayWriteIn(job.to->Folder())) {
    return place(job.target.Parent().Text(), "you may not write to the folder");
  }
  return {FaultKind::File, job.target.Text(), ReasonOf(code)};
}

bool CopyCommand::MayReplace(const Job& job) {
  if (yesToAll_) return true;
  progress_.reset();
  const OverwriteAnswer answer =
      dialogs_.AskOverwrite({job.source, job.target, job.sourceEntry->size, job.existing->size,
                             job.sourceEntry->modified, job.existing->modified});
  yesToAll_ = answer == OverwriteAnswer::YesToAll;
  stepCancelled_ = answer == OverwriteAnswer::Cancel;
  return answer == OverwriteAnswer::Yes || yesToAll_;
}

void CopyCommand::Run(const Job& job) {
  files_.Sweep(job.to->Folder());
  try {
    return Fill(job);
  } catch (const CopyFault& fault) {
    if (!IsTargetFull(fault) || flights_.empty()) return Fail(job, FaultOf(job, fault));
  }
  // The files on their way take the space of those that they replace, too, until they have their names.
  SettleAll();
  if (const auto reason = StopReason()) return End(job, CopyEnd::Cancelled, *reason);
  try {
    Fill(job);
  } catch (const CopyFault& fault) {
    Fail(job, FaultOf(job, fault));
  }
}

/// Throws CopyFault.
void CopyCommand::Fill(const Job& job) {
  Watcher watcher(*this, job);
  FilledFile filled =
      FillFromSource({[&] { return OpenForReading(*job.from); }, [&] { return io_.Create(*job.to); }}, io_, watcher);
  switch (filled.end) {
    case FilledFile::End::Stopped:
      return End(job, CopyEnd::Cancelled, StopReason().value_or(kCancelled));
    case FilledFile::End::LeftOut:
      log_.Write("left out: " + job.source.Text() + ": it cannot be read in full");
      return End(job, CopyEnd::LeftOut);
    case FilledFile::End::Filled:
      break;
  }
  if (!filled.unreadable.empty()) return KeepDamaged(job, std::move(filled));
  flights_.push_back({job, std::make_unique<CopyFlush>(std::move(filled.file), io_)});
}

/// True when the job reads or replaces a file that is still on its way.
bool CopyCommand::MeetsFlight(const Job& job) const {
  const auto meets = [](const PlaceResult& place, const HostPlace& target) {
    return place && !place->IsRoot() && EqualIgnoreCase(place->Name(), target.Name()) &&
           IsSameEntry(place->Folder(), target.Folder());
  };
  for (const Flight& flight : flights_) {
    if (meets(job.from, *flight.job.to) || meets(job.to, *flight.job.to)) return true;
  }
  return false;
}

void CopyCommand::SettleFirst() {
  const Flight flight = std::move(flights_.front());
  flights_.pop_front();
  const std::error_code code = Await(*flight.flush, flight.job.source.Name());
  if (code) {
    Fail(flight.job, TargetFault(flight.job, code));
  } else {
    End(flight.job, CopyEnd::Copied);
  }
}

void CopyCommand::SettleAll() {
  while (!flights_.empty()) SettleFirst();
}

/// A flush cannot be stopped: Cancel during it applies to the copies that follow.
std::error_code CopyCommand::Await(CopyFlush& flush, const std::string& name) {
  while (!flush.EndsWithin(kShownEvery)) {
    if (!Report(name + "  (waiting for the disk)", 0, 0)) Stop(kCancelled);
  }
  return flush.Result();
}

/// Gives what could be read a name of its own, with the list of what is missing beside it. A copy that an earlier
/// command has kept and that is not different is kept once.
void CopyCommand::KeepDamaged(Job job, FilledFile filled) {
  SettleAll();
  const WinPath folder = job.target.Parent();
  const std::string name = job.target.Name();
  for (unsigned number = 1;; ++number) {
    job.target = folder.Join(DamagedName(name, number));
    job.to = files_.OnDrives().PlaceOf(job.target, LastStep::NoLink);
    if (!job.to) throw CopyFault(CopyFault::At::Target, job.to.Fault());
    const bool taken = files_.Stat(job.target).has_value();
    const bool listed = files_.Stat(folder.Join(MissingListName(job.target.Name()))).has_value();
    const bool same = taken && HoldsTheSame(*filled.file, *job.to);
    if (!same && (taken || listed)) continue;
    if (!listed) WriteMissingList(job, filled);
    if (!same && !NameDamaged(job, std::move(filled.file))) return;
    break;
  }
  results_[job.result].keptAs = job.target.Name();
  log_.Write("kept damaged: " + job.source.Text() + " as " + job.target.Text() + "; " +
             std::to_string(LengthOf(filled.unreadable)) + " of " + std::to_string(filled.size) + " bytes are missing");
  End(job, CopyEnd::KeptDamaged);
}

/// False after the failure was reported; then the list goes too.
bool CopyCommand::NameDamaged(const Job& job, std::unique_ptr<NewFile> file) {
  file->SetName(job.to->Name());
  CopyFlush flush(std::move(file), io_);
  const std::error_code code = Await(flush, job.source.Name());
  if (!code) return true;
  // What failed may have been the flush of the folder, with the file in its place.
  if (!files_.Stat(job.target)) files_.DeleteFile(job.target.Parent().Join(MissingListName(job.target.Name())));
  Fail(job, TargetFault(job, code));
  return false;
}

void CopyCommand::WriteMissingList(const Job& job, const FilledFile& filled) {
  const std::string text = MissingList(job.target.Name(), job.source.Text(), filled.size, filled.unreadable);
  try {
    const WinPath path = job.target.Parent().Join(MissingListName(job.target.Name()));
    const auto list = io_.Create(files_.OnDrives().PlaceOf(path, LastStep::NoLink).OrThrow());
    io_.Write(*list, CodePage(facts_.CodePageNumber()).EncodeLossy(text));
    io_.Flush(*list);
    list->Commit();
  } catch (const std::system_error& failure) {
    throw CopyFault(CopyFault::At::Target, failure.code());
  }
}

UnreadableAnswer CopyCommand::AskAboutDamage(const Job& job, std::uint64_t offset, const std::error_code& code) {
  log_.Write("not readable: " + job.source.Text() + ", offset " + Hex(offset) + ": " + ReasonOf(code));
  if (damageAnswer_) return *damageAnswer_;
  progress_.reset();
  const MessageAnswer answer = dialogs_.Show(
      {.text = OneLine(job.source.Text()) + " cannot be read in full: " + ReasonOf(code) + " at offset " + Hex(offset) +
               ".\n\nDo you want to keep what can be read of such files? Each gets a name of its own, like \"" +
               DamagedName(job.target.Name(), 1) +
               "\", with zeros for what is missing and a list of it beside; a copy that is there already stays as it "
               "is. Or such files are left out.",
       .title = kErrorTitle,
       .buttons = MessageButtons::YesNoCancel,
       .icon = MessageIcon::Exclamation,
       .words = ButtonWords{"&Keep What Can Be Read", "&Leave Such Files Out"}});
  if (answer == MessageAnswer::Yes) damageAnswer_ = UnreadableAnswer::Keep;
  if (answer == MessageAnswer::No) damageAnswer_ = UnreadableAnswer::LeaveOut;
  stepCancelled_ = !damageAnswer_;
  return damageAnswer_.value_or(UnreadableAnswer::Cancel);
}

bool CopyCommand::Report(const std::string& text, std::uint64_t done, std::uint64_t total) {
  if (!progress_) progress_ = dialogs_.ShowProgress(kProgressTitle);
  return progress_->Update(text, done, total);
}

/// A failure of the only file is reported. Of several files, the first failure of each kind is a question; after
/// "go on" the others are logged, and counted at the end.
void CopyCommand::Fail(const Job& job, const Fault& fault) {
  log_.Write("copying failed: " + job.source.Text() + ": " + fault.about + ": " + fault.why);
  End(job, CopyEnd::Failed, fault.why);
  if (StopReason() || wentOn_.contains(fault.kind)) return;
  progress_.reset();
  Message message{
      .text = "Cannot copy " + OneLine(job.source.Name()) + ".\n\n" + OneLine(fault.about + ": " + fault.why) + ".",
      .title = kErrorTitle,
      .icon = MessageIcon::Exclamation};
  if (job.request.part == CopyPart::OneOfSeveral) {
    message.text += "\n\nDo you want to stop copying, or to go on with the other files?";
    message.buttons = MessageButtons::YesNo;
    message.words = ButtonWords{kGoOnCopying, "&Stop"};
    if (dialogs_.Show(message) == MessageAnswer::Yes) {
      wentOn_.insert(fault.kind);
    } else {
      Stop(fault.why);
    }
  } else {
    dialogs_.Show(message);
  }
}

void CopyCommand::Stop(const std::string& reason) {
  if (!stopReason_) stopReason_ = reason;
}

std::optional<std::string> CopyCommand::StopReason() const {
  return stepCancelled_ && !stopReason_ ? kCancelled : stopReason_;
}

void CopyCommand::End(const Job& job, CopyEnd end, std::string reason) {
  CopyResult& result = results_[job.result];
  result.target = job.target;
  result.size = job.sourceEntry ? job.sourceEntry->size : 0;
  result.end = end;
  result.reason = std::move(reason);
}

}  // namespace quillbox
