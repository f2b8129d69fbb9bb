#include "platform/offline/file_copy.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/offline/host_file.h"
#include "text/error.h"

namespace quillbox {

namespace {

constexpr std::size_t kChunk = std::size_t{1024} * 1024;

enum class Outcome { Copied, Stopped, SourceChanged };

[[noreturn]] void Fail(const CopySide& side, const std::string& why) {
  throw Error("copying a file", {side.shownAs, {}, {}}, why);
}

/// Does `act`, whose failures are about `side`.
template <typename Act>
auto About(const CopySide& side, Act act) {
  try {
    return act();
  } catch (const std::system_error& failure) {
    Fail(side, ReasonOf(failure.code()));
  }
}

struct stat StatusOf(int fd) {
  struct stat info = {};
  if (fstat(fd, &info) != 0) ThrowErrno(errno);
  return info;
}

bool SameTime(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool Unchanged(const struct stat& before, const struct stat& after) {
  return before.st_dev == after.st_dev && before.st_ino == after.st_ino && before.st_size == after.st_size &&
         SameTime(before.st_mtim, after.st_mtim);
}

/// One copy of the open source into a file in the making.
class Run {
 public:
  Run(const CopySide& source, const CopySide& target, int from, NewFile& to)
      : source_(source), target_(target), from_(from), to_(to) {}

  /// Copies the `total` bytes that the source had when it was opened.
  Outcome CopyAll(std::uint64_t total, const CopyProgress& progress) {
    for (;;) {
      if (!progress(done_, total)) return Outcome::Stopped;
      const std::size_t copied = inKernel_ ? CopyInKernel() : CopyByHand();
      if (copied > 0) {
        done_ += copied;
        if (done_ > total) return Outcome::SourceChanged;
      } else if (inKernel_) {
        inKernel_ = false;  // not all file systems tell the file's end this way
      } else {
        return done_ == total ? Outcome::Copied : Outcome::SourceChanged;
      }
    }
  }

 private:
  /// 0 when the kernel cannot copy between these files, or has nothing more to copy.
  std::size_t CopyInKernel() const {
    const ssize_t copied = copy_file_range(from_, nullptr, to_.Fd(), nullptr, kChunk, 0);
    if (copied < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) Fail(target_, SystemReason(errno));
    return copied > 0 ? static_cast<std::size_t>(copied) : 0;
  }

  std::size_t CopyByHand() {
    buffer_.resize(kChunk);
    ssize_t got = 0;
    do {
      got = read(from_, buffer_.data(), buffer_.size());
    } while (got < 0 && errno == EINTR);
    if (got < 0) Fail(source_, SystemReason(errno));
    About(target_, [&] { to_.Write({buffer_.data(), static_cast<std::size_t>(got)}); });
    return static_cast<std::size_t>(got);
  }

  const CopySide& source_;
  const CopySide& target_;
  int from_;
  NewFile& to_;
  bool inKernel_ = true;
  std::uint64_t done_ = 0;
  std::vector<char> buffer_;
};

Outcome CopyOnce(const CopySide& source, const CopySide& target, const CopyProgress& progress) {
  const HostFd from = About(source, [&] { return OpenForReading(source.file); });
  const struct stat before = About(source, [&] { return StatusOf(from.Get()); });
  if (!S_ISREG(before.st_mode)) Fail(source, S_ISDIR(before.st_mode) ? "it is a folder" : "it is not an ordinary file");

  return About(target, [&] {
    const std::optional<struct stat> replaced = StatPlace(target.file);
    if (replaced && replaced->st_dev == before.st_dev && replaced->st_ino == before.st_ino) {
      Fail(target, "the source and the target are the same file");
    }
    NewFile to(target.file);
    const Outcome outcome =
        Run(source, target, from.Get(), to).CopyAll(static_cast<std::uint64_t>(before.st_size), progress);
    if (outcome != Outcome::Copied) return outcome;

    const std::optional<struct stat> byName = StatPlace(source.file);
    const bool sameFile = byName && Unchanged(before, *byName);
    if (!sameFile || !Unchanged(before, StatusOf(from.Get()))) return Outcome::SourceChanged;
    to.SetTimes(before.st_atim, before.st_mtim);
    to.Commit();
    return Outcome::Copied;
  });
}

}  // namespace

bool CopyWholeFile(const CopySide& source, const CopySide& target, const CopyProgress& progress) {
  for (int attempt = 0; attempt < kCopyAttempts; ++attempt) {
    const Outcome outcome = CopyOnce(source, target, progress);
    if (outcome != Outcome::SourceChanged) return outcome == Outcome::Copied;
  }
  Fail(source, "it changes while it is copied; close the program that is using it and try again");
}

}  // namespace quillbox
