// SPDX-License-Identifier: GPL-3.0-or-later
#include "identities/clone_identity.h"

#include "core/disk_path.h"
#include "core/file_helpers.h"
#include "core/identity_catalogue.h"
#include "core/message_store.h"
#include "identities/create_identity.h"
#include "identities/user_id.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

// Appended to the backup folder.
constexpr const char* kSourceFile = "\\IdentitySource.reg";
constexpr const char* kDestinationFile = "\\IdentyDestination.reg";
constexpr const char* kAccountsFile = "\\MainIAM.reg";
constexpr const char* kIdentityFile = "\\Identity.reg";
constexpr const char* kNewAccountsFile = "\\NewIAM.reg";
constexpr const char* kStoreRootFile = "\\Store Root2K.reg";
constexpr const char* kExports[] = {kSourceFile, kDestinationFile, kAccountsFile};
constexpr const char* kRemoved[] = {kSourceFile, kDestinationFile, kIdentityFile, kNewAccountsFile, kAccountsFile};

constexpr const char* kAccountsKey = "SOFTWARE\\Microsoft\\Internet Account Manager\\Accounts";
constexpr const char* kIdentityAccounts = "\\Software\\Microsoft\\Internet Account Manager";

struct StoreFolders {
  WinPath from, to;
};

/// Every file of the source and below it but those of the target, whole before anything is copied. What cannot be read
/// is in the log.
std::vector<WinPath> FilesBelow(Platform& platform, const StoreFolders& folders) {
  std::vector<WinPath> found;
  const auto walk = platform.GetFiles().Walk(folders.from, "*.*");
  WalkStep step;
  while (walk->Step(step)) {
    for (const std::string& unread : step.unread) platform.GetLog().Write("not copied: " + unread);
    if (StartsWithIgnoreCase(step.folder, WithBackslash(folders.to.Text()))) continue;
    for (const std::string& name : step.files) found.push_back(WinPath(step.folder).Join(name));
  }
  return found;
}

}  // namespace

IdentityClone::IdentityClone(Platform& platform, RegistryStore& store, CloneRequest request)
    : platform_(platform),
      store_(store),
      request_(std::move(request)),
      codePage_(platform.GetSystemFacts().CodePageNumber()) {}

std::optional<CloneRefusal> IdentityClone::Refusal() {
  for (const auto& [role, userId] : {std::pair("Source", request_.source), {"Destination", request_.destination}}) {
    if (!IsUserId(userId)) {
      return CloneRefusal{std::string("The ") + role + " Identity is not a {USER_ID}: \"" + userId +
                          "\". Please choose or create another one."};
    }
    if (store_.OpenKey(CurrentUser(IdentityKey(userId)), Access::Read).status != Status::Success) {
      return CloneRefusal{std::string("The ") + role + " Identity " + userId + " is not in the registry (any more)."};
    }
  }
  return std::nullopt;
}

void IdentityClone::CloneSettings() {
  struct FilesGuard {
    IdentityClone& clone;
    ~FilesGuard() { clone.RemoveFiles(); }
  };
  const FilesGuard guard{*this};
  // A file that an earlier clone left behind must not pass for one of this clone.
  for (const char* name : kExports) platform_.GetFiles().DeleteFile(File(name));
  Export(kSourceFile, " " + FullName(CurrentUser(IdentityKey(request_.source))));
  Export(kDestinationFile, " " + FullName(CurrentUser(IdentityKey(request_.destination))));
  const bool hasAccounts = store_.OpenKey(CurrentUser(kAccountsKey), Access::Read).status == Status::Success;
  if (hasAccounts) Export(kAccountsFile, "  \"" + FullName(CurrentUser(kAccountsKey)) + "\"");

  const WinPath expanded = DefaultStoreFolder(store_, platform_, request_.destination);
  const std::vector<OwnValue> own = ReadOwnValues(Read(kDestinationFile), codePage_, request_.destination);
  platform_.GetFiles().WriteFile(
      File(kIdentityFile), RewriteIdentity(Read(kSourceFile), codePage_, request_.source, request_.destination, own));
  WriteStoreRoot(expanded);
  Merge(kIdentityFile, "The settings of " + request_.source + " were merged.");
  if (hasAccounts) CloneAccounts();
  if (IsNtFamily(store_.GetOsCode())) {
    platform_.GetFiles().WriteFile(File(kStoreRootFile),
                                   StoreRootFile({request_.destination, UnexpandedStoreFolder(request_.destination)},
                                                 store_.GetOsCode() == OsCode::NT));
  }
}

void IdentityClone::Export(const char* name, const std::string& key) {
  const std::string file = File(name).Text();
  if (store_.RunEditor("regedit /s /e:A \"" + file + "\"" + key)) return;
  throw Error("exporting " + Trim(key), {file, {}, {}}, "the registry editor could not make the file");
}

RegText IdentityClone::Read(const char* name) {
  const WinPath file = File(name);
  return {file.Text(), platform_.GetFiles().ReadFile(file)};
}

void IdentityClone::Merge(const char* name, const std::string& what) {
  if (!store_.RegMerge(File(name))) {
    throw Error("merging the clone", {File(name).Text(), {}, {}}, "the registry editor did not merge all of it");
  }
  done_.push_back(what);
}

void IdentityClone::WriteStoreRoot(const WinPath& expanded) {
  const OpenResult settings = store_.OpenKey(CurrentUser(IdentitySettingsKey(request_.destination)));
  const OsCode os = store_.GetOsCode();
  if (settings.status != Status::Success || os == OsCode::Unknown) return;
  const Status written = os == OsCode::SE
                             ? store_.SetValueEx(settings.key, "Store Root", ValueType::Sz, expanded.Text())
                             : store_.SetValueEx(settings.key, "Store Root", ValueType::ExpandSz,
                                                 UnexpandedStoreFolder(request_.destination));
  if (written == Status::Success) done_.push_back("The \"Store Root\" of " + request_.destination + " was set.");
}

void IdentityClone::CloneAccounts() {
  platform_.GetFiles().WriteFile(File(kNewAccountsFile),
                                 RewriteAccounts(Read(kAccountsFile), codePage_, request_.destination));
  const RegistryPath accounts = CurrentUser(IdentityKey(request_.destination) + kIdentityAccounts);
  if (store_.OpenKey(accounts, Access::Read).status != Status::FileNotFound) return;
  if (!store_.CreateKey(accounts).IsOpen()) return;
  Merge(kNewAccountsFile, "The accounts were merged.");
}

void IdentityClone::RemoveFiles() {
  if (request_.keepFiles) return;
  for (const char* name : kRemoved) platform_.GetFiles().DeleteFile(File(name));
  const OsCode os = store_.GetOsCode();
  if (os == OsCode::W2K || os == OsCode::NT) platform_.GetFiles().DeleteFile(File(kStoreRootFile));
}

std::optional<CloneRefusal> IdentityClone::CopyMessages() {
  const auto source = FindStore(store_, platform_, request_.source);
  if (const auto* fault = std::get_if<StoreFault>(&source)) {
    return CloneRefusal{"The Identity was cloned, but the DBX files of " + request_.source +
                        " were not copied: " + fault->clause + "."};
  }
  FileSystem& files = platform_.GetFiles();
  const WinPath& from = std::get<WinPath>(source);
  const WinPath to = DefaultStoreFolder(store_, platform_, request_.destination);
  if (!DirExists(files, to)) CreateFolder(files, to);
  for (const WinPath& file : FilesBelow(platform_, {from, to})) {
    const WinPath target(to.Text() + file.Text().substr(WithBackslash(from.Text()).size()));
    files.MakePath(target.Parent());
    platform_.GetShell().CopyFile({.source = file, .target = target});
  }
  return std::nullopt;
}

std::optional<StoreElsewhere> IdentityClone::FindElsewhere() {
  const WinPath copied = DefaultStoreFolder(store_, platform_, request_.destination);
  const auto recorded = LocateStore(store_, platform_, request_.destination);
  const auto* folder = std::get_if<WinPath>(&recorded);
  const DiskPath full(platform_.GetDrives(), copied);
  if (folder && full.IsUsable() && EqualIgnoreCase(folder->Text(), full.Path().Text())) return std::nullopt;
  return StoreElsewhere{folder ? *folder : WinPath(), copied};
}

bool IdentityClone::PointToCopies() {
  const OpenResult settings = store_.OpenKey(CurrentUser(IdentitySettingsKey(request_.destination)));
  if (settings.status != Status::Success) return false;
  const ValueType type = IsNtFamily(store_.GetOsCode()) ? ValueType::ExpandSz : ValueType::Sz;
  const WinPath copied = DefaultStoreFolder(store_, platform_, request_.destination);
  return store_.SetValueEx(settings.key, "Store Root", type, copied.Text()) == Status::Success;
}

}  // namespace quillbox
