// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/file_comparison.h"

#include <algorithm>
#include <vector>

namespace quillbox {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

}  // namespace

std::optional<std::uint64_t> FirstDifference(FileReader& a, FileReader& b, const ComparisonTick& tick) {
  std::vector<char> pieceA(kPieceBytes);
  std::vector<char> pieceB(kPieceBytes);
  for (std::uint64_t at = 0;; at += kPieceBytes) {
    tick(at);
    const std::size_t fromA = a.Read(pieceA);
    const std::size_t fromB = b.Read(pieceB);
    const auto end = pieceA.begin() + static_cast<std::ptrdiff_t>(std::min(fromA, fromB));
    const auto differs = std::mismatch(pieceA.begin(), end, pieceB.begin());
    if (differs.first != end || fromA != fromB) {
      return at + static_cast<std::uint64_t>(differs.first - pieceA.begin());
    }
    if (fromA < kPieceBytes) return std::nullopt;
  }
}

}  // namespace quillbox
