// SPDX-License-Identifier: GPL-3.0-or-later
// The registry of the Windows that the program runs on, by the system's own calls. What they answer is passed on as it
// is. A change is made at once: there is nothing to commit and nothing to take back.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/hosted/hosted_drives.h"
#include "platform/registry.h"

namespace quillbox {

class WindowsRegistry : public Registry {
 public:
  /// `drives` says where the files of SaveKey and RestoreKey are, and must outlive the registry.
  explicit WindowsRegistry(const HostedDrives& drives) : drives_(drives) {}

  OpenResult Open(const RegistryPath& path, Access access) override;
  OpenResult OpenSubkey(const Key& key, std::string_view name, Access access) override;
  OpenResult Create(const RegistryPath& path) override;
  KeyInfo Info(const Key& key) override;
  NameResult EnumKey(const Key& key, std::uint32_t index) override;
  ValueResult EnumValue(const Key& key, std::uint32_t index) override;
  QueryResult Query(const Key& key, std::string_view name, std::optional<std::span<std::uint8_t>> buffer) override;
  Status SetValue(const Key& key, std::string_view name, ValueType type, ByteView data) override;
  Status DeleteValue(const Key& key, std::string_view name) override;
  /// Refuses a root, and a hive right below one, of which the system would delete all that it may.
  Status DeleteTree(const RegistryPath& path) override;
  Status SaveKey(const Key& key, const WinPath& file) override;
  Status RestoreKey(const Key& key, const WinPath& file, std::uint32_t flags) override;
  bool EnablePrivilege(std::string_view name) override;
  std::optional<std::string> WhyRefused() const override { return refusal_; }
  ValueResult EnumStoredValue(const Key& key, std::uint32_t index) override;
  Status SetStoredValue(const Key& key, std::string_view name, ValueType type, ByteView data) override;

 private:
  const HostedDrives& drives_;
  std::optional<std::string> refusal_;  ///< why this class refused the last call
};

}  // namespace quillbox
