// SPDX-License-Identifier: GPL-3.0-or-later
// What tests do to the machine that they run on, and not every host can have done to it. A test says what it needs and
// is skipped where that is not to be had: the two files host_tricks.cpp, in posix/ and win32/, are the only place that
// says what cannot be tested where.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quillbox {

enum class Trick {
  Links,         ///< symbolic links
  Modes,         ///< permissions of files, and a user who has none
  Pipes,         ///< named pipes, devices and sockets in a folder
  DeepFolders,   ///< paths of many thousand bytes
  BadNames,      ///< names that Windows forbids, and two that differ in case only
  OpenFolders,   ///< a folder that is renamed while it is open
  Scripts,       ///< programs that are shell scripts
  Forks,         ///< a copy of the test in another process
  FailingCalls,  ///< HostCallGuard, and a limit to the size of files
  Privileges,    ///< keys that are saved and restored as hive files
  MountPoints,   ///< places of POSIX: /dev, /proc, /tmp
};
/// Why the machine cannot do it; empty when it can.
std::string WhyNot(Trick trick);

// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): it ends the test that it is in
#define NEEDS(trick) \
  if (const std::string why = ::quillbox::WhyNot(::quillbox::Trick::trick); !why.empty()) GTEST_SKIP() << why

/// The errno for a user's share of the disk that is full; 0 where the host has none.
int QuotaErrno();
void MakePipe(const std::filesystem::path& path);
/// Gives a file an attribute of a file server's; false where the file system has none.
bool SetServerAttribute(const std::filesystem::path& file, const std::string& value);
void SetVariable(const std::string& name, const std::string& value);

/// Runs `act` in a copy of this process. Its exit code is 0 when it came to its end, else not.
int RunInCopy(const std::function<void()>& act);
/// Ends this process at once, as a kill does.
[[noreturn]] void KillThisProcess();
unsigned long ProcessNumber();
struct ProgramRun {
  int code = -1;
  std::string out, err;
};
/// Runs a program to its end in that folder, with its output in files `out` and `err` there.
ProgramRun RunProgram(const std::filesystem::path& program, std::vector<std::string> arguments,
                      const std::filesystem::path& folder);
/// Bytes of memory that any program started so far has needed at once.
std::uint64_t MostMemoryOfPrograms();

/// While an object lives, a file is held as a file in the making is.
class LockedFile {
 public:
  explicit LockedFile(const std::filesystem::path& file);
  ~LockedFile();
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;

 private:
  std::intptr_t handle_;
};

/// While an object lives, writes beyond a size fail as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(std::uint64_t bytes);
  ~FileSizeLimit();
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  struct Before;
  std::unique_ptr<Before> before_;
};

/// While an object lives, the test is a user who may not write everywhere: an administrator gives up that right.
class OrdinaryUser {
 public:
  OrdinaryUser();
  ~OrdinaryUser();
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  bool administrator_ = false;
};

}  // namespace quillbox
