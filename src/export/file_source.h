// SPDX-License-Identifier: GPL-3.0-or-later
// A file of any size as the bytes that the readers of mail take: piece by piece, from anywhere in it.
#pragma once

#include <functional>
#include <memory>

#include "platform/file_system.h"
#include "text/positioned_source.h"

namespace quillbox {

/// Called before each read, many times a second; what it throws ends the reading.
using ReadTick = std::function<void()>;

class FileSource final : public PositionedSource {
 public:
  /// `file` as it is now. Throws Error when it is not there or cannot be opened.
  FileSource(FileSystem& files, const WinPath& file, ReadTick tick = {});

  std::uint64_t Size() const override { return entry_.size; }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) override;

  /// Whether size or time of the file differ by now from what they were at the beginning.
  bool HasChanged() const;

 private:
  FileSystem& files_;
  WinPath file_;
  FileEntry entry_;
  ReadTick tick_;
  std::unique_ptr<FileReader> reader_;
  std::uint64_t at_ = 0;  ///< where the reader goes on
};

/// What a file in the making holds so far.
class WrittenSource final : public PositionedSource {
 public:
  WrittenSource(FileWriter& file, std::uint64_t size, ReadTick tick)
      : file_(file), size_(size), tick_(std::move(tick)) {}

  std::uint64_t Size() const override { return size_; }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) override;

 private:
  FileWriter& file_;
  std::uint64_t size_;
  ReadTick tick_;
};

}  // namespace quillbox
