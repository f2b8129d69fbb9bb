// SPDX-License-Identifier: GPL-3.0-or-later
// The registry as the program needs it. Names and string data are inner text (UTF-8): values of the types Sz,
// ExpandSz and MultiSz are given and taken as UTF-8 bytes with their NULs, all other types as stored.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/status.h"
#include "text/registry_path.h"
#include "text/unicode.h"
#include "text/win_path.h"

namespace quillbox {

/// The access masks that the program opens keys with.
enum class Access : std::uint32_t {
  SetValue = 0x2,
  Read = 0x20019,
  Full = 0xF003F,
};

enum class ValueType : std::uint32_t {
  None = 0,
  Sz = 1,
  ExpandSz = 2,
  Binary = 3,
  Dword = 4,
  DwordBigEndian = 5,
  Link = 6,
  MultiSz = 7,
};

/// What an implementation keeps for an open key; destroying it closes the key.
class KeyHandle {
 public:
  virtual ~KeyHandle() = default;
};

/// An open key, or null. Closes itself.
class Key {
 public:
  Key() = default;
  explicit Key(std::unique_ptr<KeyHandle> handle) : handle_(std::move(handle)) {}

  bool IsOpen() const { return handle_ != nullptr; }
  KeyHandle* Handle() const { return handle_.get(); }
  void Close() { handle_.reset(); }

 private:
  std::unique_ptr<KeyHandle> handle_;
};

struct OpenResult {
  Status status = Status::InvalidHandle;
  Key key;  ///< null unless status is Success
};

struct KeyInfo {
  Status status = Status::InvalidHandle;
  std::uint32_t subkeys = 0;
  std::uint32_t values = 0;
};

struct NameResult {
  Status status = Status::InvalidHandle;
  std::string name;
};

struct QueryResult {
  Status status = Status::InvalidHandle;
  ValueType type = ValueType::None;  ///< set for Success and MoreData
  std::uint32_t size = 0;            ///< bytes that the value has, set for Success and MoreData
};

struct ValueResult {
  Status status = Status::InvalidHandle;
  std::string name;
  ValueType type = ValueType::None;
  Bytes data;  ///< as in SetValue: text types as UTF-8
};

/// Every call on a Key that is not open answers InvalidHandle. Writes through a key opened with Read answer
/// AccessDenied; so do reads through one opened with SetValue.
class Registry {
 public:
  virtual ~Registry() = default;

  /// FileNotFound when the key does not exist, AccessDenied when `access` is not granted.
  virtual OpenResult Open(const RegistryPath& path, Access access) = 0;
  /// The same for the subkey `name` of an open key; `name` is one name, without a backslash. KeyDeleted when the key is
  /// gone. Who walks through a tree spends most of the time on looking for paths otherwise.
  virtual OpenResult OpenSubkey(const Key& key, std::string_view name, Access access) = 0;
  /// Opens with full access, making the key and every missing parent.
  virtual OpenResult Create(const RegistryPath& path) = 0;

  virtual KeyInfo Info(const Key& key) = 0;
  /// The subkey at `index` in the platform's order; NoMoreItems past the end.
  virtual NameResult EnumKey(const Key& key, std::uint32_t index) = 0;
  /// The value at `index` with its data; NoMoreItems past the end.
  virtual ValueResult EnumValue(const Key& key, std::uint32_t index) = 0;

  /// Asks for a value. Without a buffer: Success with type and size. With one that is too small (a buffer of no bytes
  /// counts): MoreData with type and size, unless the value is empty, which is Success. With one that is large enough:
  /// Success and the data in it. FileNotFound for a missing value, the default value (empty name) included.
  virtual QueryResult Query(const Key& key, std::string_view name, std::optional<std::span<std::uint8_t>> buffer) = 0;
  virtual Status SetValue(const Key& key, std::string_view name, ValueType type, ByteView data) = 0;
  virtual Status DeleteValue(const Key& key, std::string_view name) = 0;

  /// Deletes a key with everything below it. FileNotFound when there is none; AccessDenied when that cannot be
  /// known, since the hive that would hold it is not there.
  virtual Status DeleteTree(const RegistryPath& path) = 0;
  /// Writes the key and everything below it as a new hive file; FileExists when there is one. Needs the privilege
  /// "SeBackupPrivilege".
  virtual Status SaveKey(const Key& key, const WinPath& file) = 0;
  /// Replaces what the key holds by the hive file's content. Needs "SeRestorePrivilege"; `flags` 8 forces it.
  virtual Status RestoreKey(const Key& key, const WinPath& file, std::uint32_t flags) = 0;
  virtual bool EnablePrivilege(std::string_view name) = 0;

  /// Why the call before this one was refused, as a clause for a message; nothing when its status says all there is.
  virtual std::optional<std::string> WhyRefused() const = 0;

  // For the registry editor, which must carry data as they are stored.

  /// The value at `index` with its bytes as stored (text as UTF-16).
  virtual ValueResult EnumStoredValue(const Key& key, std::uint32_t index) = 0;
  /// Writes a value's bytes as they are.
  virtual Status SetStoredValue(const Key& key, std::string_view name, ValueType type, ByteView data) = 0;
};

}  // namespace quillbox
