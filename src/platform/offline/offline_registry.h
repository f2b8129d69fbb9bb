// SPDX-License-Identifier: GPL-3.0-or-later
// The registry of a Windows that isn't running: its hive files under the roots where Windows shows them. Changes are
// made in memory; Commit() brings them to the disk.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/offline/hive_commit.h"
#include "platform/offline/hive_file.h"
#include "platform/platform.h"

namespace quillbox {

class OfflineRegistry : public Registry {
 public:
  /// `clock` stamps what is changed, `files` reads and writes the files of SaveKey and RestoreKey, `log` gets the
  /// reasons behind refused changes. All must outlive the registry.
  OfflineRegistry(Clock& clock, FileSystem& files, Log& log);
  ~OfflineRegistry() override;

  /// Shows `file` at a root (HKEY_CURRENT_USER) or at a key right below one (HKEY_LOCAL_MACHINE\System, where
  /// CurrentControlSet is the control set that Select\Current names), or deeper, ahead of the hive that is around it.
  /// With `below` only the hive's key of that path is shown there. `file` must outlive the registry.
  void Mount(const RegistryPath& at, HiveFile& file, std::string below = {});
  /// Notes why no hive is shown at `at`, for the messages about changes there.
  void NoteMissing(const RegistryPath& at, std::string why);
  /// Writes the hives that changed, all or none. Throws Error that says what was written and what was not.
  void Commit();
  /// Reads afresh the hives whose files changed, after finishing what another program was killed at. Open keys stay
  /// open where their paths still exist.
  void Reload();

  OpenResult Open(const RegistryPath& path, Access access) override;
  OpenResult OpenSubkey(const Key& key, std::string_view name, Access access) override;
  OpenResult Create(const RegistryPath& path) override;
  KeyInfo Info(const Key& key) override;
  NameResult EnumKey(const Key& key, std::uint32_t index) override;
  ValueResult EnumValue(const Key& key, std::uint32_t index) override;
  QueryResult Query(const Key& key, std::string_view name, std::optional<std::span<std::uint8_t>> buffer) override;
  Status SetValue(const Key& key, std::string_view name, ValueType type, ByteView data) override;
  Status DeleteValue(const Key& key, std::string_view name) override;
  Status DeleteTree(const RegistryPath& path) override;
  Status SaveKey(const Key& key, const WinPath& file) override;
  Status RestoreKey(const Key& key, const WinPath& file, std::uint32_t flags) override;
  bool EnablePrivilege(std::string_view name) override;
  std::optional<std::string> WhyRefused() const override { return refusal_; }
  ValueResult EnumStoredValue(const Key& key, std::uint32_t index) override;
  Status SetStoredValue(const Key& key, std::string_view name, ValueType type, ByteView data) override;

 private:
  class OpenKey;
  struct MountPoint;
  struct Place;
  struct Use;
  using OpenKeys = std::unordered_set<OpenKey*>;
  enum class Need { Read, Write, Any };

  std::optional<Place> Locate(const RegistryPath& path);
  Key MakeKey(const Place& place, HiveKey key, Access access);
  Use Check(const Key& key, Need need);
  Status Refuse(Status status, std::string why);
  Status RefuseWrite(const RegistryPath& path, const std::optional<Place>& place);
  std::vector<std::string> MountNames(RegistryRoot root) const;
  std::vector<std::string> MountNamesBelow(const OpenKey& key) const;
  bool HasMountBelow(const OpenKey& key) const;
  bool HasPrivilege(std::string_view name) const;
  Hive& Edit(MountPoint& mount);
  std::vector<HiveFile*> WritableHives() const;
  void FinishInterrupted();
  template <typename Change>
  Status Try(Status failure, Change change);

  Clock& clock_;
  FileSystem& files_;
  Log& log_;
  std::deque<MountPoint> mounts_;
  std::vector<std::pair<RegistryPath, std::string>> missing_;  ///< hives that could not be mounted, and why
  std::optional<std::string> refusal_;                         ///< why the last call was refused
  HiveCommit commit_;
  std::shared_ptr<OpenKeys> openKeys_;  ///< shared with the keys, which may outlive the registry
  std::set<std::string> privileges_;
};

}  // namespace quillbox
