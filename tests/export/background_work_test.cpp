// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/background_work.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>

namespace quillbox {
namespace {

TEST(BackgroundWork, DoesJobsInOrderAndWaitsForThem) {
  std::string done;
  BackgroundWork work(10);
  for (const char letter : std::string("abcdefgh")) work.Post(4, [&, letter] { done += letter; });
  work.WaitForAll();
  EXPECT_EQ(done, "abcdefgh");
}

TEST(BackgroundWork, HoldsUpItsOwnerWhenTooMuchWaits) {
  std::promise<void> begun, mayGoOn;
  std::atomic<bool> posted = false;
  BackgroundWork work(10);
  work.Post(5, [&, signal = mayGoOn.get_future().share()] {
    begun.set_value();
    signal.wait();
  });
  begun.get_future().wait();
  work.Post(5, [] {});
  work.Post(5, [] {});
  std::thread releaser([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_FALSE(posted);
    mayGoOn.set_value();
  });
  work.Post(5, [] {});
  posted = true;
  releaser.join();
}

TEST(BackgroundWork, AFaultReachesTheOwnerAndNothingElseIsBegun) {
  bool begun = false;
  BackgroundWork work(100);
  work.Post(1, [] { throw std::runtime_error("the disk is full"); });
  EXPECT_THROW(work.WaitForAll(), std::runtime_error);
  EXPECT_THROW(work.Post(1, [&] { begun = true; }), std::runtime_error);
  EXPECT_THROW(work.WaitForAll(), std::runtime_error);
  EXPECT_FALSE(begun);
}

TEST(BackgroundWork, DropsWhatHasNotBegunWhenItGoes) {
  std::promise<void> mayEnd;
  bool second = false;
  {
    std::promise<void> begun;
    BackgroundWork work(100);
    work.Post(1, [&, signal = mayEnd.get_future().share()] {
      begun.set_value();
      signal.wait();
    });
    work.Post(1, [&] { second = true; });
    begun.get_future().wait();
    // The first ends while the owner goes.
    std::thread([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      mayEnd.set_value();
    }).detach();
  }
  EXPECT_FALSE(second);
}

}  // namespace
}  // namespace quillbox
