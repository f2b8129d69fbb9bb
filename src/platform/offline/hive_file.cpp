// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/hive_file.h"

#include <optional>
#include <system_error>
#include <utility>

#include "host/host_paths.h"
#include "platform/hosted/host_open.h"
#include "platform/offline/hive_logs.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kOpening = "opening the hive";
constexpr const char* kWriting = "writing the hive";

std::string Shown(const HostPlace& file) {
  return file.Path().Text();
}

/// A file to read: a hive, or (with `old`) a registry file of an old Windows.
struct RegistryFile {
  const HostPlace& file;
  const std::optional<OldRegistryFile>& old;
};

Hive LoadHive(const RegistryFile& source, DamagedParts damaged) {
  const HostPlace& file = source.file;
  if (source.old) return Hive::LoadCreg(ReadHostFile(file, kOpening), Shown(file), source.old->codePage, damaged);
  return Hive::Load(
      ReadHostFile(file, kOpening), Shown(file), [&] { return ReadLogsOf(file); }, damaged);
}

/// Reads what can be read of a damaged hive. Throws `refusal` when nothing can.
Hive LoadDamaged(const RegistryFile& file, const Error& refusal) {
  try {
    return LoadHive(file, DamagedParts::LeaveOut);
  } catch (const Error&) {
    throw refusal;
  }
}

/// Throws HiveRefused with the words of `refusal` when the hive needs `consent` and does not get it.
Hive Agreed(Hive hive, const HiveConsent& consent, const Error& refusal) {
  if (NeedsConsent(hive) && (!consent || !consent(hive))) throw HiveRefused(refusal);
  return hive;
}

/// `fault` with where else the registry may be found.
Error WithCopies(const Error& fault, const RegistryFile& source) {
  if (!source.old || source.old->copies.empty()) return fault;
  return Error(fault.Doing(), fault.Place(), fault.Why() + "; " + source.old->copies);
}

Hive LoadAgreed(const RegistryFile& source, const HiveConsent& consent) {
  std::optional<Hive> hive;
  try {
    hive = LoadHive(source, DamagedParts::Refuse);
  } catch (const HostFileError&) {
    throw;
  } catch (const Error& fault) {
    const Error refusal = WithCopies(fault, source);
    return Agreed(LoadDamaged(source, refusal), consent, refusal);
  }
  const Error refusal(kOpening, {Shown(source.file), {}, {}}, UnusedLogsFault(*hive));
  return Agreed(std::move(*hive), consent, refusal);
}

/// A hive anywhere on the host with its links resolved; beneath a drive they are already.
HostPlace RealPlace(const HostPlace& hive) {
  if (hive.IsBeneathDrive()) return hive;
  const RealPath real = RealPathOf(hive.Path());
  if (real.fault) throw HostFileError(kOpening, hive, real.fault);
  return HostPlace::Anywhere(real.path);
}

}  // namespace

HivePlaces PlacesOf(const HostPlace& hive, const HostPath& stateFolder) {
  const HostPlace disk = RealPlace(hive);
  return {disk, PrivateCopy(stateFolder, disk).File()};
}

HiveFile::HiveFile(const HostPlace& hive, HiveMode mode, const HostPath& stateFolder, Log& log,
                   const HiveConsent& consent, std::optional<OldRegistryFile> old)
    : disk_(RealPlace(hive)),
      mode_(mode),
      old_(std::move(old)),
      log_(log),
      copy_(stateFolder, disk_),
      readFrom_(disk_) {
  Read(Source(), consent);
  if (copy_.IsOutdated()) {
    log_.Write(Shown(disk_) + ": changed since its private copy was begun; " + Shown(copy_.File()) + " is not used");
  }
  if (mode_ == HiveMode::Read) return;
  if (!private_ && (old_ || !CanReplaceFile(disk_))) {
    private_ = true;
    log_.Write(Shown(disk_) + (old_ ? ": it is only read" : ": it cannot be written") + "; changes go to " +
               Shown(copy_.File()));
  }
  canWrite_ = !private_ || copy_.CanWrite();
  if (!canWrite_) log_.Write(Shown(copy_.File()) + ": it cannot be written either; nothing can be changed");
}

void HiveFile::LeaveDiskAlone() {
  if (private_ || mode_ == HiveMode::Read) return;
  private_ = true;
  canWrite_ = copy_.CanWrite();
  log_.Write(Shown(disk_) + ": changes go to " + Shown(copy_.File()));
}

const HostPlace& HiveFile::Source() const {
  return copy_.IsCurrent() ? copy_.File() : disk_;
}

void HiveFile::Read(const HostPlace& file, const HiveConsent& consent) {
  // The state first: a change during the read is then noticed later.
  const FileState state = StateOf(file);
  const bool isCopy = file == copy_.File();
  hive_ = LoadAgreed({file, isCopy ? std::nullopt : old_}, consent);
  readFrom_ = file;
  readState_ = state;
  edited_ = unsaved_ = false;
  agreed_ = agreed_ || NeedsConsent(*hive_);
  damagedCopy_ = isCopy && !hive_->Damage().empty();
  damagedPlaces_ = hive_->DamageCount() + (isCopy ? copy_.DamagedPlaces() : 0);
  if (hive_->Origin() == HiveOrigin::Recovered) log_.Write(Shown(file) + ": not closed cleanly; its log was applied");
  if (hive_->Origin() == HiveOrigin::DirtyNoLog) {
    log_.Write(Shown(file) + ": not closed cleanly, and no log to recover it from; taken as it is");
  }
  if (isCopy) log_.Write(Shown(disk_) + ": its private copy " + Shown(file) + " is used in its place");
  private_ = private_ || isCopy || damagedPlaces_ > 0;
}

Hive& HiveFile::Edit() {
  edited_ = true;
  return *hive_;
}

bool HiveFile::NeedsWriting() const {
  return unsaved_ || (edited_ && hive_->Changed());
}

void HiveFile::Commit(FileTime now) {
  if (!NeedsWriting()) return;
  try {
    WriteImage(now, "");
  } catch (const HostFileError& error) {
    if (error.IsInPlace()) NoteWritten();
    throw;
  }
  NoteWritten();
  unsaved_ = false;
}

void HiveFile::Stage(FileTime now) {
  WriteImage(now, kStagedSuffix);
  staged_ = Staged::Ready;
}

void HiveFile::Publish() try {
  if (staged_ == Staged::No) return;
  if (staged_ == Staged::Ready) {
    CheckWritable();
    MoveIntoPlace({.from = StagedFile(), .to = TargetFile()}, kWriting);
    NoteWritten();
  } else {
    OpenFolder(TargetFile().Folder()).Flush();
  }
  staged_ = Staged::No;
  unsaved_ = false;
} catch (const std::system_error& error) {
  throw HostFileError(kWriting, TargetFile(), error.code(), true);
} catch (const HostFileError& error) {
  if (error.IsInPlace()) {
    NoteWritten();
    staged_ = Staged::InPlace;
  }
  throw;
}

void HiveFile::Unstage() noexcept {
  if (staged_ == Staged::Ready) RemoveEntry(StagedFile());
  staged_ = Staged::No;
}

void HiveFile::CheckWritable() const {
  if (!canWrite_) throw Error(kWriting, {Shown(TargetFile()), {}, {}}, "it was opened for reading only");
  if (const FileState state = StateOf(readFrom_); state != readState_) {
    throw Error(kWriting, {Shown(readFrom_), {}, {}},
                state == FileState{} ? "it is gone" : "another program has changed it since it was read");
  }
}

/// Writes what the hive is now to the target's name with `suffix` at the end.
void HiveFile::WriteImage(FileTime now, const char* suffix) {
  CheckWritable();
  unsaved_ = true;
  const Bytes image = hive_->Image(now);
  try {
    Write(image, suffix);
  } catch (const HostFileError& error) {
    if (private_ || !error.IsReadOnly() || !copy_.CanWrite()) throw;
    log_.Write(Describe(error) + "; changes go to " + Shown(copy_.File()));
    private_ = true;
    Write(image, suffix);
  }
}

void HiveFile::Write(const Bytes& image, const char* suffix) {
  if (!private_) {
    KeepOriginals();
  } else if (readFrom_ != copy_.File()) {
    const HostPath older = copy_.Begin(damagedPlaces_);
    if (!older.Empty())
      log_.Write(Shown(disk_) + ": changed since its private copy was begun; kept as " + older.Text());
  } else if (damagedCopy_) {
    log_.Write(Shown(copy_.File()) + ": damaged; kept as " + copy_.KeepDamaged().Text());
    copy_.Begin(damagedPlaces_);
    damagedCopy_ = false;
  }
  const HostPlace& target = TargetFile();
  const HostPlace file = Beside(target, suffix);
  // What was left there may be a link, which is not written to.
  if (file != target) RemoveEntry(file);
  ReplaceHostFile(file, image, kWriting, target);
}

/// Notes that the target holds the last image.
void HiveFile::NoteWritten() {
  readFrom_ = TargetFile();
  readState_ = StateOf(readFrom_);
  edited_ = edited_ && hive_->Changed();
}

void HiveFile::KeepOriginals() {
  KeepBeside(disk_, Beside(disk_, kKeptSuffix), KeepHow::SecondName);
  // The logs only fit the hive as it was; together they are the only way back to that state.
  KeepLogsOf(disk_, kKeptSuffix, log_);
}

void HiveFile::RemoveLeftovers() const {
  if (mode_ == HiveMode::Read) return;
  for (const HostPlace& file : {disk_, copy_.File()}) {
    if (private_ && file == disk_) continue;
    RemoveAbandonedFilesIn(file.Folder());
    RemoveEntry(Beside(file, kStagedSuffix));
  }
}

bool HiveFile::Reload() {
  const HostPlace source = Source();
  if (source == readFrom_ && StateOf(source) == readState_) return false;
  if (unsaved_ || (edited_ && hive_->Changed())) {
    log_.Write(Shown(source) + ": another program has changed it; changes that were not yet written are lost");
  }
  Read(source, [this](const Hive& hive) { return agreed_ && (hive.Damage().empty() || damagedPlaces_ > 0); });
  return true;
}

}  // namespace quillbox
