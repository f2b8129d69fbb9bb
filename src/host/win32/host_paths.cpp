// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_paths.h"

#include <utility>

#include "host/host_fault.h"
#include "host/temporary_name.h"
#include "host/win32/change_entry.h"
#include "host/win32/open_entry.h"
#include "host/win32/private_security.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr int kMaxNameAttempts = 100;

}  // namespace

HostPath Absolute(const HostPath& path) {
  return path.IsAbsolute() ? path.Normal() : CurrentFolder().Join(path).Normal();
}

RealPath RealPathOf(const HostPath& path) {
  HostPath whole = Absolute(path);
  if (IsVirtualFolder(whole)) return {std::move(whole), {}};
  const Opened there = OpenForFacts(whole, Links::Follow);
  if (there.fault) return {{}, there.fault};
  return {PathOfHandle(Raw(there.handle)).value_or(whole), {}};
}

RealPath RealPathAsFarAsThere(const HostPath& path) {
  const HostPath whole = Absolute(path);
  RealPath real = RealPathOf(whole);
  if (!whole.HasName() ||
      (real.fault != std::errc::no_such_file_or_directory && real.fault != std::errc::not_a_directory)) {
    return real;
  }
  real = RealPathAsFarAsThere(whole.Parent());
  if (!real.fault) real.path = real.path.Join(whole.Name());
  return real;
}

PathInfo InfoOf(const HostPath& path, Links links) try {
  const HostPath whole = Absolute(path);
  if (IsVirtualFolder(whole)) return {InfoOfVirtual(whole), {}};
  const Opened there = OpenForFacts(whole, links);
  if (there.fault) return {std::nullopt, there.fault};
  return {InfoOfHandle(Raw(there.handle)), {}};
} catch (const std::system_error& failure) {
  return {std::nullopt, failure.code()};
}

bool IsDiskDevice(const HostPath& path) {
  constexpr std::string_view kWholeDisk = "PhysicalDrive";
  if (!IsDevice(path) || path.Names().size() != 2) return false;
  const std::string name = path.Name();
  return StartsWithIgnoreCase(name, kWholeDisk) || (name.size() == 2 && name[1] == ':');
}

std::error_code Move(const HostPath& from, const HostPath& to) {
  return MoveEntry(from, to);
}

HostPath ProgramFolder() {
  std::wstring program(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    if (size < program.size()) {
      program.resize(size);
      return HostPath(Narrow(program)).Parent();
    }
    program.resize(2 * program.size());
  }
}

HostPath TemporaryFolder() {
  std::wstring folder(MAX_PATH + 2, L'\0');  // the most that the call gives
  folder.resize(GetTempPathW(static_cast<DWORD>(folder.size()), folder.data()));
  return folder.empty() ? CurrentFolder() : HostPath(Narrow(folder));
}

HostPath MakeNewFolder(const HostPath& parent, const std::string& beginning) {
  PrivateSecurity security;
  for (int attempt = 0;; ++attempt) {
    HostPath folder = parent.Join(beginning + RandomLetters());
    if (CreateDirectoryW(SystemPath(folder).c_str(), security.Attributes())) return folder;
    const std::error_code fault = LastCode();
    if (fault != std::errc::file_exists || attempt == kMaxNameAttempts) ThrowFault(fault);
  }
}

// Devices have a kind of path of their own here.
bool IsSystemsOwn(const HostPath&) {
  return false;
}

}  // namespace quillbox
