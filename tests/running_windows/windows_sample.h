// SPDX-License-Identifier: GPL-3.0-or-later
// The Windows that the tests run on, made to hold what the sample disk holds: the system's own registry editor merges
// its registry, and its files are copied to C: and D:. What an earlier test left is deleted, so this must be a Windows
// for tests alone, which says so in its environment.
#pragma once

#include <array>
#include <cstdlib>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>

#include "host/host_paths.h"
#include "platform/offline/offline_processes.h"
#include "platform/windows/windows_platform.h"
#include "sample/sample_disk.h"
#include "support/host_tricks.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"

namespace quillbox {

using SampledPlatform = WindowsPlatform;

inline constexpr const char* kSampleHome = "C:\\Documents and Settings\\Ann Miller";
/// The keys that the program writes to; those that the sample has are its whole registry as far as the program goes.
struct SampledKey {
  RegistryPath path;
  bool isInSample = true;
};
inline const std::array<SampledKey, 11> kSampledKeys = {{
    {{RegistryRoot::CurrentUser, "Control Panel\\International"}},
    {{RegistryRoot::CurrentUser, "Identities"}},
    {{RegistryRoot::CurrentUser, "Software\\Microsoft\\Internet Account Manager"}},
    {{RegistryRoot::CurrentUser, "Software\\Microsoft\\Internet Explorer"}},
    {{RegistryRoot::CurrentUser, "Software\\Microsoft\\Outlook Express"}, false},
    {{RegistryRoot::CurrentUser, "Software\\Microsoft\\WAB"}},
    {{RegistryRoot::CurrentUser, "Software\\Policies"}, false},
    {{RegistryRoot::LocalMachine, "Software\\Clients\\Mail"}},
    {{RegistryRoot::LocalMachine, "Software\\Microsoft\\Internet Explorer"}, false},
    {{RegistryRoot::LocalMachine, "Software\\Microsoft\\Outlook Express"}},
    {{RegistryRoot::LocalMachine, "Software\\Microsoft\\WAB"}},
}};
/// And the values of the system's own that the program goes by.
inline constexpr const char* kFacts =
    "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows NT\\CurrentVersion]\r\n"
    "\"ProductName\"=\"Microsoft Windows XP\"\r\n\r\n"
    "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders]\r\n"
    "\"Local AppData\"=\"C:\\\\Documents and Settings\\\\Ann Miller\\\\Local Settings\\\\Application Data\"\r\n";

inline void RunOrThrow(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                       const TempFolder& temp) {
  const ProgramRun run = RunProgram(program, arguments, temp.Path());
  if (run.code != 0) throw std::runtime_error(NameOf(program) + ": " + run.err);
}

/// Wine's registry editor takes a backslash before the closing quote for an escaped quote, which Windows' own does not.
inline std::string ForThatEditor(std::string commandLine) {
  if (commandLine.ends_with("\\\"")) commandLine.erase(commandLine.size() - 2, 1);
  return commandLine;
}

/// What the sample disk is made of, once for all tests of the program.
struct SampleOriginal {
  SampleOriginal() : disk(MakeSampleDisk(temp / "disk", {.smallStores = true})) {
    files.push_back(NameOf(temp.File("facts.reg", kFacts)));
    for (const SampledKey& key : kSampledKeys) {
      if (!key.isInSample) continue;
      const std::string file = std::to_string(files.size()) + ".reg";
      RunOrThrow(NativePath(RegistryEditorOf(ProgramFolder())).replace_extension(".exe"),
                 {"--disk", NameOf(disk.driveC), "/e", file, FullName(key.path)}, temp);
      files.push_back(NameOf(temp / file));
    }
  }
  TempFolder temp;
  SampleDisk disk;
  std::vector<std::string> files;  ///< of its registry
};

/// Everything on the drive but what Windows itself has there.
inline void Empty(const std::filesystem::path& drive) {
  static const std::set<std::string> kOfWindows = {"windows", "users", "ProgramData", "Program Files",
                                                   "Program Files (x86)"};
  std::error_code isEmpty;  // a drive without an entry cannot be listed
  std::vector<std::filesystem::path> entries;
  for (const auto& entry : std::filesystem::directory_iterator(drive, isEmpty)) entries.push_back(entry.path());
  for (const auto& entry : entries) {
    if (kOfWindows.count(NameOf(entry.filename())) == 0) std::filesystem::remove_all(entry);
  }
}

/// The library's own copy of folders takes those that are there already for a fault.
inline void CopyTree(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::filesystem::create_directories(to);
  for (const auto& entry : std::filesystem::directory_iterator(from)) {
    const std::filesystem::path target = to / entry.path().filename();
    if (entry.is_directory()) {
      CopyTree(entry.path(), target);
    } else {
      std::filesystem::copy_file(entry.path(), target, std::filesystem::copy_options::overwrite_existing);
    }
  }
}

inline SampleDisk MakeSampled(const TempFolder& temp) {
  if (std::getenv("QUILLBOX_WINDOWS_FOR_TESTS") == nullptr) throw std::runtime_error("this Windows is in use");
  static const SampleOriginal original;
  {
    ScriptedDialogs dialogs;
    WindowsPlatform platform(temp / "state", dialogs);
    for (const SampledKey& key : kSampledKeys) platform.GetRegistry().DeleteTree(key.path);
  }
  std::vector<std::string> merge = original.files;
  merge.insert(merge.begin(), "/s");
  RunOrThrow("C:\\windows\\regedit.exe", merge, temp);
  SampleDisk here{.driveC = "C:\\", .driveD = "D:\\", .profile = original.disk.profile};
  for (const auto& drive : {here.driveC, here.driveD}) Empty(drive);
  for (const char* folder : {"Documents and Settings", "Program Files"}) {
    CopyTree(original.disk.driveC / folder, here.driveC / folder);
  }
  CopyTree(original.disk.driveD, here.driveD);
  const std::pair<const char*, std::string> variables[] = {
      {"USERPROFILE", kSampleHome},
      {"APPDATA", std::string(kSampleHome) + "\\Application Data"},
      {"ALLUSERSPROFILE", "C:\\Documents and Settings\\All Users"},
  };
  for (const auto& [name, value] : variables) SetVariable(name, value);
  return here;
}

/// A kind of SampledPlatform on it.
template <class Platform>
std::unique_ptr<Platform> OpenSampled(const SampleDisk& /*sample*/, const TempFolder& temp, Dialogs& dialogs,
                                      const std::function<void(std::string)>& /*named*/) {
  return std::make_unique<Platform>(temp / "state", dialogs);
}

}  // namespace quillbox
