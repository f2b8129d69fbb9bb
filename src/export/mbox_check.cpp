// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/mbox_check.h"

#include <algorithm>
#include <chrono>

#include "mail/mbox.h"
#include "mail/message_digest.h"

namespace quillbox {
namespace {

constexpr std::chrono::milliseconds kTickEvery{50};

class Digesting final : public MboxListener {
 public:
  explicit Digesting(std::vector<std::uint64_t>& digests) : digests_(digests) {}
  void Text(std::string_view piece) override { digest_.Add(piece); }
  void Message(const MboxMessage&) override { digests_.push_back(digest_.Finish()[0]); }

 private:
  MessageDigest digest_;
  std::vector<std::uint64_t>& digests_;
};

}  // namespace

/// The file as far as it is written; a read at its end waits for more.
class MboxCheck::Source final : public PositionedSource {
 public:
  explicit Source(MboxCheck& check) : check_(check) {}
  std::uint64_t Size() const override { return UINT64_MAX; }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    const std::uint64_t written = check_.WaitForMoreThan(offset);
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), written - offset));
    return check_.file_.ReadAt(offset, {reinterpret_cast<char*>(buffer.data()), size});
  }

 private:
  MboxCheck& check_;
};

MboxCheck::MboxCheck(FileWriter& file) : file_(file), thread_([this] { Run(); }) {}

MboxCheck::~MboxCheck() {
  {
    const std::lock_guard lock(mutex_);
    size_ = 0;
    isWhole_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void MboxCheck::Written(std::uint64_t size) {
  {
    const std::lock_guard lock(mutex_);
    size_ = size;
  }
  changed_.notify_all();
}

/// How much is written, at least `size`: that only at the end.
std::uint64_t MboxCheck::WaitForMoreThan(std::uint64_t size) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return isWhole_ || size_ > size; });
  return std::max(size, size_);
}

void MboxCheck::Run() {
  Source source(*this);
  Digesting digesting(digests_);
  try {
    if (!ReadMbox(source, digesting)) digests_.clear();
  } catch (...) {
    fault_ = std::current_exception();
  }
  const std::lock_guard lock(mutex_);
  isRead_ = true;
  changed_.notify_all();
}

std::vector<std::uint64_t> MboxCheck::Digests(const std::function<void()>& tick) {
  std::unique_lock lock(mutex_);
  isWhole_ = true;
  changed_.notify_all();
  while (!changed_.wait_for(lock, kTickEvery, [&] { return isRead_; })) {
    lock.unlock();
    if (tick) tick();
    lock.lock();
  }
  if (fault_) std::rethrow_exception(fault_);
  return std::move(digests_);
}

}  // namespace quillbox
