// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/background_work.h"

#include <utility>

namespace quillbox {

BackgroundWork::~BackgroundWork() {
  if (!thread_.joinable()) return;
  {
    const Lock lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void BackgroundWork::ThrowFault(const Lock&) const {
  if (fault_) std::rethrow_exception(fault_);
}

void BackgroundWork::Post(std::size_t size, Job job) {
  Lock lock(mutex_);
  changed_.wait(lock, [&] { return fault_ || waiting_.empty() || waitingSize_ + size <= mostWaiting_; });
  ThrowFault(lock);
  waiting_.push_back({size, std::move(job)});
  waitingSize_ += size;
  if (!thread_.joinable()) thread_ = std::thread([this] { Run(); });
  lock.unlock();
  changed_.notify_all();
}

void BackgroundWork::WaitForAll() {
  Lock lock(mutex_);
  changed_.wait(lock, [&] { return fault_ || (waiting_.empty() && !isWorking_); });
  ThrowFault(lock);
}

void BackgroundWork::Run() {
  Lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [&] { return ending_ || (!waiting_.empty() && !fault_); });
    if (ending_) return;
    Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    waitingSize_ -= next.size;
    isWorking_ = true;
    lock.unlock();
    std::exception_ptr fault;
    try {
      next.job();
    } catch (...) {
      fault = std::current_exception();
    }
    next = {};  // its bytes go without the lock
    lock.lock();
    fault_ = fault;
    isWorking_ = false;
    changed_.notify_all();
  }
}

}  // namespace quillbox
