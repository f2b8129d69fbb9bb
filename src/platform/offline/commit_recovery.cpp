// SPDX-License-Identifier: GPL-3.0-or-later
// What the next opening of a disk does about a commit that was interrupted.
#include <algorithm>
#include <optional>

#include "platform/offline/commit_record.h"
#include "platform/offline/hive_commit.h"
#include "platform/offline/hive_logs.h"
#include "platform/offline/hive_storage.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kDoing = "finishing an interrupted command";

/// One hive of a record.
struct Part {
  enum class State {
    Done,   ///< the new hive is in place
    Ready,  ///< the old one is, and the new one is beside it, whole
    Lost,
  };
  HostPlace target;
  HostPlace staged;
  bool isPrivateCopy = false;
  State state = State::Lost;
};

bool IsWholeHive(const HostPlace& file) try {
  Hive::Load(ReadHostFile(file, kDoing), file.Path().Text());
  return true;
} catch (const Error&) {
  return false;
}

Part::State StateOfPart(const Part& part, const CommitRecordLine& line) {
  const std::string now = HiveStamp(part.target);
  if (now == line.after) return Part::State::Done;
  const bool isReady = now == line.before && IsOrdinaryEntry(part.staged) && HiveStamp(part.staged) == line.after &&
                       IsWholeHive(part.staged);
  return isReady ? Part::State::Ready : Part::State::Lost;
}

/// The parts that a record means; nothing when it is not one of a command on these hives. `inCopies`: the record is
/// beside the private copy of the machine's hive.
std::optional<std::vector<Part>> PartsOf(const CommitRecord& record, const HivePlaces& machine,
                                         const std::vector<HivePlaces>& profiles, bool inCopies) {
  const HostPlace from = machine.disk.Folder();
  if (record.size() != 2 || record[1].hive != NameInRecord(machine.disk, from) || record[1].isPrivateCopy != inCopies) {
    return std::nullopt;
  }
  const auto profile = std::find_if(profiles.begin(), profiles.end(), [&](const HivePlaces& places) {
    return NameInRecord(places.disk, from) == record[0].hive;
  });
  if (profile == profiles.end()) return std::nullopt;
  std::vector<Part> parts;
  for (std::size_t at = 0; at < record.size(); ++at) {
    const HivePlaces& places = at == 0 ? *profile : machine;
    const HostPlace& target = record[at].isPrivateCopy ? places.copy : places.disk;
    Part part{target, Beside(target, HiveFile::kStagedSuffix), record[at].isPrivateCopy};
    part.state = StateOfPart(part, record[at]);
    parts.push_back(part);
  }
  return parts;
}

void PutInPlace(const Part& part, Log& log) {
  if (!part.isPrivateCopy) {
    KeepBeside(part.target, Beside(part.target, HiveFile::kKeptSuffix), KeepHow::SecondName);
    KeepLogsOf(part.target, HiveFile::kKeptSuffix, log);
  }
  MoveIntoPlace({.from = part.staged, .to = part.target}, kDoing);
  log.Write(part.target.Path().Text() + ": replaced by what an interrupted command had made of it");
}

/// Finishes or drops the commit. Returns a sentence when it stays half done.
std::optional<std::string> Finish(const std::vector<Part>& parts, Log& log) {
  const auto are = [&](Part::State state) {
    return std::count_if(parts.begin(), parts.end(), [&](const Part& part) { return part.state == state; });
  };
  std::optional<std::string> trouble;
  for (const Part& part : parts) {
    if (are(Part::State::Lost) == 0 && part.state == Part::State::Ready) PutInPlace(part, log);
    if (part.state == Part::State::Lost && are(Part::State::Done) > 0) {
      trouble = part.target.Path().Text() + ": a command was interrupted while it changed this hive and " +
                (&part == &parts[0] ? parts[1] : parts[0]).target.Path().Text() +
                "; only the latter has its changes, and the others are lost.";
    }
  }
  for (const Part& part : parts) RemoveEntry(part.staged);
  return trouble;
}

}  // namespace

std::vector<std::string> FinishInterruptedCommit(const HivePlaces& machine, const std::vector<HivePlaces>& profiles,
                                                 Log& log) {
  std::vector<std::string> sentences;
  for (const bool inCopies : {false, true}) {
    const HostPlace file = (inCopies ? machine.copy : machine.disk).Folder().Join(HiveCommit::kRecordName);
    const std::optional<CommitRecord> record = ReadRecord(file);
    if (!record) continue;
    const std::optional<std::vector<Part>> parts = PartsOf(*record, machine, profiles, inCopies);
    if (!parts) {
      log.Write(file.Path().Text() + ": not used, since it does not fit the hives of this disk");
      continue;
    }
    try {
      if (const std::optional<std::string> trouble = Finish(*parts, log)) sentences.push_back(*trouble);
      RemoveEntry(file);
    } catch (const Error& error) {
      sentences.push_back("A command that was interrupted could not be finished: " + Describe(error) + ".");
    }
  }
  for (const std::string& sentence : sentences) log.Write(sentence);
  return sentences;
}

}  // namespace quillbox
