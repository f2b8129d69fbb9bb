// The one component through which the program reads and writes the registry, and has the registry editor export and
// merge keys. It keeps no key open between calls, raises nothing for a key or value that is not there, and shows no
// message of its own but the two named below and what goes wrong with registry files.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/reg_value.h"
#include "core/registry_reports.h"
#include "platform/platform.h"
#include "platform/registry.h"

namespace quillbox {

/// The kind of Windows that the registry belongs to. It chooses the registry editor's export switch, some file names,
/// and the type with which a "Store Root" is written.
enum class OsCode { Unknown, SE, NT, W2K, XP };

/// "SE", "NT", "2K", "XP" or the empty text.
std::string_view OsCodeText(OsCode code);
/// True for the family that NT 4, 2000 and XP belong to.
bool IsNtFamily(OsCode code);

/// What ProbeValue answers; any other status is passed through as it is.
namespace probe {
inline constexpr Status kHasData = Status::MoreData;      ///< the value holds at least one byte
inline constexpr Status kMissing = Status::FileNotFound;  ///< no such value or key
inline constexpr Status kPresent = Status::Success;       ///< the value exists and is empty
}  // namespace probe

/// How an export's command line writes the key.
enum class KeyForm {
  Quoted,             ///< two blanks, then the key in quotes
  Plain,              ///< two blanks, then the key without quotes
  PlainAfterOneBlank  ///< one blank, then the key without quotes
};

/// Whether the person reads why a key's file could not be written or used. The log has it in any case.
enum class OnFailure { Tell, LogOnly };

/// Whether a read takes REG_EXPAND_SZ values for text or for nothing.
enum class ExpandableText { Read, Ignore };

class RegistryStore {
 public:
  explicit RegistryStore(Platform& platform)
      : platform_(platform), registry_(platform.GetRegistry()), reports_(platform.GetDialogs()) {}

  /// A value by the types REG_SZ, REG_EXPAND_SZ (not expanded), REG_BINARY and REG_DWORD; Empty for a missing key or
  /// value and for every other type. Text is cut at its first NUL. An empty name reads the default value.
  RegValue RegistryGetKeyValue(const RegistryPath& path, std::string_view name,
                               ExpandableText expandable = ExpandableText::Read);
  /// The same through an open key, for readers of many values; a key that is not open has none.
  RegValue ReadValue(const Key& key, std::string_view name, ExpandableText expandable = ExpandableText::Read);
  /// Whether a value exists and holds data; see namespace probe.
  Status ProbeValue(const RegistryPath& path, std::string_view name);
  /// A text value whole, without its terminating NUL; empty when it is missing. Throws Error when the value is not
  /// text.
  std::string ReadStringValue(const RegistryPath& path, std::string_view name);

  /// Writes under HKEY_CURRENT_USER. The key must exist; a refused write is told to the log only.
  void SetKeyValue(std::string_view subkey, std::string_view name, const RegValue& value, ValueType type);
  /// The same under HKEY_LOCAL_MACHINE.
  void SetKeyValue2(std::string_view subkey, std::string_view name, const RegValue& value, ValueType type);
  /// Writes through an open key: text with one NUL for REG_SZ and REG_EXPAND_SZ, 4 bytes for REG_DWORD. Any other type
  /// writes nothing and is a success; a REG_DWORD from a text that is no number is InvalidParameter.
  Status SetValueEx(const Key& key, std::string_view name, ValueType type, const RegValue& value);

  OpenResult OpenKey(const RegistryPath& path, Access access = Access::Full) { return registry_.Open(path, access); }
  /// The key, opened with full access; made with its parents when missing. Null when that was refused.
  Key CreateKey(const RegistryPath& path);
  /// The names of the subkeys in the platform's order.
  std::vector<std::string> EnumSubKeys(const Key& key);
  /// Removes a key with everything below it; silent.
  void DeleteKey(const RegistryPath& path);

  bool EnablePrivilege(std::string_view name) { return registry_.EnablePrivilege(name); }
  /// Writes a key as a hive file, whole or not at all, in place of a file of that name. For a key that does not exist
  /// that file goes away.
  void SaveKey(const RegistryPath& path, const WinPath& file, OnFailure onFailure = OnFailure::Tell);
  /// Replaces what an existing key holds by a hive file's content; a file that is no usable hive changes nothing.
  void RestoreKey(const RegistryPath& path, const WinPath& file);

  /// Reads the kind of Windows afresh; it stays what it was when nothing tells.
  void DetectOsCode();
  OsCode GetOsCode() const { return osCode_; }

  /// Has the registry editor export `key` (its full name) to `file` and waits for it; nothing without an OS code.
  void RegExport(const std::string& key, const std::string& file, KeyForm form = KeyForm::Quoted,
                 OnFailure onFailure = OnFailure::Tell);
  /// Has the registry editor merge `file` and waits for it. False when not all of the file could be merged.
  bool RegMerge(const std::string& file, OnFailure onFailure = OnFailure::Tell);
  /// Runs the registry editor with a command line of the caller's own and waits for it. False when it failed.
  bool RunEditor(const std::string& commandLine, OnFailure onFailure = OnFailure::Tell);

  /// Where the failures of exports, merges, saves and restores are gathered.
  RegistryReports& Reports() { return reports_; }

  /// The message "Registry read error", the code and `suffix` as it is.
  void ShowRegistryReadError(Status code, const std::string& suffix);

 private:
  RegValue ReadTyped(const Key& key, std::string_view name, const QueryResult& asked, ExpandableText expandable);
  void WriteIfOpen(const RegistryPath& path, std::string_view name, const RegValue& value, ValueType type);
  bool HasProductName(const RegistryPath& path);
  Status ReplaceByKey(const Key& key, const WinPath& file);
  std::string LogRefusal(const std::string& what, const RegistryPath& path, Status status);

  Platform& platform_;
  Registry& registry_;
  RegistryReports reports_;
  OsCode osCode_ = OsCode::Unknown;
};

}  // namespace quillbox
