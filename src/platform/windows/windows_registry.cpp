// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/windows_registry.h"

#include <windows.h>
// After it.
#include <shlwapi.h>

#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "host/host_path.h"
#include "platform/registry_data.h"
#include "platform/windows/system_text.h"

namespace quillbox {
namespace {

/// A key's name has at most 255 characters, a value's 16,383.
constexpr std::size_t kKeyNameRoom = 256;
constexpr std::size_t kValueNameRoom = 16'384;

Status StatusOf(LSTATUS answer) {
  return static_cast<Status>(answer);
}

HKEY Predefined(RegistryRoot root) {
  return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<std::int32_t>(root)));
}

class OpenKey final : public KeyHandle {
 public:
  explicit OpenKey(HKEY key) : key_(key) {}
  ~OpenKey() override { RegCloseKey(key_); }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  HKEY Raw() const { return key_; }

 private:
  HKEY key_;
};

/// Null for a key that is not open, which every call of the system refuses.
HKEY Raw(const Key& key) {
  const auto* open = dynamic_cast<const OpenKey*>(key.Handle());
  return open != nullptr ? open->Raw() : nullptr;
}

OpenResult Opened(LSTATUS answer, HKEY key) {
  if (answer != ERROR_SUCCESS) return {StatusOf(answer), {}};
  return {Status::Success, Key(std::make_unique<OpenKey>(key))};
}

/// A value as it is stored. Its size may change between two calls.
struct Stored {
  LSTATUS answer = ERROR_SUCCESS;
  ValueType type = ValueType::None;
  Bytes data = {};
};

template <typename Call>
Stored ReadStored(DWORD size, Call call) {
  Stored stored;
  DWORD type = 0;
  do {
    stored.data.resize(size);
    // A null buffer asks for the size alone, and there may be more by now.
    std::uint8_t none = 0;
    stored.answer = call(&type, stored.data.empty() ? &none : stored.data.data(), &size);
  } while (stored.answer == ERROR_MORE_DATA && size > stored.data.size());
  stored.type = static_cast<ValueType>(type);
  stored.data.resize(stored.answer == ERROR_SUCCESS ? size : 0);
  return stored;
}

Stored ReadValue(HKEY key, const std::wstring& name) {
  DWORD size = 0;
  if (const LSTATUS answer = RegQueryValueExW(key, name.c_str(), nullptr, nullptr, nullptr, &size))
    return {.answer = answer};
  return ReadStored(size, [&](DWORD* type, std::uint8_t* data, DWORD* room) {
    return RegQueryValueExW(key, name.c_str(), nullptr, type, data, room);
  });
}

}  // namespace

OpenResult WindowsRegistry::Open(const RegistryPath& path, Access access) {
  refusal_.reset();
  HKEY key = nullptr;
  const LSTATUS answer = RegOpenKeyExW(Predefined(path.root), WideText(PlainKeyPath(path.subkey)).c_str(), 0,
                                       static_cast<REGSAM>(access), &key);
  return Opened(answer, key);
}

OpenResult WindowsRegistry::OpenSubkey(const Key& parent, std::string_view name, Access access) {
  refusal_.reset();
  HKEY key = nullptr;
  const LSTATUS answer = RegOpenKeyExW(Raw(parent), WideText(name).c_str(), 0, static_cast<REGSAM>(access), &key);
  return Opened(answer, key);
}

OpenResult WindowsRegistry::Create(const RegistryPath& path) {
  refusal_.reset();
  HKEY key = nullptr;
  const LSTATUS answer =
      RegCreateKeyExW(Predefined(path.root), WideText(PlainKeyPath(path.subkey)).c_str(), 0, nullptr,
                      REG_OPTION_NON_VOLATILE, static_cast<REGSAM>(Access::Full), nullptr, &key, nullptr);
  return Opened(answer, key);
}

KeyInfo WindowsRegistry::Info(const Key& key) {
  DWORD subkeys = 0;
  DWORD values = 0;
  const LSTATUS answer = RegQueryInfoKeyW(Raw(key), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values,
                                          nullptr, nullptr, nullptr, nullptr);
  if (answer != ERROR_SUCCESS) return {.status = StatusOf(answer)};
  return {Status::Success, subkeys, values};
}

NameResult WindowsRegistry::EnumKey(const Key& key, std::uint32_t index) {
  std::array<wchar_t, kKeyNameRoom> name = {};
  auto length = static_cast<DWORD>(name.size());
  const LSTATUS answer = RegEnumKeyExW(Raw(key), index, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
  if (answer != ERROR_SUCCESS) return {StatusOf(answer), {}};
  return {Status::Success, InnerText({name.data(), length})};
}

ValueResult WindowsRegistry::EnumStoredValue(const Key& key, std::uint32_t index) {
  std::vector<wchar_t> name(kValueNameRoom);
  DWORD length = 0;
  Stored stored = ReadStored(0, [&](DWORD* type, std::uint8_t* data, DWORD* room) {
    length = static_cast<DWORD>(name.size());
    return RegEnumValueW(Raw(key), index, name.data(), &length, nullptr, type, data, room);
  });
  if (stored.answer != ERROR_SUCCESS) return {StatusOf(stored.answer), {}, {}, {}};
  return {Status::Success, InnerText({name.data(), length}), stored.type, std::move(stored.data)};
}

ValueResult WindowsRegistry::EnumValue(const Key& key, std::uint32_t index) {
  ValueResult value = EnumStoredValue(key, index);
  value.data = FromStored(value.type, std::move(value.data));
  return value;
}

QueryResult WindowsRegistry::Query(const Key& key, std::string_view name,
                                   std::optional<std::span<std::uint8_t>> buffer) {
  Stored stored = ReadValue(Raw(key), WideText(name));
  if (stored.answer != ERROR_SUCCESS) return {StatusOf(stored.answer), {}, 0};
  return AnswerQuery(stored.type, FromStored(stored.type, std::move(stored.data)), buffer);
}

Status WindowsRegistry::SetValue(const Key& key, std::string_view name, ValueType type, ByteView data) {
  return SetStoredValue(key, name, type, ToStored(type, data));
}

Status WindowsRegistry::SetStoredValue(const Key& key, std::string_view name, ValueType type, ByteView data) {
  // The system looks behind text that has no NUL, and stores one that it finds there as well.
  Bytes guarded(data.begin(), data.end());
  guarded.insert(guarded.end(), {0xFF, 0xFF});
  return StatusOf(RegSetValueExW(Raw(key), WideText(name).c_str(), 0, static_cast<DWORD>(type), guarded.data(),
                                 static_cast<DWORD>(data.size())));
}

Status WindowsRegistry::DeleteValue(const Key& key, std::string_view name) {
  return StatusOf(RegDeleteValueW(Raw(key), WideText(name).c_str()));
}

Status WindowsRegistry::DeleteTree(const RegistryPath& path) {
  refusal_.reset();
  const std::string subkey = PlainKeyPath(path.subkey);
  const bool isHive = path.root != RegistryRoot::CurrentUser && subkey.find('\\') == std::string::npos;
  if (subkey.empty() || isHive) {
    refusal_ = "the root key of a hive cannot be deleted";
    return Status::AccessDenied;
  }
  return StatusOf(SHDeleteKeyW(Predefined(path.root), WideText(subkey).c_str()));
}

Status WindowsRegistry::SaveKey(const Key& key, const WinPath& file) {
  return StatusOf(RegSaveKeyW(Raw(key), NativePath(drives_.HostPathOf(file)).c_str(), nullptr));
}

Status WindowsRegistry::RestoreKey(const Key& key, const WinPath& file, std::uint32_t flags) {
  return StatusOf(RegRestoreKeyW(Raw(key), NativePath(drives_.HostPathOf(file)).c_str(), flags));
}

bool WindowsRegistry::EnablePrivilege(std::string_view name) {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token)) return false;
  TOKEN_PRIVILEGES privileges = {.PrivilegeCount = 1, .Privileges = {{{}, SE_PRIVILEGE_ENABLED}}};
  TOKEN_PRIVILEGES before = {};
  DWORD needed = 0;
  const bool enabled = LookupPrivilegeValueW(nullptr, WideText(name).c_str(), &privileges.Privileges[0].Luid) &&
                       AdjustTokenPrivileges(token, FALSE, &privileges, sizeof before, &before, &needed);
  CloseHandle(token);
  return enabled;
}

}  // namespace quillbox
