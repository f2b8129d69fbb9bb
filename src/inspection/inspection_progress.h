// SPDX-License-Identifier: GPL-3.0-or-later
// How far a check is, by the bytes that it reads; and the sources through which it reads them.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "export/file_source.h"
#include "platform/dialogs.h"
#include "registry/byte_source.h"
#include "text/positioned_source.h"
#include "text/unicode.h"

namespace quillbox {

/// Thrown when the user has cancelled: through readers that collect other errors and go on.
struct InspectionCancelled {};

class InspectionProgress {
 public:
  /// `shown` must outlive this; it is asked every so many milliseconds.
  InspectionProgress(Progress& shown, std::chrono::milliseconds shownEvery) : shown_(shown), shownEvery_(shownEvery) {}

  /// How many bytes there are to read, once that is known.
  void SetTotal(std::uint64_t bytes) { total_ = bytes; }
  /// Begins a step of so many bytes; the one before is done.
  void Begin(const std::string& text, std::uint64_t bytes);
  /// So many bytes of the step were read, some perhaps twice. Throws InspectionCancelled.
  void Advance(std::uint64_t bytes);

 private:
  using Clock = std::chrono::steady_clock;

  Progress& shown_;
  std::chrono::milliseconds shownEvery_;
  std::string text_;
  std::uint64_t total_ = 0, before_ = 0, step_ = 0, done_ = 0;
  Clock::time_point next_ = Clock::now();
};

/// A file that is checked. Bytes beyond the size that it had at first are not read.
class InspectedSource final : public PositionedSource {
 public:
  /// Throws Error.
  InspectedSource(FileSystem& files, const WinPath& file, InspectionProgress& progress)
      : file_(files, file), progress_(progress) {}

  std::uint64_t Size() const override { return file_.Size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) override;
  bool HasChanged() const { return file_.HasChanged(); }

 private:
  FileSource file_;
  InspectionProgress& progress_;
};

/// A source from its start, for the reader of registry files.
class SequentialSource final : public ByteSource {
 public:
  explicit SequentialSource(PositionedSource& source) : source_(source) {}

  std::optional<std::uint64_t> Size() const override { return source_.Size(); }
  std::size_t Read(std::span<char> buffer) override;
  void GoBackTo(std::uint64_t offset) override { at_ = offset; }

 private:
  PositionedSource& source_;
  std::uint64_t at_ = 0;
};

/// All of a source. Throws Error when it cannot be read, or ends too early.
Bytes ReadWhole(PositionedSource& source);

}  // namespace quillbox
