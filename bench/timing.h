// SPDX-License-Identifier: GPL-3.0-or-later
// What the benchmarks share: how long a piece of work takes, and the middle of several runs.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

namespace quillbox {

inline double Milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

inline double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
  return values[values.size() / 2];
}

}  // namespace quillbox
