// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/key_files.h"

#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::uint32_t kForceRestore = 8;

/// What a file's name ends in while it is being made.
constexpr const char* kUnfinished = ".unfinished";

}  // namespace

KeyFiles::Outcome KeyFiles::Save(const RegistryPath& path, const WinPath& file) {
  if (!registry_.EnablePrivilege("SeBackupPrivilege")) return {};
  const OpenResult opened = registry_.Open(path, Access::Full);
  if (opened.status == Status::FileNotFound) platform_.GetFiles().DeleteFile(file);
  const Status status = opened.status == Status::Success ? ReplaceByKey(opened.key, file) : opened.status;
  return {opened.status, status};
}

// The registry saves to new files only. An older file stays until the new one is complete, so that a full disk does
// not cost an earlier backup.
Status KeyFiles::ReplaceByKey(const Key& key, const WinPath& file) {
  FileSystem& files = platform_.GetFiles();
  if (!files.Stat(file)) return registry_.SaveKey(key, file);
  const WinPath unfinished(file.Text() + kUnfinished);
  files.DeleteFile(unfinished);
  Status status = registry_.SaveKey(key, unfinished);
  if (status == Status::Success) {
    try {
      files.WriteFile(file, files.ReadFile(unfinished));
    } catch (const Error& error) {
      platform_.GetLog().Write(Describe(error));
      status = Status::RegistryIo;
    }
  }
  files.DeleteFile(unfinished);
  return status;
}

KeyFiles::Outcome KeyFiles::Restore(const RegistryPath& path, const WinPath& file) {
  if (!registry_.EnablePrivilege("SeRestorePrivilege")) return {};
  const OpenResult opened = registry_.Open(path, Access::Full);
  if (opened.status != Status::Success) return {opened.status, opened.status};
  return {opened.status, registry_.RestoreKey(opened.key, file, kForceRestore)};
}

}  // namespace quillbox
