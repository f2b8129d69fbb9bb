// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/store_restore.h"

#include <algorithm>

#include "backup/identity_backup.h"
#include "core/file_helpers.h"
#include "core/message_store.h"
#include "platform/status_text.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

bool Holds(const std::vector<std::string>& usernames, const std::string& username) {
  return std::any_of(usernames.begin(), usernames.end(),
                     [&](const std::string& other) { return EqualIgnoreCase(other, username); });
}

/// The identity in words that tell it from others of its name.
std::string NameOf(const IdentityInfo& identity) {
  return "\"" + OneLine(identity.username) + "\" " + OneLine(identity.userId);
}

}  // namespace

void StoreRestore::RestoreAll(const WinPath& backupFolder, const IdentityCatalogue& catalogue,
                              OverwriteSetting overwrite) {
  folder_.Enter(backupFolder);
  const std::vector<std::string> shared = TellSharedFolders(backupFolder, catalogue);
  std::vector<std::string> skipped;
  for (const IdentityInfo& identity : catalogue.identities) {
    std::optional<Skipped> reason;
    if (const auto fault = FileNameFault(identity.username)) {
      reason = Skipped{"no folder can have its name: " + fault->reason};
    } else if (DirExists(platform_.GetFiles(), WinPath(identity.username))) {
      const bool mayReplace = overwrite && !Holds(shared, identity.username);
      reason = Restore(identity, backupFolder.Join(identity.username), mayReplace);
      folder_.Enter(backupFolder);
    }
    if (!reason) continue;
    skipped.push_back(NameOf(identity) + ": " + reason->reason);
    copier_.LeaveOut({LeftOut::Kind::MessageStore, "the messages of " + NameOf(identity), reason->reason});
  }
  TellSkipped(skipped);
}

std::vector<std::string> StoreRestore::TellSharedFolders(const WinPath& backupFolder,
                                                         const IdentityCatalogue& catalogue) {
  std::vector<std::string> shared = SharedUsernames(catalogue.identities);
  for (const std::string& username : shared) {
    if (FileNameFault(username) || !DirExists(platform_.GetFiles(), WinPath(username))) continue;
    platform_.GetDialogs().Show({.text = "Several identities are named \"" + OneLine(username) +
                                         "\", and nothing says whose files the folder \"" +
                                         OneLine(backupFolder.Join(username).Text()) +
                                         "\" holds. They are restored to each of them; before a file is replaced you "
                                         "are asked.",
                                 .icon = MessageIcon::Exclamation});
  }
  return shared;
}

std::optional<StoreRestore::Skipped> StoreRestore::Restore(const IdentityInfo& identity, const WinPath& from,
                                                           OverwriteSetting overwrite) {
  const Status entered = platform_.GetDrives().SetCurrentDirectory(from);
  if (entered != Status::Success) {
    return Skipped{"the folder \"" + from.Text() + "\" cannot be used: " + StatusReason(entered)};
  }
  const auto folder = LocateStore(store_, platform_, identity.userId);
  if (const auto* fault = std::get_if<StoreFault>(&folder)) return Skipped{fault->clause};
  const WinPath& to = std::get<WinPath>(folder);
  if (!MakeFolder(platform_.GetFiles(), to)) {
    return Skipped{"its message store folder \"" + OneLine(to.Text()) + "\" cannot be made"};
  }
  copier_.Copy({.from = from, .to = to, .overwrite = overwrite, .done = " Restore Complete"});
  return std::nullopt;
}

void StoreRestore::TellSkipped(const std::vector<std::string>& lines) {
  if (lines.empty()) return;
  platform_.GetShell().FinishCopies();
  std::string text = "The messages of these identities were not restored:\n";
  for (const std::string& line : lines) text += "\n" + line;
  platform_.GetDialogs().Show({.text = text, .icon = MessageIcon::Exclamation});
}

}  // namespace quillbox
