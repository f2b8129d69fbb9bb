// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/copy_flush.h"

#include <utility>

namespace quillbox {

namespace {

std::error_code FlushAndName(std::unique_ptr<NewFile> file, CopyIo& io) {
  try {
    io.Flush(*file);
    file->Commit();
    return {};
  } catch (const std::system_error& failure) {
    return failure.code();
  }
}

}  // namespace

CopyFlush::CopyFlush(std::unique_ptr<NewFile> file, CopyIo& io)
    : task_([held = std::move(file), &io]() mutable { return FlushAndName(std::move(held), io); }),
      end_(task_.get_future()) {
  try {
    thread_ = std::jthread([this] { task_(); });
  } catch (const std::system_error&) {
    task_();  // a system without threads to spare: the flush is only slower
  }
}

bool CopyFlush::EndsWithin(std::chrono::milliseconds time) const {
  return end_.wait_for(time) == std::future_status::ready;
}

}  // namespace quillbox
