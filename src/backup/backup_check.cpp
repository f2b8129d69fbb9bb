// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/backup_check.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "core/copy_tally.h"
#include "core/file_comparison.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

struct Cancelled {};

/// What a check of one file found.
struct Finding {
  bool isGood;
  std::string outcome;
};

Finding Check(FileSystem& files, const CopyResult& copy, Progress& progress) try {
  const auto source = files.OpenForReading(copy.source);
  const auto target = files.OpenForReading(copy.target);
  const auto offset = FirstDifference(*source, *target, [&](std::uint64_t done) {
    if (!progress.Update(copy.target.Name(), done, copy.size)) throw Cancelled{};
  });
  if (!offset) return {true, "the same as " + copy.target.Text()};
  return {false, "DIFFERENT from " + copy.target.Text() + ", first at offset " + std::to_string(*offset)};
} catch (const Error& error) {
  return {false, "NOT READABLE: " + Describe(error)};
}

Finding Check(FileSystem& files, const KeyExport& made, Progress& progress) try {
  if (!progress.Update(made.file.Name(), 0, 0)) throw Cancelled{};
  std::vector<char> piece(kPieceBytes);
  std::uint64_t size = 0;
  const auto file = files.OpenForReading(made.file);
  for (std::size_t got = piece.size(); got == piece.size(); size += got) got = file->Read(piece);
  return {true, "readable, " + std::to_string(size) + " bytes: " + made.file.Text()};
} catch (const Error& error) {
  return {false, "NOT READABLE: " + Describe(error)};
}

}  // namespace

std::string BackupCheck::Summary() const {
  std::string text = CountOf(same, " copy is", " copies are") + " the same as the source";
  if (different > 0) text += ", " + CountOf(different, " is", " are") + " NOT";
  if (readable + unreadable > 0) {
    text += "; " + CountOf(readable, " registry file", " registry files") + " can be read";
    if (unreadable > 0) text += ", " + std::to_string(unreadable) + " can NOT";
  }
  return cancelled ? "Check cancelled: " + text : text;
}

BackupCheck CheckBackup(FileSystem& files, const BackupRecord& record, Progress& progress) {
  BackupCheck check;
  std::vector<BackupLine> good;
  std::vector<BackupLine> notDone = LinesNotDone(record);
  const auto add = [&](BackupLine line, Finding finding) {
    line.outcome = std::move(finding.outcome);
    (finding.isGood ? good : check.lines).push_back(std::move(line));
    return finding.isGood;
  };
  try {
    for (const CopyResult& copy : record.copies) {
      if (copy.end != CopyEnd::Copied) continue;
      ++(add(LineOf(copy), Check(files, copy, progress)) ? check.same : check.different);
    }
    for (const KeyExport& made : record.exports) {
      if (made.end != KeyExport::End::Written) continue;
      ++(add(LineOf(made), Check(files, made, progress)) ? check.readable : check.unreadable);
    }
  } catch (const Cancelled&) {
    check.cancelled = true;
  }
  for (auto* lines : {&notDone, &good}) std::move(lines->begin(), lines->end(), std::back_inserter(check.lines));
  return check;
}

}  // namespace quillbox
