// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_program.h"

#include <windows.h>
// After it.
#include <objbase.h>
#include <shellapi.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "host/host_fault.h"
#include "host/program_errors.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"

namespace quillbox {

namespace {

constexpr int kUnknownExit = -1;

/// An argument as the C runtime of a started program takes it apart: backslashes count only before a quote.
std::string Quoted(const std::string& argument) {
  if (!argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos) return argument;
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char c : argument) {
    if (c == '"') quoted.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    quoted += c;
  }
  return quoted.append(backslashes, '\\') + '"';
}

/// How a program is started.
struct Start {
  std::vector<HandleNumber> passed;
  HANDLE errors = nullptr;  ///< what it writes its errors to; then it reads nothing and shows nothing
  DWORD flags = 0;
};

/// The list of the handles that a new process gets: those that another thread passes to its own are not in it.
class PassedHandles {
 public:
  explicit PassedHandles(const std::vector<HandleNumber>& numbers) {
    for (const HandleNumber number : numbers) {
      handles_.push_back(reinterpret_cast<HANDLE>(number));
      SetHandleInformation(handles_.back(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    }
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    buffer_.resize(size / sizeof(std::max_align_t) + 1);
    if (!InitializeProcThreadAttributeList(List(), 1, 0, &size)) ThrowLast();
    if (!handles_.empty() && !UpdateProcThreadAttribute(List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                                        handles_.size() * sizeof(HANDLE), nullptr, nullptr)) {
      ThrowLast();
    }
  }
  ~PassedHandles() {
    DeleteProcThreadAttributeList(List());
    for (HANDLE handle : handles_) SetHandleInformation(handle, HANDLE_FLAG_INHERIT, 0);
  }
  PassedHandles(const PassedHandles&) = delete;
  PassedHandles& operator=(const PassedHandles&) = delete;

  LPPROC_THREAD_ATTRIBUTE_LIST List() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(buffer_.data()); }
  bool Empty() const { return handles_.empty(); }

 private:
  std::vector<HANDLE> handles_;
  std::vector<std::max_align_t> buffer_;
};

HostHandle OpenNothing() {
  HostHandle nothing = Owned(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                         nullptr, OPEN_EXISTING, 0, nullptr));
  if (!nothing) ThrowLast();
  return nothing;
}

/// The program's file where it is a path; empty for a name, which the system looks for.
std::wstring FileOf(const std::string& program) {
  const HostPath path(program);
  if (path.Names().size() < 2) return {};
  const bool hasEnding = path.Name().find('.') != std::string::npos;
  return NativePath(hasEnding ? path : path.Parent().Join(path.Name() + ".exe")).native();
}

HostHandle StartProcess(const HostProgram& program, Start start) {
  std::string line = Quoted(program.program);
  for (const std::string& argument : program.arguments) line += ' ' + Quoted(argument);
  std::wstring command = Wide(line);
  const std::wstring file = FileOf(program.program);

  STARTUPINFOEXW info = {};
  info.StartupInfo.cb = sizeof info;
  HostHandle nothing;
  if (start.errors != nullptr) {
    nothing = OpenNothing();
    info.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    info.StartupInfo.hStdInput = info.StartupInfo.hStdOutput = Raw(nothing);
    info.StartupInfo.hStdError = start.errors;
    start.passed.push_back(nothing.Number());
    start.passed.push_back(reinterpret_cast<HandleNumber>(start.errors));
  }
  PassedHandles passed(start.passed);
  info.lpAttributeList = passed.List();
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(file.empty() ? nullptr : file.c_str(), command.data(), nullptr, nullptr,
                      passed.Empty() ? FALSE : TRUE, EXTENDED_STARTUPINFO_PRESENT | start.flags, nullptr, nullptr,
                      &info.StartupInfo, &process)) {
    ThrowLast();
  }
  CloseHandle(process.hThread);
  return Owned(process.hProcess);
}

int ExitCodeOf(const HostHandle& process) {
  DWORD code = 0;
  return GetExitCodeProcess(Raw(process), &code) ? static_cast<int>(code) : kUnknownExit;
}

class Child : public StartedProgram {
 public:
  explicit Child(HostHandle process) : process_(std::move(process)) {}
  std::optional<int> ExitCode() override {
    if (!process_) return 0;  // a program that was running already does it
    if (WaitForSingleObject(Raw(process_), 0) == WAIT_TIMEOUT) return std::nullopt;
    return ExitCodeOf(process_);
  }

 private:
  HostHandle process_;
};

HostHandle OpenBySystem(const std::string& folderOrPage) {
  const std::wstring what = Wide(folderOrPage);
  // Some that open things need this, and it does not matter whether the thread has it already.
  const bool began = SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
  SHELLEXECUTEINFOW info = {};
  info.cbSize = sizeof info;
  info.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI | SEE_MASK_NOASYNC;
  info.lpVerb = L"open";
  info.lpFile = what.c_str();
  info.nShow = SW_SHOWNORMAL;
  const std::error_code fault = CodeUnless(ShellExecuteExW(&info));
  if (began) CoUninitialize();
  if (fault) ThrowFault(fault);
  return Owned(info.hProcess);
}

/// False for a standard stream of a program that was started without one.
bool LeadsSomewhere(DWORD stream) {
  return GetFileType(GetStdHandle(stream)) != FILE_TYPE_UNKNOWN;
}

}  // namespace

ProgramEnd RunToEnd(const HostProgram& program) {
  HANDLE read = nullptr;
  HANDLE write = nullptr;
  if (!CreatePipe(&read, &write, nullptr, 0)) ThrowLast();
  const HostFile readEnd{Owned(read), "errors"};
  HostHandle writeEnd = Owned(write);
  const HostHandle process =
      StartProcess(program, {.passed = program.passed, .errors = Raw(writeEnd), .flags = CREATE_NO_WINDOW});
  writeEnd.Close();
  std::string errors = ErrorsFrom(readEnd);
  std::erase(errors, '\r');  // of the ends of lines, which programs write as text
  WaitForSingleObject(Raw(process), INFINITE);
  return {.exitCode = ExitCodeOf(process), .errors = std::move(errors)};
}

const char* const kSystemOpener = "";

std::unique_ptr<StartedProgram> OpenForUser(const std::string& opener, const std::string& folderOrPage) {
  if (opener.empty()) return std::make_unique<Child>(OpenBySystem(folderOrPage));
  const HostProgram program{.program = opener, .arguments = {folderOrPage}};
  return std::make_unique<Child>(StartProcess(program, {.passed = {}, .errors = nullptr, .flags = DETACHED_PROCESS}));
}

std::vector<std::string> ProgramArguments(int, char**) {
  int count = 0;
  wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> texts;
  for (int at = 1; arguments != nullptr && at < count; ++at) texts.push_back(Narrow(arguments[at]));
  LocalFree(arguments);
  return texts;
}

Utf8Output::Utf8Output() {
  borrowed_ = !LeadsSomewhere(STD_OUTPUT_HANDLE) && AttachConsole(ATTACH_PARENT_PROCESS) != 0;
  if (borrowed_) {
    std::freopen("CONOUT$", "w", stdout);
    if (!LeadsSomewhere(STD_ERROR_HANDLE)) std::freopen("CONOUT$", "w", stderr);
  }
  before_ = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
}

/// A console that is kept would end this program with the one that it belongs to.
Utf8Output::~Utf8Output() {
  std::fflush(nullptr);
  if (before_ != 0) SetConsoleOutputCP(before_);
  if (borrowed_) FreeConsole();
}

}  // namespace quillbox
