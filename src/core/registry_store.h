// SPDX-License-Identifier: GPL-3.0-or-later
// The one component through which the program reads and writes the registry, saves and restores keys, and has the
// registry editor export and merge them. It raises nothing for a key or value that is not there, and shows no message
// of its own but the two named below and the failures of registry files.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/command_failures.h"
#include "core/editor_commands.h"
#include "core/key_export.h"
#include "core/key_files.h"
#include "core/os_code.h"
#include "core/reg_value.h"
#include "core/registry_access.h"
#include "platform/platform.h"
#include "platform/registry.h"

namespace quillbox {

/// Whether the user sees why a key's file could not be written or used. The log has it in any case.
enum class OnFailure {
  Tell,
  TellUnlessMissing,  ///< a key that does not exist has nothing to export, which is normal
  LogOnly
};

class RegistryStore {
 public:
  explicit RegistryStore(Platform& platform)
      : platform_(platform),
        registry_(platform.GetRegistry()),
        access_(registry_),
        keyFiles_(platform),
        editor_(platform),
        failures_(platform.GetDialogs()) {}

  /// See RegistryAccess::Read. An unexpected failure is shown in a message, and the value reads as Empty.
  RegValue RegistryGetKeyValue(const RegistryPath& path, std::string_view name,
                               ExpandableText expandable = ExpandableText::Read);
  /// The same through an open key, for readers of many values.
  RegValue ReadValue(const Key& key, std::string_view name, ExpandableText expandable = ExpandableText::Read) {
    return access_.Read(key, name, expandable);
  }
  Status ProbeValue(const RegistryPath& path, std::string_view name) { return access_.Probe(path, name); }
  std::string ReadStringValue(const RegistryPath& path, std::string_view name) {
    return access_.ReadWholeText(path, name);
  }

  /// Writes under HKEY_CURRENT_USER. The key must exist; a refused write is in the log only.
  void SetKeyValue(std::string_view subkey, std::string_view name, const RegValue& value, ValueType type) {
    WriteOrLog({RegistryRoot::CurrentUser, std::string(subkey)}, name, value, type);
  }
  /// The same under HKEY_LOCAL_MACHINE.
  void SetKeyValue2(std::string_view subkey, std::string_view name, const RegValue& value, ValueType type) {
    WriteOrLog({RegistryRoot::LocalMachine, std::string(subkey)}, name, value, type);
  }
  Status SetValueEx(const Key& key, std::string_view name, ValueType type, const RegValue& value) {
    return access_.Write(key, name, value, type);
  }

  OpenResult OpenKey(const RegistryPath& path, Access access = Access::Full) { return registry_.Open(path, access); }
  /// The key, opened with full access; made with its parents when missing. Null when that was refused.
  Key CreateKey(const RegistryPath& path);
  std::vector<std::string> EnumSubKeys(const Key& key) { return access_.SubkeyNames(key); }
  /// Removes a key with everything below it; silent.
  void DeleteKey(const RegistryPath& path);

  bool EnablePrivilege(std::string_view name) { return registry_.EnablePrivilege(name); }
  /// See KeyFiles.
  void SaveKey(const RegistryPath& path, const WinPath& file, OnFailure onFailure = OnFailure::Tell);
  void RestoreKey(const RegistryPath& path, const WinPath& file);

  /// Reads the kind of Windows afresh; it stays what it was when the registry does not say.
  void DetectOsCode() { osCode_ = ReadOsCode(registry_, osCode_); }
  OsCode GetOsCode() const { return osCode_; }

  /// Why keys cannot be exported, as a clause; nothing when they can.
  std::optional<std::string> WhyNoExports() { return WhyUnknown(registry_, osCode_); }

  /// See EditorCommands. False when not everything could be exported or merged.
  bool RegExport(const std::string& key, const WinPath& file, KeyForm form = KeyForm::Quoted,
                 OnFailure onFailure = OnFailure::Tell);
  bool RegMerge(const WinPath& file, OnFailure onFailure = OnFailure::Tell) {
    return Report(editor_.Merge(file), onFailure);
  }
  bool RunEditor(const std::string& commandLine) { return Report(editor_.Run(commandLine), OnFailure::Tell); }

  /// Every RegExport and SaveKey since the last call.
  std::vector<KeyExport> TakeExports() { return std::exchange(exports_, {}); }

  /// Where the failures of exports, merges, saves and restores are gathered.
  CommandFailures& Failures() { return failures_; }

  /// The message "Registry read error", the code and `suffix` as it is.
  void ShowRegistryReadError(Status code, const std::string& suffix);

 private:
  void WriteOrLog(const RegistryPath& path, std::string_view name, const RegValue& value, ValueType type);
  bool Report(const std::optional<EditorFailure>& failure, OnFailure onFailure);
  void TellFailure(const KeyExport& made, OnFailure onFailure);
  WinPath FullPath(const WinPath& file);
  bool Exists(const RegistryPath& path);
  std::string LogRefusal(const std::string& what, const RegistryPath& path, Status status);

  Platform& platform_;
  Registry& registry_;
  RegistryAccess access_;
  KeyFiles keyFiles_;
  EditorCommands editor_;
  CommandFailures failures_;
  std::vector<KeyExport> exports_;
  OsCode osCode_ = OsCode::Unknown;
};

}  // namespace quillbox
