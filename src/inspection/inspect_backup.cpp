// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspection/inspect_backup.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "core/copy_tally.h"
#include "core/file_helpers.h"
#include "inspection/file_check.h"
#include "text/error.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr const char* kFolderList = "Folders.dbx";

class Run {
 public:
  Run(FileSystem& files, const CodePage& page, const InspectionRequest& request, Progress& progress)
      : files_(files), page_(page), request_(request), progress_(progress, request.shownEvery) {}

  Inspection Do() {
    result_.folder = request_.folder;
    result_.isCompared = request_.against != nullptr;
    try {
      List();
      CheckAll();
      FindMissing();
      if (request_.against) CompareAll();
    } catch (const InspectionCancelled&) {
      result_.cancelled = true;
    }
    return std::move(result_);
  }

 private:
  void List();
  void AddFile(const WinPath& path);
  void FindLinkedFolders(const std::set<std::string>& visited);
  void CheckAll();
  void FindMissing();
  void CompareAll();
  bool HasFile(const WinPath& path) const;

  /// What a Folders.dbx names.
  struct NamedStores {
    WinPath folder;
    std::vector<MailFolder> folders;
  };

  FileSystem& files_;
  const CodePage& page_;
  const InspectionRequest& request_;
  InspectionProgress progress_;
  Inspection result_;
  std::vector<NamedStores> lists_;
};

void Run::List() {
  const auto walk = files_.Walk(request_.folder, "*");
  std::set<std::string> visited;
  progress_.Begin("Looking for files", 0);
  for (WalkStep step; walk->Step(step);) {
    progress_.Advance(0);
    visited.insert(step.folder);
    for (const std::string& name : step.files) AddFile(WinPath(step.folder).Join(name));
    for (std::string& unread : step.unread) result_.notSeen.push_back(OneLine(unread));
  }
  FindLinkedFolders(visited);
  std::sort(result_.files.begin(), result_.files.end(), [](const InspectedFile& a, const InspectedFile& b) {
    const auto key = [](const InspectedFile& file) {
      return std::pair(UpperCase(file.path.Parent().Text()), UpperCase(file.path.Name()));
    };
    return key(a) < key(b);
  });
}

void Run::AddFile(const WinPath& path) {
  const auto entry = files_.Stat(path);
  result_.files.push_back({.path = path, .size = entry ? entry->size : 0});
}

/// A walk passes over links to folders without a word.
void Run::FindLinkedFolders(const std::set<std::string>& visited) {
  for (const std::string& folder : visited) {
    progress_.Advance(0);
    const auto finder = files_.Find(WinPath(folder).Join("*"));
    while (const auto entry = finder->Next()) {
      if (!entry->isDirectory || entry->name == "." || entry->name == "..") continue;
      const std::string below = WinPath(folder).Join(entry->name).Text() + "\\";
      const bool isNoted = std::any_of(result_.notSeen.begin(), result_.notSeen.end(), [&](const std::string& line) {
        return line.starts_with(OneLine(below.substr(0, below.size() - 1)));
      });
      if (visited.count(below) == 0 && !isNoted) {
        result_.notSeen.push_back(OneLine(below) + ": it is a link to another folder");
      }
    }
  }
}

void Run::CheckAll() {
  std::uint64_t total = 0;
  for (const InspectedFile& file : result_.files) {
    total += file.size + (request_.against ? DiskComparison::BytesFor(file) : 0);
  }
  progress_.SetTotal(total);
  const FileCheckTools tools{files_, page_, progress_};
  for (InspectedFile& file : result_.files) {
    progress_.Begin("Checking " + OneLine(file.path.Name()), file.size);
    FileFindings findings = CheckFile(tools, file);
    if (file.kind == FileKind::FolderList) lists_.push_back({file.path.Parent(), std::move(findings.folders)});
  }
}

bool Run::HasFile(const WinPath& path) const {
  return std::any_of(result_.files.begin(), result_.files.end(),
                     [&](const InspectedFile& file) { return EqualIgnoreCase(file.path.Text(), path.Text()); });
}

void Run::FindMissing() {
  for (const auto& list : lists_) {
    for (const MailFolder& folder : list.folders) {
      const WinPath path = list.folder.Join(folder.file);
      if (folder.file.empty() || HasFile(path)) continue;
      std::string why = std::string(kFolderList) + " has it for the folder " + OneLine(folder.name);
      if (folder.messages) why += ", with " + CountOf(*folder.messages, " message", " messages");
      result_.missing.push_back({path, std::move(why)});
    }
  }
  for (std::size_t at = 0; at < result_.files.size(); ++at) {
    const InspectedFile& file = result_.files[at];
    if (file.kind != FileKind::MessageStore) continue;
    const WinPath list = file.path.Parent().Join(kFolderList);
    const bool isKnown = std::any_of(result_.missing.begin(), result_.missing.end(),
                                     [&](const MissingFile& missing) { return missing.path == list; });
    if (!HasFile(list) && !isKnown) {
      result_.missing.push_back({list, "there are message stores, but not the list of their folders"});
    }
  }
}

void Run::CompareAll() {
  DiskComparison comparison(*request_.against, page_, progress_);
  for (InspectedFile& file : result_.files) {
    progress_.Begin("Comparing " + OneLine(file.path.Name()), DiskComparison::BytesFor(file));
    comparison.Compare(file);
  }
  result_.notInBackup = comparison.Missing(result_);
}

}  // namespace

Inspection InspectBackup(FileSystem& files, const CodePage& page, const InspectionRequest& request,
                         Progress& progress) {
  if (!DirExists(files, request.folder)) {
    throw Error("checking a backup", {request.folder.Text(), {}, {}}, "it " + WhyNoFolder(files, request.folder));
  }
  return Run(files, page, request, progress).Do();
}

}  // namespace quillbox
