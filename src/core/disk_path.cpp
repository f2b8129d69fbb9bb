// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/disk_path.h"

#include <algorithm>

#include "core/identity_catalogue.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

std::string Root(const WinPath& path) {
  return {path.Drive(), ':', '\\'};
}

std::string Reason(const PathRefusal& refusal) {
  switch (refusal.fault) {
    case PathFault::NotAttached:
      return "drive " + Root(refusal.path).substr(0, 2) + " is not attached";
    case PathFault::NoSuchDrive:
      return "that Windows has no such drive";
    case PathFault::NotFull:
      return "it is not a full path";
    case PathFault::OnNetwork:
      break;
  }
  return "it is on another computer";
}

std::variant<WinPath, PathFault> Decide(Drives& drives, std::string text) {
  std::replace(text.begin(), text.end(), '/', '\\');
  const WinPath path(text);
  const bool isShare = text.starts_with("\\\\");
  if (isShare && !drives.ReachesShares()) return PathFault::OnNetwork;
  if (path.Drive() != 0 && !drives.IsOwnDrive(path.Drive())) {
    const bool isMissing = drives.TypeOfDrive(WinPath(Root(path))) == DriveType::NoRoot;
    return isMissing ? PathFault::NotAttached : PathFault::NoSuchDrive;
  }
  if (!isShare && !path.IsAbsolute()) return PathFault::NotFull;
  return Resolve(path, path);
}

DiskPath Offered(Drives& drives, WinPath path, RegistryValueName source) {
  if (path.IsAbsolute()) drives.OfferToAttach(path);
  return {drives, std::move(path), std::move(source)};
}

}  // namespace

std::string PathRefusal::Clause() const {
  std::string words = "the path \"" + OneLine(path.Text()) + "\"";
  if (source) {
    const std::string value = source->value.empty() ? "the default value" : "the value \"" + source->value + "\"";
    words += ", which the disk's registry names in " + value + " of " + OneLine(FullName(source->key)) + ",";
  }
  return words + " is not used: " + Reason(*this);
}

std::string PathRefusal::Sentence() const {
  std::string words = Clause() + ".";
  words[0] = AsciiUpper(words[0]);
  return words;
}

DiskPath::DiskPath(Drives& drives, WinPath path, std::optional<RegistryValueName> source) : stored_(std::move(path)) {
  auto decided = Decide(drives, stored_.Text());
  if (auto* usable = std::get_if<WinPath>(&decided)) {
    result_ = std::move(*usable);
  } else {
    result_ = PathRefusal{stored_, std::get<PathFault>(decided), std::move(source)};
  }
}

DiskPath CheckStoreFolder(Drives& drives, const std::string& userId, WinPath folder) {
  return Offered(drives, std::move(folder), {CurrentUser(IdentitySettingsKey(userId)), "Store Root"});
}

DiskPath CheckAddressBook(Drives& drives, WinPath file, const std::string& value) {
  return Offered(drives, std::move(file), {CurrentUser(kAddressBookKey), value});
}

}  // namespace quillbox
