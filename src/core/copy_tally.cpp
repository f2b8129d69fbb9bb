// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/copy_tally.h"

#include <algorithm>
#include <utility>

namespace quillbox {
namespace {

std::string Joined(const std::string& first, const char* between, const std::string& second) {
  return first.empty() || second.empty() ? first + second : first + between + second;
}

/// The words that follow the number of files that were not copied as asked. Null where the result has its own reason.
const char* WordsOf(CopyEnd end) {
  switch (end) {
    case CopyEnd::KeptDamaged:
      return "kept as damaged";
    case CopyEnd::LeftOut:
      return "left out as damaged";
    case CopyEnd::NotReplaced:
      return "not replaced";
    case CopyEnd::Copied:
    case CopyEnd::Cancelled:
    case CopyEnd::Failed:
      break;
  }
  return nullptr;
}

}  // namespace

std::string CountOf(std::size_t count, const char* one, const char* several) {
  return std::to_string(count) + (count == 1 ? one : several);
}

CopyTally::CopyTally(const std::vector<CopyResult>& results, std::vector<std::string> notes)
    : notes_(std::move(notes)) {
  for (const CopyResult& result : results) Add(result);
}

void CopyTally::Add(const CopyResult& result) {
  ++files_;
  if (result.end == CopyEnd::Copied) {
    ++copied_;
    return;
  }
  const char* words = WordsOf(result.end);
  const std::string text = words != nullptr ? words : result.reason;
  const auto same = std::find_if(reasons_.begin(), reasons_.end(), [&](const Reason& r) { return r.words == text; });
  if (same == reasons_.end()) {
    reasons_.push_back({result.end, text, 1});
  } else {
    ++same->files;
  }
}

std::string CopyTally::TextOf(const Reason& reason) const {
  const std::string number = std::to_string(reason.files);
  if (WordsOf(reason.end) != nullptr) return number + " " + reason.words;
  return reasons_.size() > 1 && reason.files > 1 ? reason.words + " (" + number + " files)" : reason.words;
}

std::string CopyTally::Text() const {
  std::string text;
  if (copied_ < files_) {
    std::string reasons;
    for (const Reason& reason : reasons_) reasons = Joined(reasons, ", ", TextOf(reason));
    text = std::to_string(copied_) + " of " + std::to_string(files_) + " files copied: " + reasons;
  }
  for (const std::string& note : notes_) text = Joined(text, "; ", note);
  return text;
}

std::string CopyTally::CountText() const {
  const std::string text = Text();
  return text.empty() ? CountOf(files_, " file copied", " files copied") : text;
}

std::string CopyTally::After(const std::string& first) const {
  return Joined(first, "; ", Text());
}

}  // namespace quillbox
