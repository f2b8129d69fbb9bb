// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/registry_store.h"

#include <exception>
#include <new>

#include "platform/status_text.h"

namespace quillbox {
namespace {

// Run-time error numbers that the message of a failed read shows.
constexpr int kOutOfMemory = 7;
constexpr int kInternalError = 51;

}  // namespace

RegValue RegistryStore::RegistryGetKeyValue(const RegistryPath& path, std::string_view name,
                                            ExpandableText expandable) {
  const auto fail = [&](int number, const std::string& description) {
    platform_.GetDialogs().Show(
        {.text = "Error: " + std::to_string(number) + ". " + description, .title = "RegistryGetKeyValue"});
    return RegValue();
  };
  try {
    return access_.Read(path, name, expandable);
  } catch (const std::bad_alloc&) {
    return fail(kOutOfMemory, "Out of memory");
  } catch (const std::exception& error) {
    return fail(kInternalError, error.what());
  }
}

void RegistryStore::WriteOrLog(const RegistryPath& path, std::string_view name, const RegValue& value, ValueType type) {
  const Status status = access_.Write(path, name, value, type);
  if (status != Status::Success) LogRefusal("the value \"" + std::string(name) + "\" was not written", path, status);
}

Key RegistryStore::CreateKey(const RegistryPath& path) {
  OpenResult created = registry_.Create(path);
  if (created.status != Status::Success) LogRefusal("the key was not made", path, created.status);
  return std::move(created.key);
}

void RegistryStore::DeleteKey(const RegistryPath& path) {
  if (path.root == RegistryRoot::None) return;
  const Status status = registry_.DeleteTree(path);
  if (status != Status::Success) LogRefusal("the key was not deleted", path, status);
}

void RegistryStore::SaveKey(const RegistryPath& path, const WinPath& file, OnFailure onFailure) {
  KeyExport made{FullName(path), FullPath(file), KeyExport::End::Written, {}};
  const KeyFiles::Outcome saved = keyFiles_.Save(path, file);
  if (saved.status != Status::Success) {
    made.end = saved.opened == Status::FileNotFound ? KeyExport::End::NothingThere : KeyExport::End::Failed;
    made.reason = LogRefusal("the key was not saved to " + file.Text(), path, saved.status);
  }
  TellFailure(made, onFailure);
  exports_.push_back(std::move(made));
}

bool RegistryStore::RegExport(const std::string& key, const WinPath& file, KeyForm form, OnFailure onFailure) {
  KeyExport made{key, FullPath(file), KeyExport::End::Written, {}};
  const auto path = ParseRegistryPath(key);
  const bool exists = !path || Exists(*path);
  const auto failure = editor_.Export(key, file, form, osCode_);
  if (osCode_ == OsCode::Unknown) {
    made.end = KeyExport::End::NotStarted;
    platform_.GetLog().Write(key + ": not exported because " + WhyNoExports().value_or(std::string()));
  } else if (failure) {
    made.end = exists ? KeyExport::End::Failed : KeyExport::End::NothingThere;
    made.reason = failure->reason;
    if (!exists) platform_.GetLog().Write(key + ": nothing to export, the key does not exist");
  }
  TellFailure(made, onFailure);
  exports_.push_back(std::move(made));
  return !failure;
}

void RegistryStore::TellFailure(const KeyExport& made, OnFailure onFailure) {
  const bool isMissing = made.end == KeyExport::End::NothingThere;
  if (made.reason.empty() || onFailure == OnFailure::LogOnly) return;
  if (!isMissing || onFailure == OnFailure::Tell) failures_.Add(made.reason);
}

WinPath RegistryStore::FullPath(const WinPath& file) {
  return Resolve(file, platform_.GetDrives().CurrentDirectory());
}

bool RegistryStore::Exists(const RegistryPath& path) {
  return registry_.Open(path, Access::Read).status != Status::FileNotFound;
}

void RegistryStore::RestoreKey(const RegistryPath& path, const WinPath& file) {
  const KeyFiles::Outcome restored = keyFiles_.Restore(path, file);
  if (restored.status == Status::Success) return;
  const bool isOpened = restored.opened == Status::Success;
  const std::string what = isOpened ? "the key was not restored from " : "the key could not take what is in ";
  failures_.Add(LogRefusal(what + file.Text(), path, restored.status));
}

bool RegistryStore::Report(const std::optional<EditorFailure>& failure, OnFailure onFailure) {
  if (failure && onFailure == OnFailure::Tell) failures_.Add(failure->reason);
  return !failure;
}

void RegistryStore::ShowRegistryReadError(Status code, const std::string& suffix) {
  platform_.GetDialogs().Show(
      {.text = "Registry read error " + std::to_string(static_cast<std::uint32_t>(code)) + suffix});
}

/// The refusal in words, which the log has afterwards.
std::string RegistryStore::LogRefusal(const std::string& what, const RegistryPath& path, Status status) {
  std::string words =
      FullName(path) + ": " + what + " because " + registry_.WhyRefused().value_or(StatusReason(status));
  platform_.GetLog().Write(words);
  return words;
}

}  // namespace quillbox
