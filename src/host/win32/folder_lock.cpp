// SPDX-License-Identifier: GPL-3.0-or-later
// A lock file in the folder, which its handle's end removes: the system keeps everybody else from opening it to write,
// and lets them read in it who has it.
#include "host/folder_lock.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "host/host_fault.h"
#include "host/host_paths.h"
#include "host/win32/host_io.h"
#include "host/win32/open_entry.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr const char* kDoing = "locking the disk for writing";
constexpr const char* kLockName = ".quillbox-lock";
constexpr std::string_view kProgramEnding = ".exe";
/// While the file of a program that has just ended goes, nobody can open it.
constexpr int kMaxAttempts = 20;
constexpr DWORD kPause = 25;  // milliseconds
/// The byte that is locked is behind all that is ever written: what is locked cannot be read by others.
constexpr DWORD kLockedByteHigh = 0x4000'0000;

/// A link that somebody has put there is not followed.
constexpr DWORD kLockFlags = FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT;

/// "quillbox (process 1234)".
std::string ThisProgram() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(std::min(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())), DWORD{MAX_PATH}));
  std::string name = HostPath(Narrow(path)).Name();
  if (StartsWithIgnoreCase(name.substr(name.size() - std::min(name.size(), kProgramEnding.size())), kProgramEnding)) {
    name.resize(name.size() - kProgramEnding.size());
  }
  return (name.empty() ? "another program" : name) + " (process " + std::to_string(GetCurrentProcessId()) + ")";
}

std::string HolderOf(const HostPath& lock) try {
  const Opened file = OpenThere(lock, {}, Links::Keep);
  std::array<char, MAX_PATH* 4> text = {};
  const std::size_t length = file.fault ? 0 : ReadUpTo(file.handle, text);
  return length == 0 ? "another program" : std::string(text.data(), length);
} catch (const std::system_error&) {
  return "another program";
}

/// The system's rules on who may open the file are enough on its own drives; other machines' may know locks only.
std::error_code LockByte(const HostHandle& file) {
  OVERLAPPED place = {};
  place.OffsetHigh = kLockedByteHigh;
  if (LockFileEx(Raw(file), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place)) return {};
  const std::error_code fault = LastCode();
  return fault == HostFault::InUse ? fault : std::error_code();
}

Opened MakeLock(const HostPath& lock) {
  const std::wstring path = SystemPath(lock);
  for (int attempt = 1;; ++attempt) {
    HostHandle made = Owned(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr,
                                        OPEN_ALWAYS, kLockFlags, nullptr));
    if (made) {
      const std::error_code fault = LockByte(made);
      return {fault ? HostHandle() : std::move(made), fault};
    }
    const std::error_code fault = LastCode();
    const bool isGoing = fault == std::errc::permission_denied &&
                         InfoOf(lock, Links::Keep).fault != std::errc::no_such_file_or_directory;
    if (!isGoing || attempt == kMaxAttempts) return {{}, fault};
    Sleep(kPause);
  }
}

std::optional<FileId> IdOf(HANDLE file) try { return InfoOfHandle(file).id; } catch (const std::system_error&) {
  return std::nullopt;
}

std::optional<FileId> IdOf(const HostPath& path) {
  const PathInfo there = InfoOf(path, Links::Keep);
  return there.info ? std::optional(there.info->id) : std::nullopt;
}

}  // namespace

FolderLock::FolderLock(const HostPath& folder, const std::vector<HandleNumber>& inherited) {
  const auto refuse = [&](std::string why) { throw Error(kDoing, {folder.Text(), {}, {}}, std::move(why)); };
  const HostPath lock = folder.Join(kLockName);
  if (const std::optional<FileId> id = IdOf(lock)) {
    const auto parent = std::find_if(inherited.begin(), inherited.end(),
                                     [&](HandleNumber number) { return IdOf(reinterpret_cast<HANDLE>(number)) == id; });
    if (parent != inherited.end()) {
      handle_ = HostHandle(*parent);
      SetHandleInformation(Raw(handle_), HANDLE_FLAG_INHERIT, 0);
      return;
    }
  }
  const PathInfo there = InfoOf(folder);
  if (!there.info) refuse(ReasonOf(there.fault));
  if (!there.info->IsFolder()) refuse(ReasonOf(SystemCode(std::errc::not_a_directory)));
  Opened made = MakeLock(lock);
  if (made.fault == HostFault::InUse) refuse(HolderOf(lock) + " has it open");
  handle_ = std::move(made.handle);
  // Where no file can be made, none is changed either, as far as can be known.
  if (ForbidsWriting(made.fault)) {
    lack_ = ReasonOf(made.fault);
  } else if (made.fault) {
    refuse(ReasonOf(made.fault));
  } else {
    SetEndOfFile(Raw(handle_));  // one that a failing power supply has left has an older program in it
    WriteAll(handle_, ThisProgram(), WriteAt::Position);
  }
}

bool FolderLock::IsOf(const HostPath& folder) const {
  return handle_ && IdOf(Raw(handle_)) == IdOf(folder.Join(kLockName));
}

}  // namespace quillbox
