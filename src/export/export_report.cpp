// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/export_report.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "text/local_time.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

constexpr const char* kUtf8Mark = "\xEF\xBB\xBF";
constexpr const char* kLineEnd = "\r\n";
constexpr const char* kReports = "Export Reports";

std::string Count(std::uint64_t count, const char* one, const char* several) {
  return std::to_string(count) + " " + (count == 1 ? one : several);
}
std::string Messages(std::uint64_t count) {
  return Count(count, "message", "messages");
}

struct EndWords {
  MessageEnd end;
  const char* one;
  const char* several;
};
/// The ends that leave something missing, as they follow a number of messages.
constexpr std::array kMissing = {
    EndWords{MessageEnd::Partly, "is there in part only", "are there in part only"},
    EndWords{MessageEnd::NoText, "has no text, which was never downloaded", "have no text, which was never downloaded"},
    EndWords{MessageEnd::Unreadable, "cannot be read", "cannot be read"},
};

const char* WordFor(MessageEnd end) {
  constexpr std::array<const char*, kMessageEnds> kWords = {"written", "there before", "in part only",
                                                            "without text, which was never downloaded", "unreadable"};
  return kWords[static_cast<std::size_t>(end)];
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
  return text;
}

std::uint64_t Recoverable(const FolderResult& folder) {
  std::uint64_t count = 0;
  for (const StoreResult& store : folder.stores) count += store.recoverable;
  return count;
}

/// Messages that are at the target now.
std::uint64_t Arrived(const FolderResult& folder) {
  return folder.fault.empty() ? folder.box.written + folder.box.alreadyThere : 0;
}

/// What doesn't agree in a folder, a clause each.
std::vector<std::string> FaultsOf(const FolderResult& folder) {
  std::vector<std::string> faults;
  if (!folder.fault.empty()) faults.push_back("nothing was written: " + folder.fault);
  const std::uint64_t inIndex = folder.stores.empty() ? 0 : folder.stores.front().inIndex;
  if (folder.fault.empty() && folder.inFolderList.value_or(inIndex) != inIndex) {
    faults.push_back("Folders.dbx counts " + Messages(*folder.inFolderList) + ", the store's index leads to " +
                     std::to_string(inIndex));
  }
  for (const StoreResult& store : folder.stores) {
    const std::string file = store.file.Text();
    if (!store.fault.empty() && folder.fault.empty()) faults.push_back(file + " was not read: " + store.fault);
    if (store.inHeader.value_or(store.inIndex) != store.inIndex) {
      faults.push_back("the header of " + file + " promises " + Messages(*store.inHeader) + ", its index leads to " +
                       std::to_string(store.inIndex));
    }
    if (store.changed) faults.push_back("another program changed " + file + " while it was read");
  }
  for (const EndWords& words : kMissing) {
    const std::uint64_t count = folder.Of(words.end);
    if (count != 0) faults.push_back(Messages(count) + " " + (count == 1 ? words.one : words.several));
  }
  if (!folder.recoveredFault.empty()) faults.push_back("recovered messages were not written: " + folder.recoveredFault);
  return faults;
}

class Report {
 public:
  void Line(const std::string& text) { text_ += OneLine(text) + kLineEnd; }
  void Gap() { text_ += kLineEnd; }
  const std::string& Text() const { return text_; }

 private:
  std::string text_ = kUtf8Mark;
};

std::string Hex(std::uint64_t offset) {
  std::array<char, 24> text = {};
  std::snprintf(text.data(), text.size(), "0x%llX", static_cast<unsigned long long>(offset));
  return text.data();
}

std::string BytesLine(const StoreAccount& account) {
  const auto of = [&](ByteUse use) { return std::to_string(account.Of(use)); };
  return std::to_string(account.Total()) + " bytes: " + of(ByteUse::Messages) + " messages, " + of(ByteUse::Index) +
         " index, " + of(ByteUse::Deleted) + " deleted, " + of(ByteUse::Free) + " free, " + of(ByteUse::Damage) +
         " damaged";
}

void AddStore(Report& report, const StoreResult& store) {
  report.Line("  From " + store.file.Text() + (store.fault.empty() ? ", " + BytesLine(store.account) : ""));
  for (const std::string& damage : store.damage) report.Line("    Damage at " + damage);
  for (const MessageTrouble& trouble : store.troubles) {
    const std::string subject = trouble.subject.empty() ? "" : " \"" + ShortName(trouble.subject) + "\"";
    report.Line("    Message at offset " + Hex(trouble.offset) + subject + " is " + WordFor(trouble.end) + ": " +
                trouble.why);
  }
  std::uint64_t unlisted = 0;
  for (const MessageEnd end : {MessageEnd::Partly, MessageEnd::NoText, MessageEnd::Unreadable})
    unlisted += store.Of(end);
  unlisted -= store.troubles.size();
  if (unlisted != 0) report.Line("    ... and " + Messages(unlisted) + " more");
  if (store.onlyRecords != 0) {
    report.Line("    Of " + Count(store.onlyRecords, "deleted message", "deleted messages") +
                " only subject and sender are left");
  }
}

void AddFolder(Report& report, const FolderResult& folder) {
  report.Gap();
  report.Line(folder.name + ": " + (folder.IsComplete() ? "complete" : "NOT COMPLETE"));
  const std::string listed = folder.inFolderList ? "in Folders.dbx " + std::to_string(*folder.inFolderList) + ", " : "";
  report.Line("  " + listed + "in the index " + std::to_string(folder.InIndex()) + ", written " +
              std::to_string(folder.box.written) + ", there before " + std::to_string(folder.box.alreadyThere) +
              ", read back " + std::to_string(folder.box.readBack));
  if (folder.fault.empty()) report.Line("  In " + folder.box.place.Text());
  for (const std::string& fault : FaultsOf(folder)) report.Line("  ! " + fault);
  if (folder.recovered.written + folder.recovered.alreadyThere != 0) {
    report.Line("  Recovered: " + std::to_string(folder.recovered.written) + " written, " +
                std::to_string(folder.recovered.alreadyThere) + " there before, read back " +
                std::to_string(folder.recovered.readBack) + ", in " + folder.recovered.place.Text());
  } else if (Recoverable(folder) != 0) {
    report.Line("  " + Messages(Recoverable(folder)) + " that the index does not lead to can be recovered");
  }
  for (const StoreResult& store : folder.stores) AddStore(report, store);
}

std::string MissingWords(const ExportResult& result) {
  std::vector<std::string> parts;
  for (const EndWords& words : kMissing) {
    const std::uint64_t count = result.Of(words.end);
    if (count != 0) parts.push_back(std::to_string(count) + " " + (count == 1 ? words.one : words.several));
  }
  return parts.empty() ? "" : " " + Joined(parts) + ".";
}

std::string RecoveryWords(const ExportResult& result) {
  std::uint64_t recoverable = 0;
  std::uint64_t recovered = 0;
  for (const FolderResult& folder : result.folders) {
    const std::uint64_t arrived = folder.recovered.written + folder.recovered.alreadyThere;
    recovered += arrived;
    if (arrived == 0) recoverable += Recoverable(folder);
  }
  std::string text;
  if (recovered != 0) {
    text = "\n\n" + Messages(recovered) + (recovered == 1 ? " is" : " are") +
           " in folders called \"Recovered from ...\": deleted, or damaged, or both.";
  }
  if (recoverable != 0) {
    text += "\n\n" + Messages(recoverable) + " that " + (recoverable == 1 ? "was" : "were") +
            " deleted or lost can be recovered: choose to recover them, and export again.";
  }
  return text;
}

std::string ArrivedWords(const ExportResult& result, const std::string& target) {
  std::uint64_t arrived = 0;
  std::uint64_t before = 0;
  for (const FolderResult& folder : result.folders) {
    arrived += Arrived(folder);
    before += folder.fault.empty() ? folder.box.alreadyThere : 0;
  }
  std::string text = std::to_string(arrived) + " of " + Messages(result.Expected()) + (arrived == 1 ? " is" : " are") +
                     " in " + OneLine(target);
  if (before != 0) text += ", " + std::to_string(before) + " of them from before or from another copy";
  return text + ".";
}

std::uint64_t Incomplete(const ExportResult& result) {
  return static_cast<std::uint64_t>(std::count_if(result.folders.begin(), result.folders.end(),
                                                  [](const FolderResult& folder) { return !folder.IsComplete(); }));
}

std::string NameOfTime(FileTime now) {
  const auto time = LocalTime(UnixSeconds(now).value_or(0)).value_or(std::tm());
  std::array<char, 64> text = {};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d.%02d", time.tm_year + 1900, time.tm_mon + 1,
                time.tm_mday, time.tm_hour, time.tm_min);
  return text.data();
}

}  // namespace

std::string OutcomeOf(const FolderResult& folder) {
  if (!folder.fault.empty()) return "NOT WRITTEN: " + folder.fault;
  const std::string recovered =
      folder.recovered.written == 0 ? "" : ", " + std::to_string(folder.recovered.written) + " recovered";
  if (folder.IsComplete()) {
    const std::string before =
        folder.box.alreadyThere == 0 ? "" : ", " + std::to_string(folder.box.alreadyThere) + " there before";
    return std::to_string(folder.box.written) + " written" + before + recovered;
  }
  return "NOT COMPLETE, " + std::to_string(Arrived(folder)) + " of " + std::to_string(folder.Expected()) + recovered +
         ": " + Joined(FaultsOf(folder));
}

std::string SummaryOf(const ExportResult& result, const std::string& target) {
  if (!result.fault.empty()) return result.fault + ".";
  std::string text;
  switch (result.End()) {
    case ExportEnd::Complete:
      text = "All mail of the folders that you chose was exported, read back and compared.";
      break;
    case ExportEnd::Cancelled:
      text = "The export was cancelled, so mail is missing. Folders that were finished before are whole.";
      break;
    case ExportEnd::Incomplete:
      text = "NOT all mail was exported: " + Count(Incomplete(result), "folder is", "folders are") + " not complete.";
  }
  text += "\n\n" + ArrivedWords(result, target) + MissingWords(result) + RecoveryWords(result);
  if (!result.listFault.empty()) {
    text += "\n\nSomething is wrong with the list of folders (" + OneLine(result.listFault) +
            "), so some may be missing, or not where they were.";
  }
  return text;
}

std::string ReportText(const ExportResult& result, const ReportHead& head) {
  Report report;
  report.Line("Mail of " + head.name + ", exported " + head.ended);
  report.Line("From " + head.source + " to " + head.target);
  report.Gap();
  std::string summary = SummaryOf(result, head.target);
  for (std::size_t at = 0; at < summary.size();) {
    const std::size_t end = std::min(summary.find('\n', at), summary.size());
    if (end != at) report.Line(summary.substr(at, end - at));
    at = end + 1;
  }
  for (const FolderResult& folder : result.folders) AddFolder(report, folder);
  return report.Text();
}

WinPath SaveReport(FileSystem& files, const WinPath& target, FileTime now, const std::string& text) {
  const std::string name = NameOfTime(now);
  const WinPath folder = target.Join(kReports);
  files.MakePath(folder);
  WinPath file = folder.Join(name + ".txt");
  for (int number = 2; files.Stat(file); ++number) {
    file = folder.Join(name + " (" + std::to_string(number) + ").txt");
  }
  files.WriteFile(file, text);
  return file;
}

}  // namespace quillbox
