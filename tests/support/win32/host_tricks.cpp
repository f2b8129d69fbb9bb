// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/host_tricks.h"

#include <windows.h>

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <map>

#include "support/temp_folder.h"

namespace quillbox {

namespace {

/// As text, which has ends of lines of its own here.
std::string ContentOf(const std::filesystem::path& file) {
  std::ifstream in(file);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

std::string WhyNot(Trick trick) {
  static const std::map<Trick, const char*> kReasons = {
      {Trick::Links, "wine 8 makes no symbolic links, and Windows lets only some users make them"},
      {Trick::Modes, "permissions are lists of rights here, and wine keeps none"},
      {Trick::Pipes, "named pipes are in no folder here"},
      {Trick::DeepFolders, "wine's own paths end at 4,096 bytes"},
      {Trick::BadNames, "Windows has no such names"},
      {Trick::OpenFolders, "an open folder cannot be renamed here"},
      {Trick::Scripts, "there are no shell scripts here"},
      {Trick::Forks, "a process cannot be copied here"},
      {Trick::FailingCalls, "the system's calls cannot be replaced here"},
      {Trick::Privileges, "wine restores no keys from files, and saves them in a form of its own"},
      {Trick::MountPoints, "there is no /dev here"},
  };
  return kReasons.at(trick);
}

int QuotaErrno() {
  return 0;
}

void MakePipe(const std::filesystem::path& /*path*/) {}

bool SetServerAttribute(const std::filesystem::path& /*file*/, const std::string& /*value*/) {
  return false;
}

void SetVariable(const std::string& name, const std::string& value) {
  _putenv_s(name.c_str(), value.c_str());
  _tzset();
}

int RunInCopy(const std::function<void()>& /*act*/) {
  return 1;
}

void KillThisProcess() {
  TerminateProcess(GetCurrentProcess(), 1);
  std::abort();
}

unsigned long ProcessNumber() {
  return GetCurrentProcessId();
}

ProgramRun RunProgram(const std::filesystem::path& program, std::vector<std::string> arguments,
                      const std::filesystem::path& folder) {
  std::wstring line = L"\"" + program.native() + L"\"";
  for (const std::string& argument : arguments) line += L" \"" + PathOf(argument).native() + L"\"";
  SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
  const auto open = [&](const char* name) {
    return CreateFileW((folder / name).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
  };
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = open("out");
  start.hStdError = open("err");
  PROCESS_INFORMATION process = {};
  DWORD code = static_cast<DWORD>(-1);
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), &start, &process)) {
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
  }
  CloseHandle(start.hStdOutput);
  CloseHandle(start.hStdError);
  return {static_cast<int>(code), ContentOf(folder / "out"), ContentOf(folder / "err")};
}

std::uint64_t MostMemoryOfPrograms() {
  return 0;
}

LockedFile::LockedFile(const std::filesystem::path& file)
    : handle_(reinterpret_cast<std::intptr_t>(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                                          nullptr, OPEN_EXISTING, 0, nullptr))) {}

LockedFile::~LockedFile() {
  CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

struct FileSizeLimit::Before {};

FileSizeLimit::FileSizeLimit(std::uint64_t /*bytes*/) {}

FileSizeLimit::~FileSizeLimit() = default;

OrdinaryUser::OrdinaryUser() = default;

OrdinaryUser::~OrdinaryUser() = default;

}  // namespace quillbox
