// SPDX-License-Identifier: GPL-3.0-or-later
// Work that one thread does in order while its owner goes on: writing what an export reads.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace quillbox {

/// What a job throws is thrown by the next call that posts or waits, and by all after it; no further job is begun.
class BackgroundWork {
 public:
  using Job = std::function<void()>;

  /// The sizes of the jobs that wait add up to at most `mostWaiting`, or one job waits.
  explicit BackgroundWork(std::size_t mostWaiting) : mostWaiting_(mostWaiting) {}
  /// Waits for the job that is being done; those after it are dropped.
  ~BackgroundWork();
  BackgroundWork(const BackgroundWork&) = delete;
  BackgroundWork& operator=(const BackgroundWork&) = delete;

  /// Begins the job once those before it are done.
  void Post(std::size_t size, Job job);
  /// Returns when all jobs are done.
  void WaitForAll();

 private:
  struct Waiting {
    std::size_t size;
    Job job;
  };
  using Lock = std::unique_lock<std::mutex>;

  void Run();
  void ThrowFault(const Lock&) const;

  std::size_t mostWaiting_;

  std::mutex mutex_;  ///< of what follows
  std::condition_variable changed_;
  std::deque<Waiting> waiting_;
  std::size_t waitingSize_ = 0;
  bool isWorking_ = false;
  std::exception_ptr fault_;
  bool ending_ = false;

  std::thread thread_;  ///< begun with the first job
};

}  // namespace quillbox
