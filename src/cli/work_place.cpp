// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/work_place.h"

#include <algorithm>

#include "core/file_helpers.h"
#include "host/host_names.h"
#include "host/host_paths.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

OfflineOptions OptionsFor(const DiskOptions& options, OpenedDisk::Use use) {
  OfflineOptions offline;
  offline.folder = options.folder;
  offline.profile = options.profile;
  offline.drives = options.drives;
  offline.readOnly = use == OpenedDisk::Use::Look;
  offline.logEcho = LogEcho::None;
  offline.salvage = options.salvage ? Salvage::Agreed : Salvage::Ask;
  return offline;
}

}  // namespace

OpenedDisk::OpenedDisk(Console& console, const DiskOptions& options, Use use)
    : dialogs_(console, options.salvage), platform(OptionsFor(options, use), dialogs_) {
  for (const std::string& warning : platform.Warnings()) console.Note("warning: " + warning);
  session.GetInputPaths();
  const LoadEnd& end = session.Catalogue().end;
  if (end.kind == LoadEnd::Kind::Failed) console.NotDone("the identities could not all be read: " + end.failure);
  if (end.kind == LoadEnd::Kind::NoIdentitiesKey) console.Note("this profile has no identities");
  const std::string description = platform.SystemDescription();
  if (description.find("(damaged in ") != std::string::npos) {
    console.NotDone(description);
  } else if (platform.UsesPrivateCopy()) {
    console.Note(description);
  }
}

std::vector<IdentityInfo> OpenedDisk::Chosen(const std::vector<std::string>& names) const {
  const std::vector<IdentityInfo>& all = session.Catalogue().identities;
  if (names.empty()) return all;
  std::vector<IdentityInfo> chosen;
  for (const std::string& name : names) {
    const auto isMeant = [&](const IdentityInfo& identity) {
      return EqualIgnoreCase(identity.username, name) || EqualIgnoreCase(identity.userId, name);
    };
    const auto found = std::find_if(all.begin(), all.end(), isMeant);
    if (found == all.end()) throw Error("choosing identities", {name, {}, {}}, "there is no such identity");
    if (std::count_if(all.begin(), all.end(), isMeant) > 1) {
      throw Error("choosing identities", {name, {}, {}}, "several identities have this name; give the {USER_ID}");
    }
    const auto isSame = [&](const IdentityInfo& identity) { return identity.userId == found->userId; };
    if (std::none_of(chosen.begin(), chosen.end(), isSame)) chosen.push_back(*found);
  }
  return chosen;
}

WinPath HostFiles::PathOf(const HostPath& path) {
  WinPath seen("Z:\\");
  for (const std::string& name : path.Names()) seen = seen.Join(WindowsName(name));
  return seen;
}

std::vector<std::string> FilesLike(FileSystem& files, const WinPath& pattern) {
  std::vector<std::string> names = FileList(files, pattern);
  std::erase(names, std::string());
  return names;
}

HostPath GivenPath(const std::string& text) {
  return Absolute(HostPath(text));
}

}  // namespace quillbox
