// SPDX-License-Identifier: GPL-3.0-or-later
// A registry hive file ("regf") in memory: read, changed, and given back as the bytes of a file that Windows loads.
// Opening, locking and replacing files is the caller's business.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "text/code_page.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {

/// A key of one Hive: the offset of its cell. Valid until that key is deleted.
struct HiveKey {
  std::uint32_t cell = 0xFFFFFFFF;
  bool operator==(const HiveKey&) const = default;
};

/// One value as stored. `data` are the stored bytes: text is UTF-16, little-endian.
struct HiveValue {
  std::string name;  ///< inner text; empty for the default value
  std::uint32_t type = 0;
  Bytes data;
};

/// 100-nanosecond intervals since 1601-01-01 UTC.
using FileTime = std::uint64_t;

/// The state in which a hive was opened.
enum class HiveOrigin {
  Clean,            ///< closed cleanly
  Recovered,        ///< not closed cleanly; its logs were applied
  DirtyNoLog,       ///< not closed cleanly, and no log beside it, or only empty ones; opened as it was
  DirtyUnusedLogs,  ///< not closed cleanly, and no log beside it could be used (Hive::UnusedLogs); opened as it was
};

/// A log file beside a hive, for Hive::Load.
struct HiveLogFile {
  std::string name;  ///< for messages
  Bytes bytes;
  std::optional<std::string> unreadable;  ///< why `bytes` could not be read, as a clause
};

/// Reads the logs beside a hive: the single one of the old form first, then the two of the new form. Missing ones
/// are left out.
using ReadHiveLogs = std::function<std::vector<HiveLogFile>()>;

/// A log that was not applied to a hive that needed one.
struct UnusedHiveLog {
  std::string name;
  std::string why;  ///< a clause without a final full stop
};

/// A part of a hive that was left out because it is damaged.
struct HiveDamage {
  /// For messages: the key's path below the root ("the root key"), then the value's name in quotes where it is a value
  /// ("(Default)" without); "the file" where the damage is not in one key.
  std::string part;
  std::uint64_t offset = 0;  ///< bytes from the start of the file
  std::string fault;         ///< a clause without a final full stop
};

enum class DamagedParts {
  Refuse,    ///< the first one is an Error
  LeaveOut,  ///< what concerns one key, value or list is left out; a hive without a root key is still an Error
};

/// Why a hive refuses a change.
enum class HiveLimit {
  Name,     ///< no key or value can have the name
  Depth,    ///< the key would be too deep
  Subkeys,  ///< the key's list is full
  Data,     ///< one value cannot hold so much
  Size,     ///< the hive cannot grow any more
  RootKey,  ///< the key is the hive's root
  Deleted,  ///< the key was deleted
};

/// The Error of a change that a hive refuses, with nothing changed.
class HiveRefusal : public Error {
 public:
  HiveRefusal(HiveLimit limit, std::string doing, ErrorPlace place, std::string why)
      : Error(std::move(doing), std::move(place), std::move(why)), limit_(limit) {}
  HiveLimit Limit() const { return limit_; }

 private:
  HiveLimit limit_;
};

class Hive {
 public:
  /// Limits of the format; what exceeds them is refused, never truncated.
  static constexpr std::size_t kMaxNameUnits = 255;  ///< key names, in UTF-16 units
  static constexpr std::size_t kMaxValueNameUnits = 16383;
  static constexpr std::size_t kMaxDepth = 512;
  static constexpr std::uint32_t kBigDataLimit = 16344;  ///< bytes; more needs `db` where the version has it
  static constexpr std::uint32_t kMaxDataWithoutDb = 1u << 20;
  static constexpr std::uint64_t kMaxData = std::uint64_t{0xFFFF} * kBigDataLimit;  ///< `db` counts in 16 bits

  /// A new hive, version 1.3, with only a root key. `now` stamps it.
  static Hive Create(std::string_view rootName, FileTime now);

  /// Reads and validates a whole hive file. `name` is used in errors. `readLogs` is called only when the hive was not
  /// closed cleanly. Throws Error with name, offset and fault.
  static Hive Load(Bytes file, std::string name, const ReadHiveLogs& readLogs = {},
                   DamagedParts damaged = DamagedParts::Refuse);

  /// The same for a registry file of Windows 95, 98 or Me ("CREG"), whose names and texts are in `codePage`. The hive
  /// is one of version 1.3: its keys have no times, and texts that lack their NUL get it.
  static Hive LoadCreg(ByteView file, std::string name, const CodePage& codePage,
                       DamagedParts damaged = DamagedParts::Refuse);

  Hive(Hive&&) noexcept;
  Hive& operator=(Hive&&) noexcept;
  ~Hive();

  HiveOrigin Origin() const;
  /// The names of the logs that a hive of the origin Recovered was recovered from, in the order of their changes.
  const std::vector<std::string>& AppliedLogs() const;
  /// Why each log beside a hive of the origin DirtyUnusedLogs was not used.
  const std::vector<UnusedHiveLog>& UnusedLogs() const;
  /// What was left out; empty with DamagedParts::Refuse. The first thousand are kept; DamageCount() counts all of
  /// them.
  const std::vector<HiveDamage>& Damage() const;
  std::uint64_t DamageCount() const;
  /// The whole file: sequences equal, checksum right, `now` as the time of the last write. Ready to be written as it
  /// is.
  Bytes Image(FileTime now);
  /// True when a change was made since Load, Create or the last Image, or when Load recovered the hive.
  bool Changed() const;
  /// Stamps the keys that later calls change.
  void SetTime(FileTime now);

  HiveKey Root() const;
  /// The key at `path` below `from`: names with single backslashes between, without regard to case; empty is `from`.
  std::optional<HiveKey> Find(HiveKey from, std::string_view path) const;
  /// Throws std::out_of_range on a bad index; keys come in the list's order.
  HiveKey SubkeyAt(HiveKey key, std::size_t index) const;
  std::size_t SubkeyCount(HiveKey key) const;
  std::vector<HiveKey> Subkeys(HiveKey key) const;
  std::optional<HiveKey> Parent(HiveKey key) const;  ///< nothing for the root
  std::string Name(HiveKey key) const;
  FileTime Time(HiveKey key) const;
  std::string ClassName(HiveKey key) const;
  Bytes Security(HiveKey key) const;  ///< the security descriptor, self-relative; empty when the key has none

  std::size_t ValueCount(HiveKey key) const;
  HiveValue ValueAt(HiveKey key, std::size_t index) const;  ///< in the order of creation
  std::optional<HiveValue> Value(HiveKey key, std::string_view name) const;

  // Changes. Each either throws HiveRefusal (naming the key and the limit) and changes nothing, or is done whole.

  /// The subkey `name` (one name), made when missing with its parent's security descriptor.
  HiveKey CreateSubkey(HiveKey parent, std::string_view name);
  /// The key at `path` below `from`, every missing key made.
  HiveKey CreatePath(HiveKey from, std::string_view path);
  /// Writes or replaces a value.
  void SetValue(HiveKey key, std::string_view name, std::uint32_t type, ByteView data);
  /// False when there was no such value.
  bool DeleteValue(HiveKey key, std::string_view name);
  /// Deletes a key with everything below it; the root cannot be deleted.
  void DeleteTree(HiveKey key);

  /// A new hive (version 1.3) whose root holds what `key` holds: values, class, security, subkeys, times.
  Hive SaveSubtree(HiveKey key, FileTime now) const;
  /// Makes `key` hold what `source`'s root holds, in place of what it held; `key` keeps its name and parent.
  void ReplaceSubtree(HiveKey key, const Hive& source);

 private:
  struct State;
  explicit Hive(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

/// True when `file` begins as a hive does; for telling a hive from .reg text without an error.
bool LooksLikeHive(ByteView file);

}  // namespace quillbox
