// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/offline_registry.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <utility>
#include <vector>

#include "platform/registry_data.h"
#include "text/byte_order.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::string_view kBackupPrivilege = "SeBackupPrivilege";
constexpr std::string_view kRestorePrivilege = "SeRestorePrivilege";
constexpr std::uint32_t kForceRestore = 8;

// A hive's offsets have 31 useful bits.
constexpr std::uint64_t kMaxHiveBytes = std::uint64_t{1} << 31;

constexpr std::string_view kCurrentControlSet = "CurrentControlSet";
const RegistryPath kSystem = {RegistryRoot::LocalMachine, "System"};

/// What is left of `path` below `above` (both plain), or nothing when it is not there or below.
std::optional<std::string_view> Below(std::string_view path, std::string_view above) {
  if (above.empty()) return path;
  for (std::size_t end = 0; end != std::string_view::npos;) {
    end = path.find('\\', end + 1);
    if (!EqualIgnoreCase(path.substr(0, end), above)) continue;
    return end == std::string_view::npos ? std::string_view() : path.substr(end + 1);
  }
  return {};
}

/// A path below another one; either may be empty.
std::string Joined(const std::string& above, std::string_view below) {
  return above + (above.empty() || below.empty() ? "" : "\\") + std::string(below);
}

/// The name of the control set that the system hive calls the current one.
std::string ControlSetName(const Hive& system) {
  std::uint32_t number = 1;
  const std::optional<HiveKey> select = system.Find(system.Root(), "Select");
  const std::optional<HiveValue> current = select ? system.Value(*select, "Current") : std::nullopt;
  if (current && current->data.size() == sizeof number) {
    number = Load32(current->data.data());
  }
  std::array<char, 24> name = {};
  std::snprintf(name.data(), name.size(), "ControlSet%03u", number);
  return name.data();
}

/// Throws Error for a file that is larger than any hive, before it is brought into memory.
void RequireHiveSize(FileSystem& files, const WinPath& file) {
  const std::optional<FileEntry> entry = files.Stat(file);
  if (!entry || entry->size <= kMaxHiveBytes) return;
  throw Error("reading a hive", {file.Text(), {}, {}}, "it is larger than 2 GB, and no hive has more");
}

Status StatusOf(HiveLimit limit) {
  switch (limit) {
    case HiveLimit::Data:
    case HiveLimit::Size:
    case HiveLimit::Subkeys:
      return Status::NoResources;
    case HiveLimit::RootKey:
      return Status::AccessDenied;
    case HiveLimit::Deleted:
      return Status::KeyDeleted;
    default:
      return Status::InvalidParameter;
  }
}

}  // namespace

struct OfflineRegistry::MountPoint {
  RegistryPath at;
  HiveFile* file = nullptr;
  std::string below;  ///< the path in the hive of the key that is shown; empty for its root
};

/// Where a path leads: into a mounted hive, or (without a mount) to a root that is only there for its mounts.
struct OfflineRegistry::Place {
  RegistryRoot root = RegistryRoot::None;
  MountPoint* mount = nullptr;
  std::string path;  ///< below the hive's root, plain

  /// The path below the root key by which the registry shows it; empty for the root key.
  std::string ShownPath() const {
    return mount == nullptr ? "" : Joined(mount->at.subkey, Below(path, mount->below).value_or(""));
  }
};

/// An open key. The registry knows all of them, so that a deleted key is never mistaken for the next one in its cell.
class OfflineRegistry::OpenKey final : public KeyHandle {
 public:
  OpenKey(std::shared_ptr<OpenKeys> all, Place where, HiveKey hiveKey, Access granted)
      : place(std::move(where)), key(hiveKey), access(granted), all_(std::move(all)) {
    all_->insert(this);
  }
  ~OpenKey() override { all_->erase(this); }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  bool BelongsTo(const std::shared_ptr<OpenKeys>& all) const { return all_ == all; }
  /// True for keys below `above` in the same hive; with `itself` for that one too.
  bool IsBelow(const Place& above, bool itself) const {
    if (deleted || place.mount != above.mount) return false;
    const std::optional<std::string_view> rest = Below(place.path, above.path);
    return rest && (itself || !rest->empty());
  }

  Place place;
  HiveKey key;
  Access access;
  bool deleted = false;

 private:
  std::shared_ptr<OpenKeys> all_;
};

/// A key as one call uses it: only with Success are the others set, and `hive` is null for a root without a hive.
struct OfflineRegistry::Use {
  Status status = Status::InvalidHandle;
  OpenKey* open = nullptr;
  const Hive* hive = nullptr;
};

OfflineRegistry::OfflineRegistry(Clock& clock, FileSystem& files, Log& log)
    : clock_(clock), files_(files), log_(log), commit_(log), openKeys_(std::make_shared<OpenKeys>()) {}

OfflineRegistry::~OfflineRegistry() = default;

void OfflineRegistry::Mount(const RegistryPath& at, HiveFile& file, std::string below) {
  mounts_.push_back({{at.root, PlainKeyPath(at.subkey)}, &file, std::move(below)});
}

void OfflineRegistry::Commit() {
  commit_.Write(WritableHives(), clock_.Now());
}

std::vector<HiveFile*> OfflineRegistry::WritableHives() const {
  std::vector<HiveFile*> hives;
  for (const MountPoint& mount : mounts_) {
    if (mount.file->CanWrite()) hives.push_back(mount.file);
  }
  return hives;
}

void OfflineRegistry::FinishInterrupted() {
  const std::vector<HiveFile*> hives = WritableHives();
  if (hives.size() != 2) return;
  FinishInterruptedCommit(hives[1]->Places(), {hives[0]->Places()}, log_);
}

void OfflineRegistry::Reload() {
  FinishInterrupted();
  for (MountPoint& mount : mounts_) {
    if (!mount.file->Reload()) continue;
    const Hive& hive = mount.file->View();
    for (OpenKey* open : *openKeys_) {
      if (open->deleted || open->place.mount != &mount) continue;
      const std::optional<HiveKey> key = hive.Find(hive.Root(), open->place.path);
      open->deleted = !key;
      if (key) open->key = *key;
    }
  }
}

void OfflineRegistry::NoteMissing(const RegistryPath& at, std::string why) {
  missing_.emplace_back(RegistryPath{at.root, PlainKeyPath(at.subkey)}, std::move(why));
}

std::optional<OfflineRegistry::Place> OfflineRegistry::Locate(const RegistryPath& path) {
  refusal_.reset();
  const std::string names = PlainKeyPath(path.subkey);
  bool isRoot = false;
  for (MountPoint& mount : mounts_) {
    if (mount.at.root != path.root) continue;
    isRoot = names.empty();
    const std::optional<std::string_view> rest = Below(names, mount.at.subkey);
    if (!rest) continue;
    Place place = {path.root, &mount, Joined(mount.below, *rest)};
    const std::optional<std::string_view> belowSet = Below(*rest, kCurrentControlSet);
    if (belowSet && mount.at.root == kSystem.root && EqualIgnoreCase(mount.at.subkey, kSystem.subkey)) {
      place.path = Joined(ControlSetName(mount.file->View()), *belowSet);
    }
    return place;
  }
  if (isRoot) return Place{path.root, nullptr, ""};
  return {};
}

Key OfflineRegistry::MakeKey(const Place& place, HiveKey key, Access access) {
  return Key(std::make_unique<OpenKey>(openKeys_, place, key, access));
}

OfflineRegistry::Use OfflineRegistry::Check(const Key& key, Need need) {
  refusal_.reset();
  auto* open = dynamic_cast<OpenKey*>(key.Handle());
  if (open == nullptr || !open->BelongsTo(openKeys_)) return {Status::InvalidHandle, nullptr, nullptr};
  if (open->deleted) return {Status::KeyDeleted, nullptr, nullptr};
  const bool refused =
      (need == Need::Read && open->access == Access::SetValue) || (need == Need::Write && open->access == Access::Read);
  if (refused) return {Status::AccessDenied, nullptr, nullptr};
  return {Status::Success, open, open->place.mount == nullptr ? nullptr : &open->place.mount->file->View()};
}

std::vector<std::string> OfflineRegistry::MountNames(RegistryRoot root) const {
  std::vector<std::string> names;
  for (const MountPoint& mount : mounts_) {
    if (mount.at.root == root) names.push_back(mount.at.subkey);
  }
  return names;
}

/// The keys right below one that are there only because another hive is shown there.
std::vector<std::string> OfflineRegistry::MountNamesBelow(const OpenKey& key) const {
  std::vector<std::string> names;
  const MountPoint& around = *key.place.mount;
  const std::string path = key.place.ShownPath();
  for (const MountPoint& mount : mounts_) {
    if (&mount == &around || mount.at.root != around.at.root) continue;
    const std::optional<std::string_view> name = Below(mount.at.subkey, path);
    if (!name || name->empty() || name->find('\\') != std::string_view::npos) continue;
    if (!around.file->View().Find(key.key, *name)) names.emplace_back(*name);
  }
  return names;
}

/// True when another hive is shown somewhere below a key, perhaps in place of a key of its own hive.
bool OfflineRegistry::HasMountBelow(const OpenKey& key) const {
  const auto isOther = [&](const MountPoint& mount) {
    return &mount != key.place.mount && mount.at.root == key.place.root;
  };
  return std::any_of(mounts_.begin(), mounts_.end(), [&](const MountPoint& mount) {
    return isOther(mount) && Below(mount.at.subkey, key.place.ShownPath()).has_value();
  });
}

Hive& OfflineRegistry::Edit(MountPoint& mount) {
  Hive& hive = mount.file->Edit();
  hive.SetTime(clock_.Now());
  return hive;
}

Status OfflineRegistry::Refuse(Status status, std::string why) {
  refusal_ = std::move(why);
  return status;
}

/// The answer to a change at `path` when nothing can be written there; Success when something can.
Status OfflineRegistry::RefuseWrite(const RegistryPath& path, const std::optional<Place>& place) {
  if (!place) {
    const std::string names = PlainKeyPath(path.subkey);
    for (const auto& [at, why] : missing_) {
      if (at.root == path.root && Below(names, at.subkey))
        return Refuse(Status::AccessDenied, "its hive is not there: " + why);
    }
    return Refuse(Status::AccessDenied, "its hive is not on this disk");
  }
  if (place->mount == nullptr) return Refuse(Status::AccessDenied, "the key itself is in no hive");
  if (!place->mount->file->CanWrite()) return Refuse(Status::AccessDenied, "its hive cannot be written");
  return Status::Success;
}

/// Runs a change; its Error goes to the log, and `failure` is the answer unless a limit has its own.
template <typename Change>
Status OfflineRegistry::Try(Status failure, Change change) {
  try {
    return change();
  } catch (const Error& error) {
    log_.Write(Describe(error));
    const auto* refusal = dynamic_cast<const HiveRefusal*>(&error);
    return Refuse(refusal == nullptr ? failure : StatusOf(refusal->Limit()), error.Why());
  }
}

OpenResult OfflineRegistry::Open(const RegistryPath& path, Access access) {
  const std::optional<Place> place = Locate(path);
  if (!place) return {Status::FileNotFound, {}};
  const bool writes = access != Access::Read;
  if (place->mount == nullptr) {
    if (writes) return {RefuseWrite(path, place), {}};
    return {Status::Success, MakeKey(*place, {}, access)};
  }
  const Hive& hive = place->mount->file->View();
  const std::optional<HiveKey> key = hive.Find(hive.Root(), place->path);
  if (!key) return {Status::FileNotFound, {}};
  if (writes && RefuseWrite(path, place) != Status::Success) return {Status::AccessDenied, {}};
  return {Status::Success, MakeKey(*place, *key, access)};
}

OpenResult OfflineRegistry::OpenSubkey(const Key& key, std::string_view name, Access access) {
  const Use use = Check(key, Need::Any);
  if (use.status != Status::Success) return {use.status, {}};
  Place place = use.open->place;
  if (use.hive != nullptr && access == Access::Read && !HasMountBelow(*use.open)) {
    if (const std::optional<HiveKey> subkey = use.hive->Find(use.open->key, name)) {
      place.path = Joined(place.path, name);
      return {Status::Success, MakeKey(place, *subkey, access)};
    }
  }
  // Also for names that no hive has, such as CurrentControlSet.
  return Open({place.root, Joined(place.ShownPath(), name)}, access);
}

OpenResult OfflineRegistry::Create(const RegistryPath& path) {
  const std::optional<Place> place = Locate(path);
  OpenResult result;
  result.status = RefuseWrite(path, place);
  if (result.status != Status::Success) return result;
  result.status = Try(Status::InvalidParameter, [&] {
    Hive& hive = Edit(*place->mount);
    result.key = MakeKey(*place, hive.CreatePath(hive.Root(), place->path), Access::Full);
    return Status::Success;
  });
  return result;
}

KeyInfo OfflineRegistry::Info(const Key& key) {
  const Use use = Check(key, Need::Read);
  if (use.status != Status::Success) return {.status = use.status};
  const bool isMountPoint = use.hive == nullptr;
  const std::size_t subkeys = isMountPoint ? MountNames(use.open->place.root).size()
                                           : use.hive->SubkeyCount(use.open->key) + MountNamesBelow(*use.open).size();
  const std::size_t values = isMountPoint ? 0 : use.hive->ValueCount(use.open->key);
  return {Status::Success, static_cast<std::uint32_t>(subkeys), static_cast<std::uint32_t>(values)};
}

NameResult OfflineRegistry::EnumKey(const Key& key, std::uint32_t index) {
  const Use use = Check(key, Need::Read);
  if (use.status != Status::Success) return {use.status, {}};
  const std::size_t count = use.hive == nullptr ? 0 : use.hive->SubkeyCount(use.open->key);
  if (index < count) return {Status::Success, use.hive->Name(use.hive->SubkeyAt(use.open->key, index))};
  const std::vector<std::string> names =
      use.hive == nullptr ? MountNames(use.open->place.root) : MountNamesBelow(*use.open);
  if (index - count >= names.size()) return {Status::NoMoreItems, {}};
  return {Status::Success, names[index - count]};
}

ValueResult OfflineRegistry::EnumValue(const Key& key, std::uint32_t index) {
  ValueResult value = EnumStoredValue(key, index);
  value.data = FromStored(value.type, std::move(value.data));
  return value;
}

ValueResult OfflineRegistry::EnumStoredValue(const Key& key, std::uint32_t index) {
  const Use use = Check(key, Need::Read);
  if (use.status != Status::Success) return {use.status, {}, {}, {}};
  if (use.hive == nullptr || index >= use.hive->ValueCount(use.open->key)) return {Status::NoMoreItems, {}, {}, {}};
  HiveValue value = use.hive->ValueAt(use.open->key, index);
  return {Status::Success, std::move(value.name), static_cast<ValueType>(value.type), std::move(value.data)};
}

QueryResult OfflineRegistry::Query(const Key& key, std::string_view name,
                                   std::optional<std::span<std::uint8_t>> buffer) {
  const Use use = Check(key, Need::Read);
  if (use.status != Status::Success) return {use.status, {}, 0};
  std::optional<HiveValue> value = use.hive == nullptr ? std::nullopt : use.hive->Value(use.open->key, name);
  if (!value) return {Status::FileNotFound, {}, 0};
  const auto type = static_cast<ValueType>(value->type);
  return AnswerQuery(type, FromStored(type, std::move(value->data)), buffer);
}

Status OfflineRegistry::SetValue(const Key& key, std::string_view name, ValueType type, ByteView data) {
  return SetStoredValue(key, name, type, ToStored(type, data));
}

Status OfflineRegistry::SetStoredValue(const Key& key, std::string_view name, ValueType type, ByteView data) {
  const Use use = Check(key, Need::Write);
  if (use.status != Status::Success) return use.status;
  return Try(Status::InvalidParameter, [&] {
    Edit(*use.open->place.mount).SetValue(use.open->key, name, static_cast<std::uint32_t>(type), data);
    return Status::Success;
  });
}

Status OfflineRegistry::DeleteValue(const Key& key, std::string_view name) {
  const Use use = Check(key, Need::Write);
  if (use.status != Status::Success) return use.status;
  return Try(Status::InvalidParameter, [&] {
    const bool deleted = Edit(*use.open->place.mount).DeleteValue(use.open->key, name);
    return deleted ? Status::Success : Status::FileNotFound;
  });
}

Status OfflineRegistry::DeleteTree(const RegistryPath& path) {
  const std::optional<Place> place = Locate(path);
  if (!place || place->mount == nullptr) return RefuseWrite(path, place);
  if (place->path == place->mount->below) {
    return Refuse(Status::AccessDenied, "the root key of a hive cannot be deleted");
  }
  const Hive& hive = place->mount->file->View();
  const std::optional<HiveKey> key = hive.Find(hive.Root(), place->path);
  if (!key) return Status::FileNotFound;
  if (RefuseWrite(path, place) != Status::Success) return Status::AccessDenied;
  return Try(Status::AccessDenied, [&] {
    Edit(*place->mount).DeleteTree(*key);
    for (OpenKey* open : *openKeys_) open->deleted |= open->IsBelow(*place, true);
    return Status::Success;
  });
}

Status OfflineRegistry::SaveKey(const Key& key, const WinPath& file) {
  const Use use = Check(key, Need::Any);
  if (use.status != Status::Success) return use.status;
  if (!HasPrivilege(kBackupPrivilege)) return Status::PrivilegeNotHeld;
  if (use.hive == nullptr) return Status::AccessDenied;
  if (files_.Stat(file)) return Status::FileExists;
  return Try(Status::RegistryIo, [&] {
    const FileTime now = clock_.Now();
    const Bytes image = use.hive->SaveSubtree(use.open->key, now).Image(now);
    files_.WriteFile(file, {reinterpret_cast<const char*>(image.data()), image.size()});
    return Status::Success;
  });
}

Status OfflineRegistry::RestoreKey(const Key& key, const WinPath& file, std::uint32_t flags) {
  const Use use = Check(key, Need::Write);
  if (use.status != Status::Success) return use.status;
  if (!HasPrivilege(kRestorePrivilege)) return Status::PrivilegeNotHeld;
  if (flags != 0 && flags != kForceRestore) return Status::InvalidParameter;
  const OpenKey& target = *use.open;
  const auto isInUse = [&](const OpenKey* open) { return open != &target && open->IsBelow(target.place, true); };
  if (flags != kForceRestore && std::any_of(openKeys_->begin(), openKeys_->end(), isInUse)) return Status::AccessDenied;
  if (!files_.Stat(file)) return Status::FileNotFound;

  std::string content;
  const Status read = Try(Status::RegistryIo, [&] {
    RequireHiveSize(files_, file);
    content = files_.ReadFile(file);
    return Status::Success;
  });
  if (read != Status::Success) return read;
  return Try(Status::BadRegistry, [&] {
    const Hive source = Hive::Load(Bytes(content.begin(), content.end()), file.Text());
    Edit(*target.place.mount).ReplaceSubtree(target.key, source);
    for (OpenKey* open : *openKeys_) open->deleted |= open->IsBelow(target.place, false);
    return Status::Success;
  });
}

bool OfflineRegistry::EnablePrivilege(std::string_view name) {
  for (const std::string_view known : {kBackupPrivilege, kRestorePrivilege}) {
    if (!EqualIgnoreCase(name, known)) continue;
    privileges_.insert(std::string(known));
    return true;
  }
  return false;
}

bool OfflineRegistry::HasPrivilege(std::string_view name) const {
  return privileges_.count(std::string(name)) > 0;
}

}  // namespace quillbox
