// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/export_progress.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace quillbox {
namespace {

using namespace std::chrono_literals;

/// Nothing is said of the time left before.
constexpr auto kFirstGuess = 3s;

}  // namespace

std::string SizeText(std::uint64_t bytes) {
  constexpr double kKilo = 1024;
  constexpr std::array<const char*, 3> kUnits = {"KB", "MB", "GB"};
  double size = static_cast<double>(bytes) / kKilo;
  std::size_t unit = 0;
  while (size >= 1000 && unit + 1 < kUnits.size()) {
    size /= kKilo;
    ++unit;
  }
  // What is there is never shown as nothing.
  if (bytes != 0 && unit == 0) size = std::max(size, 1.0);
  std::array<char, 32> text = {};
  std::snprintf(text.data(), text.size(), unit == 0 || size >= 100 ? "%.0f %s" : "%.1f %s", size, kUnits[unit]);
  return text.data();
}

ExportProgress::ExportProgress(Progress& shown, ExportAmount total, std::chrono::milliseconds shownEvery)
    : shown_(shown), total_(total), shownEvery_(shownEvery) {}

void ExportProgress::BeginStore(const std::string& folder, std::uint64_t size, std::uint64_t messages) {
  folder_ = folder;
  storeSize_ = size;
  storeMessages_ = messages;
  storeDone_ = 0;
  Tick();
}

void ExportProgress::MessageDone() {
  ++storeDone_;
  Tick();
}

void ExportProgress::EndStore() {
  done_.messages += storeDone_;
  done_.bytes += storeSize_;
  storeSize_ = storeDone_ = 0;
}

void ExportProgress::Tick() {
  const auto now = Clock::now();
  if (now < next_) return;
  next_ = now + shownEvery_;
  const double part = storeMessages_ == 0 ? 0 : static_cast<double>(storeDone_) / static_cast<double>(storeMessages_);
  const std::uint64_t bytes =
      std::min(total_.bytes, done_.bytes + static_cast<std::uint64_t>(part * static_cast<double>(storeSize_)));
  if (!shown_.Update(Text(bytes), bytes, total_.bytes)) throw ExportCancelled();
}

std::string ExportProgress::Text(std::uint64_t bytes) const {
  return folder_ + ": " + std::to_string(done_.messages + storeDone_) + " of " + std::to_string(total_.messages) +
         " messages, " + SizeText(bytes) + " of " + SizeText(total_.bytes) + TimeLeft(bytes);
}

std::string ExportProgress::TimeLeft(std::uint64_t bytes) const {
  const auto passed = Clock::now() - start_;
  if (passed < kFirstGuess || bytes == 0) return {};
  const double rate = std::chrono::duration<double>(passed).count() / static_cast<double>(bytes);
  const auto seconds = static_cast<std::uint64_t>(rate * static_cast<double>(total_.bytes - bytes));
  if (seconds < 60) return ", about " + std::to_string(seconds + 1) + " s left";
  return ", about " + std::to_string((seconds + 59) / 60) + " min left";
}

}  // namespace quillbox
