// What the parts of the hive code share: one hive's state, and the operations on keys, lists, values and security
// that Hive's public functions are made of. Everything here trusts the hive: CheckHive() saw all of it when it was
// loaded.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "registry/hive.h"
#include "registry/hive_cells.h"
#include "registry/hive_names.h"

namespace quillbox {

/// Where the values of one key with many values are, by the hash of their names.
struct ValueIndex {
  std::uint32_t key = kNoCell;
  std::unordered_multimap<std::uint32_t, std::uint32_t> cells;
};

struct HiveData {
  HiveCells cells;
  std::string name;
  std::uint32_t minor = 3;
  std::uint32_t root = kNoCell;
  HiveOrigin origin = HiveOrigin::Clean;
  std::vector<std::string> appliedLogs;
  std::vector<UnusedHiveLog> unusedLogs;
  std::vector<HiveDamage> damage;
  std::uint64_t damageCount = 0;  ///< those that were too many to be kept too
  bool changed = false;
  FileTime now = 0;
  std::uint32_t anySecurity = kNoCell;          ///< one cell of the ring of security cells
  std::unordered_set<std::uint32_t> unordered;  ///< keys whose subkeys are not in our order: searched one by one
  mutable ValueIndex valueIndex;
};

/// Throws the Error of a damaged file; `offset` counts from the start of the bins.
[[noreturn]] void ThrowHiveFault(const std::string& fileName, std::size_t offset, std::string why);
/// Throws the HiveRefusal of a change to `key`.
[[noreturn]] void ThrowRefusal(const HiveData& hive, std::uint32_t key, HiveLimit limit, std::string doing,
                               std::string why);

// hive_load.cpp, hive_check.cpp
void LoadHive(HiveData& hive, Bytes file, const ReadHiveLogs& readLogs, DamagedParts damaged);
/// Walks everything that can be reached from the root, once, and notes what HiveData keeps of it. Throws Error on the
/// first thing that is not as it must be.
void CheckHive(HiveData& hive);

// hive_keys.cpp
StoredName KeyName(const HiveData& hive, std::uint32_t key);
/// For messages: names with single backslashes between, over-long ones cut; empty for the root.
std::string PathBelowRoot(const HiveData& hive, std::uint32_t key);
/// The same behind the hive's name.
std::string KeyPath(const HiveData& hive, std::uint32_t key);
std::size_t KeyDepth(const HiveData& hive, std::uint32_t key);  ///< 1 for the root
Bytes KeyClass(const HiveData& hive, std::uint32_t key);
/// A key cell that no list names yet. `security` is counted; kNoCell for none.
std::uint32_t MakeKey(HiveData& hive, std::uint32_t parent, const NewName& name, std::uint32_t security);
/// A key cell that no list names yet: the name, time and flags of another hive's key, and nothing of what it holds.
std::uint32_t CopyKeyRecord(HiveData& hive, std::uint32_t parent, const HiveData& source, std::uint32_t from);
/// Gives a class name to a key without one.
void SetClass(HiveData& hive, std::uint32_t key, ByteView className);
/// Throws unless `size` more bytes (and what their cells need) fit into a hive.
void RequireSpace(const HiveData& hive, std::uint32_t key, const std::string& doing, std::uint64_t size);
/// Frees values, class and all that is below `key`, which stays with its name, parent, security and time.
void ClearKey(HiveData& hive, std::uint32_t key);
/// Takes `key` out of its parent's list and frees all of it.
void RemoveKey(HiveData& hive, std::uint32_t key);

// hive_lists.cpp
inline bool IsLeafTag(std::uint16_t tag) {
  return tag == kHintLeafTag || tag == kHashLeafTag || tag == kPlainLeafTag;
}
/// Bytes of one entry of a leaf.
inline std::size_t LeafStride(std::uint16_t tag) {
  return tag == kPlainLeafTag ? 4 : 8;
}
std::optional<std::uint32_t> FindSubkey(const HiveData& hive, std::uint32_t key, std::u16string_view upper);
std::uint32_t SubkeyCell(const HiveData& hive, std::uint32_t key, std::size_t index);
std::vector<std::uint32_t> SubkeyCells(const HiveData& hive, std::uint32_t key);
/// False when the key's list has no place for one more, whatever its name.
bool CanTakeSubkey(const HiveData& hive, std::uint32_t key);
void InsertSubkey(HiveData& hive, std::uint32_t key, std::uint32_t subkey);
void RemoveSubkey(HiveData& hive, std::uint32_t key, std::uint32_t subkey);
void FreeSubkeyLists(HiveData& hive, std::uint32_t key);

// hive_values.cpp
StoredName ValueName(const HiveData& hive, std::uint32_t value);
std::uint32_t ValueSize(const HiveData& hive, std::uint32_t value);
Bytes ValueData(const HiveData& hive, std::uint32_t value);
std::uint32_t ValueCell(const HiveData& hive, std::uint32_t key, std::size_t index);
std::uint32_t FindValue(const HiveData& hive, std::uint32_t key, const NewName& name);  ///< kNoCell for none
/// Why the hive's version cannot hold data of this size; empty when it can.
std::string DataFault(const HiveData& hive, std::uint64_t size);
void WriteValue(HiveData& hive, std::uint32_t key, const NewName& name, std::uint32_t type, ByteView data);
/// Adds a copy of another hive's value, without looking for one of its name.
void CopyValue(HiveData& hive, std::uint32_t key, const HiveData& source, std::uint32_t value);
void RemoveValue(HiveData& hive, std::uint32_t key, std::uint32_t value);
void FreeValues(HiveData& hive, std::uint32_t key);
/// True when `dataCell` holds not the data of a value of this size but a `db` record that leads to their pieces.
bool IsBigData(const HiveData& hive, std::uint32_t dataCell, std::uint32_t size);

// hive_security.cpp
ByteView Descriptor(const HiveData& hive, std::uint32_t security);
/// A new cell in the ring, counted once.
std::uint32_t AddSecurity(HiveData& hive, ByteView descriptor);
void ShareSecurity(HiveData& hive, std::uint32_t security);    ///< kNoCell is let be
void ReleaseSecurity(HiveData& hive, std::uint32_t security);  ///< kNoCell is let be
/// Full access for the system and its administrators, read access for everyone.
Bytes DefaultDescriptor();

/// Finds equal descriptors of a hive, so that each is stored once.
class SecurityPool {
 public:
  explicit SecurityPool(HiveData& hive);
  /// The cell that holds `descriptor`, counted once more.
  std::uint32_t Share(ByteView descriptor);

 private:
  static std::size_t Hash(ByteView descriptor);

  HiveData& hive_;
  std::unordered_multimap<std::size_t, std::uint32_t> cells_;
};

// hive_subtree.cpp
/// Makes the empty key `to` hold what `from` holds; key times below it included.
void CopyTree(HiveData& hive, std::uint32_t to, const HiveData& source, std::uint32_t from);
/// Throws unless CopyTree() can be done whole.
void RequireCopy(const HiveData& hive, std::uint32_t to, const HiveData& source, std::uint32_t from,
                 const std::string& doing);

}  // namespace quillbox
