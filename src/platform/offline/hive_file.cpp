#include "platform/offline/hive_file.h"

#include <system_error>
#include <utility>
#include <vector>

#include "platform/offline/host_open.h"
#include "platform/offline/place_finder.h"
#include "platform/offline/windows_names.h"
#include "text/error.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr const char* kOpening = "opening the hive";
constexpr const char* kReadingLog = "reading the hive's log";
constexpr const char* kWriting = "writing the hive";

std::string Shown(const HostPlace& file) {
  return file.Path().string();
}

struct FoundLog {
  HostPlace entry;    ///< beside the hive
  PlaceResult place;  ///< what is read: the entry, or the file that it leads to
};

/// The hive's own logs, whose names may be in another case than its own: that of the old form first, then the two of
/// the new one.
std::vector<FoundLog> FindLogs(const HostPlace& hive) {
  std::vector<FoundLog> logs;
  for (const char* suffix : {".LOG", ".LOG1", ".LOG2"}) {
    const std::string wanted = WindowsName(hive.Name()) + suffix;
    const PlaceResult entry = FindPlace(hive.Folder(), {wanted}, LastStep::Keep);
    if (!entry || !StatPlace(*entry)) continue;
    logs.push_back({*entry, FollowEntry(hive.Folder(), entry->Name())});
  }
  return logs;
}

std::vector<HiveLogFile> ReadLogs(const HostPlace& hive) {
  std::vector<HiveLogFile> logs;
  for (const FoundLog& log : FindLogs(hive)) {
    HiveLogFile file{Shown(log.entry), {}, {}};
    try {
      if (!log.place) throw HostFileError(kReadingLog, log.entry, log.place.Fault());
      file.bytes = ReadHostFile(*log.place, kReadingLog);
    } catch (const Error& error) {
      file.unreadable = error.Why();
    }
    logs.push_back(std::move(file));
  }
  return logs;
}

Hive LoadHive(const HostPlace& file) {
  return Hive::Load(ReadHostFile(file, kOpening), Shown(file), [&] { return ReadLogs(file); });
}

/// A hive anywhere on the host with its links resolved; beneath a drive they are already.
HostPlace RealPlace(const HostPlace& hive) {
  if (hive.IsBeneathDrive()) return hive;
  std::error_code code;
  const fs::path real = fs::canonical(hive.Path(), code);
  if (code) throw HostFileError(kOpening, hive, code);
  return HostPlace::Anywhere(real);
}

}  // namespace

HiveFile::HiveFile(const HostPlace& hive, HiveMode mode, const fs::path& stateFolder, Log& log)
    : disk_(RealPlace(hive)), mode_(mode), log_(log), copy_(stateFolder, disk_), readFrom_(disk_) {
  Read(Source());
  if (copy_.IsOutdated()) {
    log_.Write(Shown(disk_) + ": changed since its private copy was begun; " + Shown(copy_.File()) + " is not used");
  }
  if (mode_ == HiveMode::Read) return;
  if (!private_ && !CanReplaceFile(disk_)) {
    private_ = true;
    log_.Write(Shown(disk_) + ": it cannot be written; changes go to " + Shown(copy_.File()));
  }
  canWrite_ = !private_ || copy_.CanWrite();
  if (!canWrite_) log_.Write(Shown(copy_.File()) + ": it cannot be written either; nothing can be changed");
}

const HostPlace& HiveFile::Source() const {
  return copy_.IsCurrent() ? copy_.File() : disk_;
}

void HiveFile::Read(const HostPlace& file) {
  // The state first: a change while it is read then shows as one later.
  const FileState state = StateOf(file);
  hive_ = LoadHive(file);
  readFrom_ = file;
  readState_ = state;
  edited_ = unsaved_ = false;
  if (hive_->Origin() == HiveOrigin::Recovered) log_.Write(Shown(file) + ": not closed cleanly; its log was applied");
  if (hive_->Origin() == HiveOrigin::DirtyNoLog) {
    log_.Write(Shown(file) + ": not closed cleanly, and no log to recover it from; taken as it stands");
  }
  for (const UnusedHiveLog& unused : hive_->UnusedLogs()) log_.Write(unused.name + ": not used, since " + unused.why);
  if (file == copy_.File()) {
    private_ = true;
    log_.Write(Shown(disk_) + ": its private copy " + Shown(file) + " is used in its place");
  }
}

Hive& HiveFile::Edit() {
  edited_ = true;
  return *hive_;
}

void HiveFile::Commit(FileTime now) {
  if (!unsaved_ && !(edited_ && hive_->Changed())) return;
  if (!canWrite_) throw Error(kWriting, {Shown(TargetFile()), {}, {}}, "it was opened for reading only");
  if (const FileState state = StateOf(readFrom_); state != readState_) {
    throw Error(kWriting, {Shown(readFrom_), {}, {}},
                state == FileState{} ? "it is gone" : "another program has changed it since it was read");
  }
  unsaved_ = true;
  const Bytes image = hive_->Image(now);
  try {
    Write(image);
  } catch (const HostFileError& error) {
    if (private_ || !error.IsReadOnly() || !copy_.CanWrite()) throw;
    log_.Write(Describe(error) + "; changes go to " + Shown(copy_.File()));
    private_ = true;
    Write(image);
  }
  unsaved_ = edited_ = false;
}

void HiveFile::Write(const Bytes& image) {
  if (!private_) {
    KeepOriginals();
  } else if (readFrom_ != copy_.File()) {
    const fs::path older = copy_.Begin();
    if (!older.empty())
      log_.Write(Shown(disk_) + ": changed since its private copy was begun; kept as " + older.string());
  }
  const HostPlace& target = TargetFile();
  ReplaceHostFile(target, image, kWriting, target);
  readFrom_ = target;
  readState_ = StateOf(target);
}

void HiveFile::KeepOriginals() {
  const auto keep = [](const HostPlace& file, const HostPlace& entry, KeepHow how) {
    return KeepBeside(file, entry.Folder().Join(entry.Name() + kKeptSuffix), how);
  };
  const bool first = keep(disk_, disk_, KeepHow::SecondName);
  if (!first || hive_->Origin() != HiveOrigin::Recovered) return;
  // The original is of use only with its logs, which the next Windows overwrites in place.
  for (const FoundLog& log : FindLogs(disk_)) {
    if (log.place) keep(*log.place, log.entry, KeepHow::Copy);
  }
}

bool HiveFile::Reload() {
  const HostPlace source = Source();
  if (source == readFrom_ && StateOf(source) == readState_) return false;
  if (unsaved_ || (edited_ && hive_->Changed())) {
    log_.Write(Shown(source) + ": another program has changed it; changes that were not yet written are lost");
  }
  Read(source);
  return true;
}

}  // namespace quillbox
