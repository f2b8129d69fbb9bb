// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspection/inspection_text.h"

#include <algorithm>
#include <array>

#include "core/copy_tally.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

constexpr const char* kUtf8Begin = "\xEF\xBB\xBF";
constexpr const char* kLineEnd = "\r\n";
constexpr std::array<const char*, kFileKinds> kKinds = {
    "Message store", "List of folders", "Store without messages", "Message store of Outlook Express 4",
    "Address book",  "Registry file",   "Registry hive",          "Registry of Windows 95, 98 or Me",
    "Other file",
};

std::string OwnState(const InspectedFile& file) {
  const std::string contents = file.contents.empty() ? "" : ", " + file.contents;
  switch (file.state) {
    case CheckState::NotReached:
      return "not looked at";
    case CheckState::Whole:
      return "whole" + contents;
    case CheckState::Damaged:
      return "DAMAGED" + contents + ", " + CountOf(file.faultCount, " fault", " faults") + ": " + file.faults.front();
    case CheckState::NotReadable:
      return "NOT READABLE: " + file.faults.front();
    case CheckState::NotChecked:
      break;
  }
  return file.faults.empty() ? "read, its content is not checked" : "not checked: " + file.faults.front();
}

std::string DiskState(const InspectedFile& file) {
  switch (file.onDisk) {
    case DiskMatch::NotAsked:
      return {};
    case DiskMatch::Equal:
      return "as on the disk";
    case DiskMatch::Differs:
      return "DIFFERENT: " + file.difference;
    case DiskMatch::NotOnDisk:
      return "not on the disk any more: " + file.difference;
    case DiskMatch::NotCompared:
      break;
  }
  return "not compared: " + file.difference;
}

std::string FilesAre(std::size_t count, const char* what) {
  return CountOf(count, " file is ", " files are ") + what;
}

/// The sentences on the backup by itself.
std::string OwnSummary(const Inspection& inspection) {
  const std::size_t whole = inspection.Count(CheckState::Whole);
  const std::size_t bad = inspection.Count(CheckState::Damaged) + inspection.Count(CheckState::NotReadable);
  const std::size_t reached = inspection.Count(CheckState::NotReached);
  std::string text;
  if (inspection.cancelled) text = "The check was cancelled, so it does not say whether the backup is whole. ";
  switch (inspection.End()) {
    case InspectionEnd::NothingFound:
      text += "There is no message store, address book or registry file that could be checked.";
      break;
    case InspectionEnd::Whole:
      text += whole == 1 ? "The one file that can be checked is whole."
                         : "All " + std::to_string(whole) + " files that can be checked are whole.";
      break;
    case InspectionEnd::NotWhole:
      text += "The backup is NOT whole. " + FilesAre(whole, "whole");
      if (bad > 0) text += ", " + FilesAre(bad, "NOT");
      text += ".";
      break;
    case InspectionEnd::NotAllSeen:
    case InspectionEnd::Cancelled:
      text += FilesAre(whole, "whole");
      if (bad > 0) text += ", " + FilesAre(bad, "NOT");
      if (reached > 0) text += ", " + FilesAre(reached, "not looked at");
      text += ".";
      break;
  }
  if (!inspection.missing.empty()) {
    text += " " + CountOf(inspection.missing.size(), " file is", " files are") + " MISSING.";
  }
  if (const std::size_t others = inspection.Count(CheckState::NotChecked); others > 0) {
    text += " " + FilesAre(others, "of another kind, whose content was not checked") + ".";
  }
  if (!inspection.notSeen.empty()) {
    text += " " + CountOf(inspection.notSeen.size(), " folder was", " folders were") + " NOT looked into.";
  }
  return text;
}

/// Those on the comparison; empty without one.
std::string DiskSummary(const Inspection& inspection) {
  if (inspection.Comparison() == ComparisonEnd::NotAsked) return {};
  if (inspection.Comparison() == ComparisonEnd::Equal) return "All of it is as on the disk.";
  std::string text = "Against the disk: " + FilesAre(inspection.Count(DiskMatch::Equal), "the same");
  const auto add = [&](DiskMatch match, const char* what) {
    if (const std::size_t count = inspection.Count(match); count > 0) text += ", " + std::to_string(count) + what;
  };
  add(DiskMatch::Differs, " DIFFERENT");
  add(DiskMatch::NotOnDisk, " not on the disk any more");
  add(DiskMatch::NotCompared, " not compared");
  add(DiskMatch::NotAsked, " not reached");
  if (const std::size_t missing = inspection.MissingOfDisk(); missing > 0) {
    text += "; " + std::to_string(missing) + " of the disk NOT in the backup";
  }
  return text + ".";
}

}  // namespace

const char* KindText(FileKind kind) {
  return kKinds.at(static_cast<std::size_t>(kind));
}

std::string StateText(const InspectedFile& file) {
  const std::string disk = DiskState(file);
  return OneLine(OwnState(file) + (disk.empty() ? "" : "; " + disk));
}

std::string NameIn(const Inspection& inspection, const WinPath& path) {
  const std::string folder = WithBackslash(inspection.folder.Text());
  const std::string& text = path.Text();
  return OneLine(text.starts_with(folder) ? text.substr(folder.size()) : text);
}

std::vector<std::string> LinesOf(const Inspection& inspection, const InspectedFile& file) {
  std::vector<std::string> lines = {
      NameIn(inspection, file.path) + " (" + KindText(file.kind) + ", " + std::to_string(file.size) + " bytes)",
      "  " + StateText(file)};
  for (std::size_t at = 1; at < file.faults.size(); ++at) lines.push_back("  " + OneLine(file.faults[at]));
  if (file.faultCount > std::max<std::size_t>(file.faults.size(), 1)) {
    lines.push_back("  and " + std::to_string(file.faultCount - file.faults.size()) + " more");
  }
  return lines;
}

std::vector<NotThere> AllNotThere(const Inspection& inspection) {
  std::vector<NotThere> all;
  for (const MissingFile& file : inspection.missing)
    all.push_back({NameIn(inspection, file.path), "MISSING", file.why});
  for (const NotInBackup& part : inspection.notInBackup) {
    all.push_back({part.what, part.isUsual ? "Left out" : "NOT in the backup", part.why});
  }
  for (const std::string& folder : inspection.notSeen) all.push_back({folder, "NOT looked into", ""});
  return all;
}

std::vector<std::string> MissingLines(const Inspection& inspection) {
  std::vector<std::string> lines;
  for (const NotThere& part : AllNotThere(inspection)) {
    lines.push_back(part.verdict + ": " + part.name + (part.why.empty() ? "" : ": " + part.why));
  }
  return lines;
}

std::string SummaryOf(const Inspection& inspection) {
  const std::string disk = DiskSummary(inspection);
  return OwnSummary(inspection) + (disk.empty() ? "" : "\n\n" + disk);
}

std::string ReportText(const Inspection& inspection, const std::string& ended) {
  std::string summary = SummaryOf(inspection);
  if (const std::size_t at = summary.find("\n\n"); at != std::string::npos) summary.replace(at, 2, kLineEnd);
  std::string text = kUtf8Begin + std::string("Check of the backup ") + OneLine(inspection.folder.Text()) + ", " +
                     ended + kLineEnd + summary + kLineEnd;
  text += std::string("A registry file that was cut off between two of its keys looks whole by itself; only a ") +
          "comparison with the disk shows that." + kLineEnd;
  const std::vector<std::string> missing = MissingLines(inspection);
  if (!missing.empty()) text += kLineEnd;
  for (const std::string& line : missing) text += line + kLineEnd;
  for (const InspectedFile& file : inspection.files) {
    text += kLineEnd;
    for (const std::string& line : LinesOf(inspection, file)) text += line + kLineEnd;
  }
  return text;
}

}  // namespace quillbox
