// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/file_copy.h"

#include <algorithm>
#include <array>
#include <optional>
#include <system_error>

namespace quillbox {

namespace {

/// The sizes of a read: the next smaller one where the one before fails. The smallest is a disk's sector.
constexpr std::array<std::uint64_t, 3> kSteps = {std::uint64_t{1024} * 1024, 4096, 512};
/// Does `act`, whose failures are about the end `at`.
template <typename Act>
auto About(CopyFault::At at, const Act& act) {
  try {
    return act();
  } catch (const std::system_error& failure) {
    throw CopyFault(at, failure.code());
  }
}

bool Unchanged(const EntryInfo& before, const EntryInfo& after) {
  return before.id == after.id && before.size == after.size && before.modified == after.modified;
}

/// True when the source's name still means the file that was read, and nobody wrote to it meanwhile.
bool StillTheSame(const CopyEnds& ends, const HostFile& from, const EntryInfo& before) {
  try {
    return Unchanged(before, from.Info()) && Unchanged(before, ends.openSource().Info());
  } catch (const std::system_error&) {
    return false;
  }
}

/// One pass over the open source into a file in the making.
class Pass {
 public:
  enum class End { Filled, LeftOut, Stopped, SourceChanged };

  Pass(const HostFile& from, NewFile& to, CopyIo& io, CopyWatcher& watcher, std::uint64_t total)
      : from_(from), total_(total), to_(to), io_(io), watcher_(watcher) {}

  End Run() {
    for (;;) {
      if (!watcher_.OnProgress(done_, total_)) return End::Stopped;
      if (done_ == total_) return NothingWasRead() ? End::LeftOut : End::Filled;
      if (inKernel_ && CopyInKernel()) continue;
      if (const auto end = CopyByHand()) return *end;
    }
  }
  std::vector<ByteRange> TakeUnreadable() { return std::move(unreadable_); }

 private:
  bool CopyInKernel() {
    const std::uint64_t wanted = std::min(kSteps[0], total_ - done_);
    const std::size_t copied =
        About(CopyFault::At::Target, [&] { return io_.CopyInKernel(from_, to_, {.offset = done_, .size = wanted}); });
    inKernel_ = copied > 0;
    Advance(copied);
    return inKernel_;
  }

  /// How the pass ends, or nothing when it goes on.
  std::optional<End> CopyByHand() {
    const std::size_t level = Level();
    // Small steps end where the disk's own pieces do.
    const std::uint64_t step = level == 0 ? kSteps[0] : kSteps.at(level) - done_ % kSteps.at(level);
    const std::uint64_t wanted = std::min(step, total_ - done_);
    buffer_.resize(kSteps[0]);
    std::size_t got = 0;
    try {
      got = io_.Read(from_, done_, {buffer_.data(), wanted});
    } catch (const std::system_error& failure) {
      if (!IsUnreadablePlace(failure.code())) throw CopyFault(CopyFault::At::Source, failure.code());
      return OnUnreadable(level, wanted, failure.code());
    }
    if (got == 0) return End::SourceChanged;
    Append(got);
    return std::nullopt;
  }

  /// Which of the sizes is read here.
  std::size_t Level() const {
    std::size_t level = kSteps.size() - 1;
    while (level > 0 && done_ >= smallerUntil_.at(level)) --level;
    return level;
  }

  std::optional<End> OnUnreadable(std::size_t level, std::uint64_t length, const std::error_code& code) {
    if (level + 1 < kSteps.size()) {
      smallerUntil_.at(level + 1) = done_ + length;
      // Reading ahead of a bad place means more bad places, each of which may take the disk seconds.
      from_.StopReadingAhead();
      return std::nullopt;
    }
    if (unreadable_.empty()) {
      const UnreadableAnswer answer = watcher_.OnUnreadable(done_, code);
      if (answer != UnreadableAnswer::Keep) return answer == UnreadableAnswer::Cancel ? End::Stopped : End::LeftOut;
    }
    if (!unreadable_.empty() && unreadable_.back().offset + unreadable_.back().length == done_) {
      unreadable_.back().length += length;
    } else {
      unreadable_.push_back({done_, length});
    }
    std::fill_n(buffer_.begin(), length, '\0');
    Append(length);
    return std::nullopt;
  }

  void Append(std::size_t length) {
    About(CopyFault::At::Target, [&] { io_.Write(to_, {buffer_.data(), length}); });
    Advance(length);
  }

  void Advance(std::uint64_t length) {
    done_ += length;
    if (done_ - writtenBack_ < NewFile::kWriteBackPiece) return;
    to_.BeginWriteBack({.offset = writtenBack_, .size = done_ - writtenBack_});
    writtenBack_ = done_;
  }

  bool NothingWasRead() const { return total_ > 0 && unreadable_.size() == 1 && unreadable_.front().length == total_; }

  const HostFile& from_;
  std::uint64_t total_;
  NewFile& to_;
  CopyIo& io_;
  CopyWatcher& watcher_;
  bool inKernel_ = true;
  std::uint64_t done_ = 0;
  std::uint64_t writtenBack_ = 0;
  std::array<std::uint64_t, kSteps.size()> smallerUntil_ = {};  ///< up to where each size is read instead of a larger
  std::vector<ByteRange> unreadable_;
  std::vector<char> buffer_;
};

/// Nothing when the source changed meanwhile.
std::optional<FilledFile> FillOnce(const CopyEnds& ends, CopyIo& io, CopyWatcher& watcher) {
  const HostFile from = About(CopyFault::At::Source, ends.openSource);
  const EntryInfo before = About(CopyFault::At::Source, [&] { return from.Info(); });
  if (!before.IsFile()) throw CopyFault(CopyFault::At::Source, HostFault::NotOrdinary);

  FilledFile filled;
  filled.file = About(CopyFault::At::Target, ends.createTarget);
  filled.size = before.size;
  Pass pass(from, *filled.file, io, watcher, filled.size);
  switch (pass.Run()) {
    case Pass::End::SourceChanged:
      return std::nullopt;
    case Pass::End::Stopped:
      return FilledFile{.end = FilledFile::End::Stopped};
    case Pass::End::LeftOut:
      return FilledFile{.end = FilledFile::End::LeftOut};
    case Pass::End::Filled:
      break;
  }
  if (!StillTheSame(ends, from, before)) return std::nullopt;
  About(CopyFault::At::Target, [&] { filled.file->SetTimes(before.accessed, before.modified); });
  filled.end = FilledFile::End::Filled;
  filled.unreadable = pass.TakeUnreadable();
  return filled;
}

}  // namespace

FilledFile FillFromSource(const CopyEnds& ends, CopyIo& io, CopyWatcher& watcher) {
  for (int attempt = 0; attempt < kCopyAttempts; ++attempt) {
    if (auto filled = FillOnce(ends, io, watcher)) return std::move(*filled);
  }
  throw CopyFault(CopyFault::At::Source,
                  "it changes while it is copied; close the program that is using it and try again");
}

}  // namespace quillbox
