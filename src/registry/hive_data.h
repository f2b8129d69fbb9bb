// SPDX-License-Identifier: GPL-3.0-or-later
// What the parts of the hive code share: one hive's state, and the operations on keys, lists, values and security
// that Hive's public functions are made of. Everything here trusts the hive, because CheckHive() checked all of it when
// it was loaded.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "registry/hive.h"
#include "registry/hive_cells.h"
#include "registry/hive_names.h"

namespace quillbox {

/// Where the values of one key with many values are, by the hash of their names.
struct ValueIndex {
  std::optional<KeyCell> key;
  std::unordered_multimap<std::uint32_t, ValueCell> cells;
};

struct HiveData {
  HiveCells cells;
  std::string name;
  std::uint32_t minor = 3;
  KeyCell root;
  HiveOrigin origin = HiveOrigin::Clean;
  std::vector<std::string> appliedLogs;
  std::vector<UnusedHiveLog> unusedLogs;
  std::vector<HiveDamage> damage;
  std::uint64_t damageCount = 0;  ///< including those that were too many to keep
  bool changed = false;
  FileTime now = 0;
  std::optional<SecurityCell> anySecurity;  ///< one cell of the ring of security cells
  std::unordered_set<KeyCell> unordered;    ///< keys whose subkeys are not in our order: searched one by one
  mutable ValueIndex valueIndex;
};

/// A key to copy from, of another hive than the one that is changed.
struct SourceKey {
  const HiveData& hive;
  KeyCell key;
};

/// Throws the Error of a damaged file; `offset` counts from the start of the bins.
[[noreturn]] void ThrowHiveFault(const std::string& fileName, std::size_t offset, std::string why);
/// Throws the HiveRefusal of a change to `key`.
[[noreturn]] void ThrowRefusal(const HiveData& hive, KeyCell key, HiveLimit limit, std::string doing, std::string why);

// hive.cpp
/// Makes `hive`, which has only a name, a hive of version 1.3 with only a root key. `rootName` is the name of both.
void MakeEmptyHive(HiveData& hive, std::string_view rootName);

// hive_load.cpp, hive_check.cpp
void LoadHive(HiveData& hive, Bytes file, const ReadHiveLogs& readLogs, DamagedParts damaged);
/// Walks everything that can be reached from the root, once, and notes what HiveData keeps of it. Throws Error on the
/// first fault.
void CheckHive(HiveData& hive);

// hive_keys.cpp
StoredName KeyName(const HiveData& hive, KeyCell key);
/// For messages: names with single backslashes between, over-long ones cut; empty for the root.
std::string PathBelowRoot(const HiveData& hive, KeyCell key);
/// The same behind the hive's name.
std::string KeyPath(const HiveData& hive, KeyCell key);
std::size_t KeyDepth(const HiveData& hive, KeyCell key);  ///< 1 for the root
Bytes KeyClass(const HiveData& hive, KeyCell key);
/// A key cell that no list names yet. `security` is counted; it and `parent` may be none.
KeyCell MakeKey(HiveData& hive, KeyCell parent, const NewName& name, SecurityCell security);
/// A key cell that no list names yet: the name, time and flags of another hive's key, and nothing of what it holds.
KeyCell CopyKeyRecord(HiveData& hive, KeyCell parent, SourceKey from);
/// Gives a class name to a key without one.
void SetClass(HiveData& hive, KeyCell key, ByteView className);
/// Throws unless `size` more bytes (and what their cells need) fit into a hive.
void RequireSpace(const HiveData& hive, KeyCell key, const std::string& doing, std::uint64_t size);
/// Frees values, class and all that is below `key`, which stays with its name, parent, security and time.
void ClearKey(HiveData& hive, KeyCell key);
/// Takes `key` out of its parent's list and frees all of it.
void RemoveKey(HiveData& hive, KeyCell key);

// hive_lists.cpp
std::optional<KeyCell> FindSubkey(const HiveData& hive, KeyCell key, std::u16string_view upper);
KeyCell SubkeyOf(const HiveData& hive, KeyCell key, std::size_t index);
std::vector<KeyCell> SubkeyCells(const HiveData& hive, KeyCell key);
/// True when the key's list can take one more, whatever its name.
bool CanTakeSubkey(const HiveData& hive, KeyCell key);
/// Puts `subkey` into the list of the key that it names as its parent.
void InsertSubkey(HiveData& hive, KeyCell subkey);
/// Takes `subkey` out of the list of its parent.
void RemoveSubkey(HiveData& hive, KeyCell subkey);
void FreeSubkeyLists(HiveData& hive, KeyCell key);

// hive_values.cpp
StoredName ValueName(const HiveData& hive, ValueCell value);
std::uint32_t ValueSize(const HiveData& hive, ValueCell value);
Bytes ValueData(const HiveData& hive, ValueCell value);
ValueCell ValueOf(const HiveData& hive, KeyCell key, std::size_t index);
std::optional<ValueCell> FindValue(const HiveData& hive, KeyCell key, const NewName& name);
/// Why the hive's version cannot hold data of this size; empty when it can.
std::string DataFault(const HiveData& hive, std::uint64_t size);
void WriteValue(HiveData& hive, KeyCell key, const NewName& name, std::uint32_t type, ByteView data);
/// Adds a copy of another hive's value, without looking for one of its name.
void CopyValue(HiveData& hive, KeyCell key, const HiveData& source, ValueCell value);
void RemoveValue(HiveData& hive, KeyCell key, ValueCell value);
void FreeValues(HiveData& hive, KeyCell key);
/// True when `data` holds not the data of a value of this size but a `db` record that leads to their pieces.
bool IsBigData(const HiveData& hive, DataCell data, std::uint32_t size);

// hive_security.cpp
ByteView Descriptor(const HiveData& hive, SecurityCell security);
/// A new cell in the ring, counted once.
SecurityCell AddSecurity(HiveData& hive, ByteView descriptor);
void ShareSecurity(HiveData& hive, SecurityCell security);    ///< none is left alone
void ReleaseSecurity(HiveData& hive, SecurityCell security);  ///< none is left alone
/// Full access for the system and its administrators, read access for everyone.
Bytes DefaultDescriptor();

/// Finds equal descriptors of a hive, so that each is stored once.
class SecurityPool {
 public:
  explicit SecurityPool(HiveData& hive);
  /// The cell that holds `descriptor`, counted once more.
  SecurityCell Share(ByteView descriptor);

 private:
  static std::size_t Hash(ByteView descriptor);

  HiveData& hive_;
  std::unordered_multimap<std::size_t, SecurityCell> cells_;
};

// hive_subtree.cpp
/// Makes the empty key `to` hold what `from` holds; key times below it included.
void CopyTree(HiveData& hive, KeyCell to, SourceKey from);
/// Throws unless CopyTree() can be done whole.
void RequireCopy(const HiveData& hive, KeyCell to, SourceKey from, const std::string& doing);

}  // namespace quillbox
