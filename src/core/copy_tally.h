// SPDX-License-Identifier: GPL-3.0-or-later
// What a command says at its end about the files that it was to copy. Only what did not go as asked is said: a command
// that copied everything has its own text for that.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/copy_result.h"

namespace quillbox {

/// "1 file copied", "2 files copied".
std::string CountOf(std::size_t count, const char* one, const char* several);

class CopyTally {
 public:
  /// `notes` are what else was not done, each a text of its own ("1 message store not copied").
  explicit CopyTally(const std::vector<CopyResult>& results, std::vector<std::string> notes = {});

  /// "10 of 12 files copied: 1 kept as damaged, the disk is full"; empty when everything was copied.
  std::string Text() const;
  /// The same, and "12 files copied" when everything was.
  std::string CountText() const;
  /// `first`, and this tally's text after it where there is one.
  std::string After(const std::string& first) const;

 private:
  struct Reason {
    CopyEnd end;
    std::string words;
    std::size_t files;
  };
  void Add(const CopyResult& result);
  std::string TextOf(const Reason& reason) const;

  std::size_t files_ = 0;
  std::size_t copied_ = 0;
  std::vector<Reason> reasons_;  ///< in the order in which they first occurred
  std::vector<std::string> notes_;
};

}  // namespace quillbox
