#include "platform/offline/hive_file.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "text/error.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr const char* kOpening = "opening the hive";
constexpr const char* kWriting = "writing the hive";

/// The hive's own logs, whose names may be in another case than its own: that of the old form first, then the two of
/// the new one.
std::vector<fs::path> FindLogs(const fs::path& hive) {
  const std::string name = hive.filename().string();
  const std::array<std::string, 3> wanted = {name + ".LOG", name + ".LOG1", name + ".LOG2"};
  std::array<fs::path, wanted.size()> found;
  std::error_code code;
  for (fs::directory_iterator entry(hive.parent_path(), code), end; !code && entry != end; entry.increment(code)) {
    for (std::size_t at = 0; at < wanted.size(); ++at) {
      if (EqualIgnoreCase(entry->path().filename().string(), wanted[at])) found[at] = entry->path();
    }
  }
  std::vector<fs::path> logs;
  std::copy_if(found.begin(), found.end(), std::back_inserter(logs), [](const fs::path& log) { return !log.empty(); });
  return logs;
}

std::vector<HiveLogFile> ReadLogs(const fs::path& hive) {
  std::vector<HiveLogFile> logs;
  for (const fs::path& log : FindLogs(hive)) {
    HiveLogFile file{log.string(), {}, {}};
    try {
      file.bytes = ReadHostFile(log, "reading the hive's log");
    } catch (const Error& error) {
      file.unreadable = error.Why();
    }
    logs.push_back(std::move(file));
  }
  return logs;
}

Hive LoadHive(const fs::path& file) {
  return Hive::Load(ReadHostFile(file, kOpening), file.string(), [&] { return ReadLogs(file); });
}

fs::path RealPath(const fs::path& hive) {
  std::error_code code;
  fs::path real = fs::canonical(hive, code);
  if (code) throw HostFileError(kOpening, hive, code.value());
  return real;
}

}  // namespace

HiveFile::HiveFile(const fs::path& hive, HiveMode mode, const fs::path& stateFolder, Log& log)
    : disk_(RealPath(hive)), mode_(mode), log_(log), copy_(stateFolder, disk_) {
  Read(Source());
  if (copy_.IsOutdated()) {
    log_.Write(disk_.string() + ": changed since its private copy was begun; " + copy_.File().string() +
               " is not used");
  }
  if (mode_ == HiveMode::Read) return;
  if (!private_ && !CanReplaceFile(disk_)) {
    private_ = true;
    log_.Write(disk_.string() + ": it cannot be written; changes go to " + copy_.File().string());
  }
  canWrite_ = !private_ || copy_.CanWrite();
  if (!canWrite_) log_.Write(copy_.File().string() + ": it cannot be written either; nothing can be changed");
}

fs::path HiveFile::Source() const {
  return copy_.IsCurrent() ? copy_.File() : disk_;
}

void HiveFile::Read(const fs::path& file) {
  // The state first: a change while it is read then shows as one later.
  const FileState state = StateOf(file);
  hive_ = LoadHive(file);
  readFrom_ = file;
  readState_ = state;
  edited_ = unsaved_ = false;
  if (hive_->Origin() == HiveOrigin::Recovered) log_.Write(file.string() + ": not closed cleanly; its log was applied");
  if (hive_->Origin() == HiveOrigin::DirtyNoLog) {
    log_.Write(file.string() + ": not closed cleanly, and no log to recover it from; taken as it stands");
  }
  for (const UnusedHiveLog& unused : hive_->UnusedLogs()) log_.Write(unused.name + ": not used, since " + unused.why);
  if (file == copy_.File()) {
    private_ = true;
    log_.Write(disk_.string() + ": its private copy " + file.string() + " is used in its place");
  }
}

Hive& HiveFile::Edit() {
  edited_ = true;
  return *hive_;
}

void HiveFile::Commit(FileTime now) {
  if (!unsaved_ && !(edited_ && hive_->Changed())) return;
  if (!canWrite_) throw Error(kWriting, {TargetFile().string(), {}, {}}, "it was opened for reading only");
  if (const FileState state = StateOf(readFrom_); state != readState_) {
    throw Error(kWriting, {readFrom_.string(), {}, {}},
                state == FileState{} ? "it is gone" : "another program has changed it since it was read");
  }
  unsaved_ = true;
  const Bytes image = hive_->Image(now);
  try {
    Write(image);
  } catch (const HostFileError& error) {
    if (private_ || !error.IsReadOnly() || !copy_.CanWrite()) throw;
    log_.Write(Describe(error) + "; changes go to " + copy_.File().string());
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
      log_.Write(disk_.string() + ": changed since its private copy was begun; kept as " + older.string());
  }
  const fs::path& target = TargetFile();
  ReplaceHostFile(target, image, kWriting, target);
  readFrom_ = target;
  readState_ = StateOf(target);
}

void HiveFile::KeepOriginals() {
  const bool first = KeepBeside(disk_, disk_.string() + kKeptSuffix, KeepHow::SecondName);
  if (!first || hive_->Origin() != HiveOrigin::Recovered) return;
  // The original is of use only with its logs, which the next Windows overwrites in place.
  for (const fs::path& log : FindLogs(disk_)) KeepBeside(log, log.string() + kKeptSuffix, KeepHow::Copy);
}

bool HiveFile::Reload() {
  const fs::path source = Source();
  if (source == readFrom_ && StateOf(source) == readState_) return false;
  if (unsaved_ || (edited_ && hive_->Changed())) {
    log_.Write(source.string() + ": another program has changed it; changes that were not yet written are lost");
  }
  Read(source);
  return true;
}

}  // namespace quillbox
