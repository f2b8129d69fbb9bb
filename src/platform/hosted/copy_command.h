// SPDX-License-Identifier: GPL-3.0-or-later
// The copies of one command: answers that hold for all of them, progress, and the result of each.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/copy_result.h"
#include "platform/hosted/copy_flush.h"
#include "platform/hosted/copy_io.h"
#include "platform/hosted/file_copy.h"
#include "platform/hosted/hosted_files.h"
#include "platform/platform.h"

namespace quillbox {

/// The button that goes on with the other files after a failure, for those who answer by a rule.
inline constexpr const char* kGoOnCopying = "&Go On";

/// While a file is flushed to the disk by a thread of its own, the next one is read. Everything else, questions, log
/// and what is counted, happens on the calling thread.
class CopyCommand {
 public:
  /// All must outlive the command.
  CopyCommand(HostedFiles& files, SystemFacts& facts, Dialogs& dialogs, Log& log, CopyIo& io)
      : files_(files), facts_(facts), dialogs_(dialogs), log_(log), io_(io) {}
  CopyCommand(const CopyCommand&) = delete;
  CopyCommand& operator=(const CopyCommand&) = delete;

  /// Forgets that a question of the step before was cancelled.
  void BeginStep() { stepCancelled_ = false; }
  void Copy(const CopyRequest& request);
  /// Waits for all copies; the result of each, in order.
  const std::vector<CopyResult>& Finish();

 private:
  /// Both ends of one copy, with what is known of them.
  struct Job {
    CopyRequest request;
    std::size_t result;      ///< its position in results_
    WinPath source, target;  ///< absolute
    PlaceResult from = DiskFault::NoSuchDrive, to = DiskFault::NoSuchDrive;
    std::optional<FileEntry> sourceEntry, existing;
  };
  struct Flight {
    Job job;
    std::unique_ptr<CopyFlush> flush;
  };
  enum class FaultKind { File, Place };  ///< about one file, or about the place of all that go there
  struct Fault {
    FaultKind kind;
    std::string about;
    std::string why;  ///< a clause
  };
  class Watcher;

  Job Plan(const CopyRequest& request, std::size_t result);
  std::optional<Fault> FaultOf(const Job& job) const;
  Fault FaultOf(const Job& job, const CopyFault& fault) const;
  Fault TargetFault(const Job& job, const std::error_code& code) const;
  bool MayReplace(const Job& job);
  void Run(const Job& job);
  void Fill(const Job& job);

  bool MeetsFlight(const Job& job) const;
  void SettleFirst();
  void SettleAll();
  std::error_code Await(CopyFlush& flush, const std::string& name);

  void KeepDamaged(Job job, FilledFile filled);
  bool NameDamaged(const Job& job, std::unique_ptr<NewFile> file);
  void WriteMissingList(const Job& job, const FilledFile& filled);
  UnreadableAnswer AskAboutDamage(const Job& job, std::uint64_t offset, const std::error_code& code);

  bool Report(const std::string& text, std::uint64_t done, std::uint64_t total);
  void Fail(const Job& job, const Fault& fault);
  void Stop(const std::string& reason);
  /// Why nothing more is copied; nothing when copies go on.
  std::optional<std::string> StopReason() const;
  void End(const Job& job, CopyEnd end, std::string reason = {});

  HostedFiles& files_;
  SystemFacts& facts_;
  Dialogs& dialogs_;
  Log& log_;
  CopyIo& io_;
  std::vector<CopyResult> results_;
  bool yesToAll_ = false;
  std::optional<UnreadableAnswer> damageAnswer_;
  std::set<FaultKind> wentOn_;             ///< kinds of failures that the person answered "go on" about
  bool stepCancelled_ = false;             ///< a question of this step was cancelled
  std::optional<std::string> stopReason_;  ///< set: nothing more is copied in this command
  std::unique_ptr<Progress> progress_;     ///< one for all copies
  std::deque<Flight> flights_;             ///< flushes that were begun, in order
};

}  // namespace quillbox
