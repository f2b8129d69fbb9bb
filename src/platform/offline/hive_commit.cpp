// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/hive_commit.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/offline/commit_record.h"
#include "platform/offline/hive_storage.h"
#include "text/error.h"

namespace quillbox {
namespace {

/// "A", "A and B", "A, B and C".
std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t at = 0; at < names.size(); ++at) {
    text += (at == 0 ? "" : at + 1 == names.size() ? " and " : ", ") + names[at];
  }
  return text;
}

std::vector<std::string> NamesOf(const std::vector<HiveFile*>& hives) {
  std::vector<std::string> names;
  names.reserve(hives.size());
  for (const HiveFile* hive : hives) names.push_back(hive->TargetFile().Path().Text());
  return names;
}

[[noreturn]] void Fail(const Error& reason, const std::string& whatWasWritten) {
  throw Error(reason.Doing(), reason.Place(), reason.Why() + "; " + whatWasWritten);
}

CommitRecord RecordOf(const std::vector<HiveFile*>& hives) {
  CommitRecord record;
  const HostPlace from = hives.back()->DiskFile().Folder();
  for (const HiveFile* hive : hives) {
    const HostPlace& target = hive->TargetFile();
    record.push_back({NameInRecord(hive->DiskFile(), from), hive->IsPrivateCopy(), HiveStamp(target),
                      HiveStamp(Beside(target, HiveFile::kStagedSuffix))});
  }
  return record;
}

}  // namespace

void HiveCommit::Write(const std::vector<HiveFile*>& hives, FileTime now) {
  // What the last command could not put in place is older than what this one has changed.
  if (!waiting_.empty()) Publish();
  std::vector<HiveFile*> changed;
  std::copy_if(hives.begin(), hives.end(), std::back_inserter(changed),
               [](const HiveFile* hive) { return hive->NeedsWriting(); });
  if (changed.size() > 1) return WriteTogether(changed, now);
  for (HiveFile* hive : changed) hive->Commit(now);
}

void HiveCommit::WriteTogether(const std::vector<HiveFile*>& hives, FileTime now) {
  try {
    for (HiveFile* hive : hives) hive->Stage(now);
    record_ = hives.back()->TargetFile().Folder().Join(kRecordName);
    WriteRecord(*record_, RecordOf(hives));
  } catch (const Error& error) {
    Drop(hives);
    Fail(error, "nothing was written of " + Joined(NamesOf(hives)));
  }
  waiting_ = hives;
  written_.clear();
  Publish();
}

void HiveCommit::Publish() {
  while (!waiting_.empty()) {
    HiveFile& hive = *waiting_.front();
    try {
      hive.Publish();
    } catch (const Error& error) {
      if (written_.empty() && hive.IsStaged()) {
        const std::vector<std::string> names = NamesOf(waiting_);
        Drop(std::exchange(waiting_, {}));
        Fail(error, "nothing was written of " + Joined(names));
      }
      FailHalfway(error);
    }
    written_.push_back(hive.TargetFile().Path().Text());
    waiting_.erase(waiting_.begin());
  }
  if (record_) {
    const std::error_code fault = RemoveEntry(*record_);
    if (fault) log_.Write(Describe(HostFileError("removing a record", *record_, fault)));
  }
  record_.reset();
}

/// `error` with which hives are in place and which are not.
void HiveCommit::FailHalfway(const Error& error) const {
  std::vector<std::string> done = written_;
  std::vector<std::string> missing;
  for (const HiveFile* hive : waiting_) (hive->IsStaged() ? missing : done).push_back(hive->TargetFile().Path().Text());
  if (missing.empty()) throw error;  // its own words say that it is in place
  Fail(error, Joined(done) + (done.size() == 1 ? " was" : " were") + " written, " + Joined(missing) +
                  (missing.size() == 1 ? " was not; it is" : " were not; they are") +
                  " written when the next command ends, or when the disk is opened next");
}

/// Takes back what is staged of hives none of which is in place.
void HiveCommit::Drop(const std::vector<HiveFile*>& hives) {
  // The record first: without it the rest means nothing.
  if (record_) RemoveEntry(*record_);
  record_.reset();
  for (HiveFile* hive : hives) hive->Unstage();
}

}  // namespace quillbox
