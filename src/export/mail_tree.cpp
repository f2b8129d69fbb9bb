// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/mail_tree.h"

#include <map>
#include <utility>

#include "export/files_target.h"
#include "export/mbox_target.h"
#include "mail/export_names.h"
#include "platform/status_text.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr const char* kSubfolders = ".sbd";

MailTarget NamesFor(MailFormat format) {
  switch (format) {
    case MailFormat::Mbox:
      return MailTarget::Thunderbird;
    case MailFormat::Maildir:
      return MailTarget::Maildir;
    default:
      return MailTarget::Files;
  }
}

MailFolder Named(const std::string& name) {
  MailFolder folder;
  folder.name = name;
  return folder;
}

std::string NameAt(const MailFolder& folder, MailFormat format) {
  std::string name = FolderNameAt(folder, NamesFor(format));
  // Its folder has files of that ending.
  if (format == MailFormat::Files && UpperCase(name).ends_with(".EML")) name += "_";
  return name;
}

WinPath PlaceBelow(WinPath target, const TargetPath& path, const char* ending) {
  for (std::size_t at = 0; at + 1 < path.size(); ++at) target = target.Join(path[at] + ending);
  return target.Join(path.back());
}

/// A Maildir has its folders side by side.
WinPath MaildirPlace(const WinPath& target, const TargetPath& path) {
  std::string name;
  for (std::size_t at = 1; at < path.size(); ++at) name += "." + path[at];
  const WinPath root = target.Join(path.front());
  return name.empty() ? root : root.Join(name);
}

}  // namespace

std::vector<TargetNames> NamesAtTarget(const FoundFolders& folders, MailFormat format) {
  const std::string top = NameAt(Named(folders.Place().name), format);
  std::map<TargetPath, UniqueNames> taken;
  const auto below = [&](const TargetPath& above, const MailFolder& folder) {
    TargetPath path = above;
    path.push_back(taken[above].Take(NameAt(folder, format), ""));
    return path;
  };
  std::vector<TargetNames> names;
  for (const FoundFolder& found : folders.All()) {
    names.push_back({below(found.parent ? names[*found.parent].folder : TargetPath{top}, found.folder), {}});
  }
  for (TargetNames& name : names) {
    const TargetPath above(name.folder.begin(), name.folder.end() - 1);
    name.recovered = below(above, Named("Recovered from " + name.folder.back()));
  }
  return names;
}

MailTree::MailTree(FileSystem& files, Options options, ReadTick tick)
    : files_(files), options_(std::move(options)), tick_(std::move(tick)) {}

void MailTree::RemoveUnused() {
  for (auto folder = made_.rbegin(); folder != made_.rend(); ++folder) files_.RemoveDirectory(*folder);
  made_.clear();
}

void MailTree::MakeFolders(const WinPath& folder) {
  if (files_.Stat(folder)) return;
  const WinPath above = folder.Parent();
  if (!above.Empty() && above != folder) MakeFolders(above);
  const Status status = files_.MakeDirectory(folder);
  if (status == Status::Success) return made_.push_back(folder);
  if (status != Status::FileExists) {
    throw Error("making a folder", {folder.Text(), {}, {}}, StatusReason(status));
  }
}

WinPath MailTree::PlaceOf(const TargetPath& path) const {
  if (options_.format == MailFormat::Maildir) return MaildirPlace(options_.target, path);
  return PlaceBelow(options_.target, path, options_.format == MailFormat::Mbox ? kSubfolders : "");
}

/// A folder is seen by the mail program when there is a file of its name, even an empty one.
void MailTree::MakeFilesAbove(const TargetPath& path) {
  for (std::size_t size = 1; size < path.size(); ++size) {
    const WinPath file = PlaceOf(TargetPath(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(size)));
    if (!files_.Stat(file)) files_.WriteFile(file, "");
  }
}

std::unique_ptr<FolderTarget> MailTree::Open(const TargetPath& path) {
  const WinPath place = PlaceOf(path);
  switch (options_.format) {
    case MailFormat::Files:
      MakeFolders(place.Parent());
      return std::make_unique<EmlTarget>(files_, place, options_.page, tick_);
    case MailFormat::Maildir:
      for (const char* part : {"cur", "new", "tmp"}) MakeFolders(PlaceOf({path.front()}).Join(part));
      MakeFolders(place);
      return std::make_unique<MaildirTarget>(files_, place, tick_);
    default:
      MakeFolders(place.Parent());
      return std::make_unique<MboxTarget>(files_, place, tick_);
  }
}

void MailTree::Commit(FolderTarget& folder, const TargetPath& path) {
  folder.Commit();
  made_.clear();
  if (options_.format == MailFormat::Mbox) MakeFilesAbove(path);
}

}  // namespace quillbox
