// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/file_source.h"

#include <algorithm>
#include <utility>

#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kReading = "reading a file";

FileEntry EntryOf(FileSystem& files, const WinPath& file) {
  const auto entry = files.Stat(file);
  if (!entry) throw Error(kReading, {file.Text(), {}, {}}, "there is no such file");
  if (entry->isDirectory) throw Error(kReading, {file.Text(), {}, {}}, "it is a folder");
  return *entry;
}

std::span<char> AsChars(std::span<std::uint8_t> buffer) {
  return {reinterpret_cast<char*>(buffer.data()), buffer.size()};
}

}  // namespace

FileSource::FileSource(FileSystem& files, const WinPath& file, ReadTick tick)
    : files_(files),
      file_(file),
      entry_(EntryOf(files, file)),
      tick_(std::move(tick)),
      reader_(files.OpenForReading(file)) {}

std::size_t FileSource::ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) {
  if (tick_) tick_();
  // A file that grows while it is read ends where it ended at the beginning.
  if (offset >= entry_.size) return 0;
  buffer = buffer.first(static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), entry_.size - offset)));
  if (offset != at_) reader_->GoTo(offset);
  at_ = UINT64_MAX;  // if the read fails, the reader may be anywhere
  const std::size_t size = reader_->Read(AsChars(buffer));
  at_ = offset + size;
  return size;
}

bool FileSource::HasChanged() const {
  const auto now = files_.Stat(file_);
  return !now || now->size != entry_.size || now->modified != entry_.modified;
}

std::size_t WrittenSource::ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) {
  if (tick_) tick_();
  return file_.ReadAt(offset, AsChars(buffer));
}

}  // namespace quillbox
