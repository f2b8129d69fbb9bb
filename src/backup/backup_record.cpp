// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/backup_record.h"

#include <algorithm>
#include <utility>

#include "core/copy_tally.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

constexpr const char* kUtf8Mark = "\xEF\xBB\xBF";
constexpr const char* kLineEnd = "\r\n";

bool IsGood(const CopyResult& copy) {
  return copy.end == CopyEnd::Copied;
}

bool IsGood(const KeyExport& made) {
  return made.end == KeyExport::End::Written;
}

std::string OutcomeOf(const CopyResult& copy) {
  switch (copy.end) {
    case CopyEnd::Copied:
      return "copied to " + copy.target.Text();
    case CopyEnd::KeptDamaged:
      return "damaged: what could be read was kept as " + copy.target.Text();
    case CopyEnd::LeftOut:
      return "left out: it cannot be read in full";
    case CopyEnd::NotReplaced:
      return "not replaced: " + copy.target.Text() + " stayed as it was";
    case CopyEnd::Cancelled:
      return "not copied: " + copy.reason;
    case CopyEnd::Failed:
      break;
  }
  return "failed: " + copy.reason;
}

std::string OutcomeOf(const KeyExport& made) {
  switch (made.end) {
    case KeyExport::End::Written:
      return "exported to " + made.file.Text();
    case KeyExport::End::NothingThere:
      return "nothing to export: the key does not exist";
    case KeyExport::End::NotStarted:
      return "not exported: the kind of Windows is not known";
    case KeyExport::End::Failed:
      break;
  }
  return "failed: " + made.reason;
}

template <class Steps>
void AddLines(std::vector<BackupLine>& lines, const Steps& steps, bool good) {
  for (const auto& step : steps) {
    if (IsGood(step) == good) lines.push_back(LineOf(step));
  }
}

/// "21 files copied, 1 not copied"; empty without any.
template <class Steps>
std::string CountsOf(const Steps& steps, const char* one, const char* several, const char* done) {
  if (steps.empty()) return {};
  const auto good = static_cast<std::size_t>(
      std::count_if(steps.begin(), steps.end(), [](const auto& step) { return IsGood(step); }));
  std::string text = CountOf(good, one, several) + done;
  if (good < steps.size()) text += ", " + std::to_string(steps.size() - good) + " not" + done;
  return text;
}

}  // namespace

BackupLine LineOf(const CopyResult& copy) {
  return {copy.source.Name(), std::to_string(copy.size) + " bytes", OutcomeOf(copy), copy.source.Parent().Text()};
}

BackupLine LineOf(const KeyExport& made) {
  return {made.file.Name(), {}, OutcomeOf(made), made.key};
}

BackupLine LineOf(const LeftOut& leftOut) {
  const WinPath file(leftOut.what);
  const bool isFile = leftOut.kind == LeftOut::Kind::NameWithFullStop;
  return {isFile ? file.Name() : leftOut.what, {}, "left out: " + leftOut.why, isFile ? file.Parent().Text() : ""};
}

std::vector<BackupLine> LinesNotDone(const BackupRecord& record) {
  std::vector<BackupLine> lines;
  if (record.endedEarly) lines.push_back({"The backup", {}, "ended early: " + *record.endedEarly, {}});
  AddLines(lines, record.copies, false);
  for (const LeftOut& leftOut : record.leftOut) lines.push_back(LineOf(leftOut));
  AddLines(lines, record.exports, false);
  return lines;
}

std::vector<BackupLine> LinesDone(const BackupRecord& record) {
  std::vector<BackupLine> lines;
  AddLines(lines, record.copies, true);
  AddLines(lines, record.exports, true);
  return lines;
}

std::vector<BackupLine> LinesOf(const BackupRecord& record) {
  std::vector<BackupLine> lines = LinesNotDone(record);
  for (BackupLine& line : LinesDone(record)) lines.push_back(std::move(line));
  return lines;
}

std::string SummaryOf(const BackupRecord& record) {
  std::string text;
  const auto add = [&](const std::string& part) {
    if (!part.empty()) text += (text.empty() ? "" : "; ") + part;
  };
  add(CountsOf(record.copies, " file", " files", " copied"));
  if (!record.leftOut.empty()) add(std::to_string(record.leftOut.size()) + " left out");
  add(CountsOf(record.exports, " registry key", " registry keys", " exported"));
  if (record.endedEarly) add("it ended early");
  return text.empty() ? "Nothing was copied or exported" : text;
}

std::string TextOf(const BackupRecord& record, const std::string& ended, const std::vector<BackupLine>& lines) {
  std::string text = kUtf8Mark + record.command + ", " + ended + kLineEnd + "Backup folder: " + record.folder.Text() +
                     kLineEnd + SummaryOf(record) + "." + kLineEnd;
  for (const BackupLine& line : lines) {
    text += kLineEnd + OneLine(line.what + (line.from.empty() ? "" : ", from " + line.from)) + kLineEnd;
    text += "  " + line.size + (line.size.empty() ? "" : ", ") + OneLine(line.outcome) + kLineEnd;
  }
  return text;
}

}  // namespace quillbox
