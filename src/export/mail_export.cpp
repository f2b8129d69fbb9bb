// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/mail_export.h"

#include <algorithm>
#include <utility>

#include "export/export_progress.h"
#include "export/store_export.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr const char* kExporting = "exporting messages";
constexpr const char* kCancelled = "the export was cancelled";

/// The folder's name with those above it.
std::string ShownName(const FoundFolders& folders, std::size_t at) {
  std::string name;
  for (std::optional<std::size_t> next = at; next; next = folders.All()[*next].parent) {
    name = folders.All()[*next].folder.name + (name.empty() ? "" : " > ") + name;
  }
  return name;
}

class MailExport {
 public:
  MailExport(FileSystem& files, const FoundFolders& folders, const CodePage& page, const ExportRequest& request,
             Progress& progress)
      : folders_(folders),
        request_(request),
        names_(NamesAtTarget(folders, request.format)),
        progress_(progress, AmountOf(folders, request), request.shownEvery),
        tree_(files, {request.target, request.format, page}, [this] { progress_.Tick(); }),
        store_(files, page, progress_) {}

  ExportResult Run();

 private:
  static ExportAmount AmountOf(const FoundFolders& folders, const ExportRequest& request);
  bool IsMerged(std::size_t at) const;
  FolderResult ResultFor(std::size_t at) const;
  FolderResult Export(std::size_t at);
  void WriteFolder(std::size_t at, FolderResult& result);
  void ReadStores(std::size_t at, FolderResult& result, FolderTarget& box);
  void FinishBox(FolderTarget& box, BoxResult& result, const TargetPath& path);
  void FinishRecovered(std::size_t at, FolderResult& result);

  const FoundFolders& folders_;
  const ExportRequest& request_;
  std::vector<TargetNames> names_;
  ExportProgress progress_;
  MailTree tree_;
  StoreExport store_;
  std::unique_ptr<FolderTarget> recovered_;  ///< of the folder that is being exported
  bool cancelled_ = false;
};

ExportAmount MailExport::AmountOf(const FoundFolders& folders, const ExportRequest& request) {
  ExportAmount amount;
  for (const std::size_t at : request.chosen) {
    amount.messages += folders.All()[at].messages;
    amount.bytes += folders.All()[at].size;
  }
  return amount;
}

/// A copy goes to the folder that it is a copy of, when that is exported as well.
bool MailExport::IsMerged(std::size_t at) const {
  const auto original = folders_.All()[at].copyOf;
  return request_.mergeCopies && original &&
         std::binary_search(request_.chosen.begin(), request_.chosen.end(), *original);
}

FolderResult MailExport::ResultFor(std::size_t at) const {
  const FoundFolder& found = folders_.All()[at];
  FolderResult result;
  result.at = at;
  result.name = ShownName(folders_, at);
  if (found.folder.messages) result.inFolderList = *found.folder.messages;
  result.box.place = tree_.PlaceOf(names_[at].folder);
  result.recovered.place = tree_.PlaceOf(names_[at].recovered);
  const auto add = [&](const FoundFolder& folder) {
    if (!folder.store) return;
    result.stores.emplace_back();
    result.stores.back().file = *folder.store;
  };
  add(found);
  for (const std::size_t other : request_.chosen) {
    if (IsMerged(other) && folders_.All()[other].copyOf == at) add(folders_.All()[other]);
  }
  return result;
}

ExportResult MailExport::Run() {
  ExportResult result;
  result.listFault = folders_.ListFault();
  for (const std::size_t at : request_.chosen) {
    if (!IsMerged(at)) result.folders.push_back(Export(at));
  }
  result.cancelled = cancelled_;
  return result;
}

FolderResult MailExport::Export(std::size_t at) {
  FolderResult result = ResultFor(at);
  try {
    if (cancelled_) throw ExportCancelled();
    WriteFolder(at, result);
    FinishRecovered(at, result);
  } catch (const Error& error) {
    result.fault = Describe(error);
  } catch (const ExportCancelled&) {
    result.fault = kCancelled;
    cancelled_ = true;
  }
  recovered_.reset();
  tree_.RemoveUnused();
  if (!result.fault.empty()) result.box.Forget();
  if (!result.fault.empty() || !result.recoveredFault.empty()) result.recovered.Forget();
  return result;
}

void MailExport::WriteFolder(std::size_t at, FolderResult& result) {
  const FoundFolder& found = folders_.All()[at];
  if (!found.store && !found.folder.file.empty() && found.folder.messages.value_or(0) != 0) {
    throw Error(kExporting, {folders_.Place().folder.Join(found.folder.file).Text(), {}, {}}, "there is no such file");
  }
  const auto box = tree_.Open(names_[at].folder);
  ReadStores(at, result, *box);
  FinishBox(*box, result.box, names_[at].folder);
}

void MailExport::ReadStores(std::size_t at, FolderResult& result, FolderTarget& box) {
  MessageSet merged;
  StoreExport::Places places{
      .box = box,
      .boxResult = result.box,
      .recovered = [&]() -> FolderTarget& {
        if (!recovered_) recovered_ = tree_.Open(names_[at].recovered);
        return *recovered_;
      },
      .recoveredResult = result.recovered,
      .merged = result.stores.size() > 1 ? &merged : nullptr,
  };
  for (StoreResult& store : result.stores) {
    store_.Run(store, result.name, places, request_.recover);
    // A copy that cannot be read does not keep the folder's own messages from the target.
    if (!places.isCopy && !store.fault.empty()) throw Error(kExporting, {store.file.Text(), {}, {}}, store.fault);
    places.isCopy = true;
  }
}

/// Nothing takes its place that does not come back as it was written.
void MailExport::FinishBox(FolderTarget& box, BoxResult& result, const TargetPath& path) {
  result.readBack = box.ReadBack();
  if (result.readBack != result.written) {
    throw Error("reading back what was written", {result.place.Text(), {}, {}},
                "only " + std::to_string(result.readBack) + " of " + std::to_string(result.written) +
                    " messages are as they were written");
  }
  tree_.Commit(box, path);
}

void MailExport::FinishRecovered(std::size_t at, FolderResult& result) {
  if (!recovered_) return;
  try {
    FinishBox(*recovered_, result.recovered, names_[at].recovered);
  } catch (const Error& error) {
    result.recoveredFault = Describe(error);
  } catch (const ExportCancelled&) {
    // The folder itself has its place already.
    result.recoveredFault = kCancelled;
    cancelled_ = true;
  }
}

bool IsAtOrBelow(const WinPath& path, const WinPath& folder) {
  return StartsWithIgnoreCase(WithBackslash(path.Text()), WithBackslash(folder.Text()));
}

}  // namespace

std::optional<std::string> TargetFault(const FoundFolders& folders, const WinPath& target) {
  if (!target.IsAbsolute())
    return "it is not a full path of the disk, such as D:\\Mail; \"Browse...\" takes folders of this computer, too";
  if (IsAtOrBelow(target, folders.Place().folder)) return "it is the folder that the mail is read from, or below it";
  return std::nullopt;
}

ExportResult ExportMail(FileSystem& files, const FoundFolders& folders, const CodePage& page,
                        const ExportRequest& request, Progress& progress) {
  ExportResult result;
  if (const auto fault = TargetFault(folders, request.target)) {
    result.fault = "nothing can be exported to " + request.target.Text() + ": " + *fault;
    return result;
  }
  return MailExport(files, folders, page, request, progress).Run();
}

}  // namespace quillbox
