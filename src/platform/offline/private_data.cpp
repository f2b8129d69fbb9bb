// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/private_data.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <system_error>

#include "host/folder_lock.h"
#include "host/host_fault.h"
#include "host/host_file.h"
#include "host/host_folder.h"
#include "host/host_paths.h"
#include "host/state_folder.h"
#include "text/error.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

constexpr const char* kCopies = "copies";
constexpr const char* kLogs[] = {"quillbox.log", "quillbox.log.old"};
constexpr std::string_view kOrigin = ".origin";
constexpr std::string_view kOriginBegin = "A private copy of ";
constexpr std::size_t kLongestOrigin = 64 * 1024;
constexpr std::int64_t kDay = 24 * 60 * 60;

std::string Bytes(std::uint64_t size) {
  constexpr std::uint64_t kKilo = 1024;
  return size < kKilo * kKilo ? std::to_string((size + kKilo - 1) / kKilo) + " KB"
                              : std::to_string((size + kKilo * kKilo - 1) / (kKilo * kKilo)) + " MB";
}

std::string Counted(std::size_t count, const char* one, const char* several) {
  return std::to_string(count) + (count == 1 ? one : several);
}

std::vector<std::string> NamesIn(const HostFolder& folder) {
  std::vector<std::string> names;
  const bool isRead = folder.EachName([&](const std::string& name) {
    names.push_back(name);
    return false;
  });
  if (!isRead) throw std::system_error(std::make_error_code(std::errc::permission_denied));
  std::sort(names.begin(), names.end());
  return names;
}

/// The hive that a note on its origin names, if the folder is the one for that hive.
HostPath HiveOf(const HostFolder& folder, const std::string& note, const std::string& folderName) {
  const HostFile file = folder.OpenFile(note);
  if (!file.Info().IsFile()) return {};
  std::string text(kLongestOrigin, '\0');
  text.resize(file.Read(text));
  if (!text.starts_with(kOriginBegin)) return {};
  const std::size_t end = text.find("\nsize ");
  const std::string path = text.substr(kOriginBegin.size(), end - kOriginBegin.size());
  return end != std::string::npos && HashName(path) == folderName ? HostPath(path) : HostPath();
}

KeptCopy LookAt(const HostFolder& folder, const std::string& name) {
  KeptCopy copy{.folder = name};
  for (const std::string& entry : NamesIn(folder)) {
    const EntryInfo info = folder.InfoOf(entry);
    const bool isNote = std::string_view(entry).ends_with(kOrigin);
    if (info.IsFile() && isNote) copy.hive = HiveOf(folder, entry, name);
    copy.size += info.IsFolder() ? 0 : info.size;
    if (isNote) continue;
    ++copy.files;
    if (info.modified.seconds > copy.changed.seconds) copy.changed = info.modified;
  }
  return copy;
}

/// Nothing when it is not there.
HostFolder OpenIfThere(const HostFolder& folder, const std::string& name) {
  return folder.Find(name) ? folder.OpenFolder(name) : HostFolder();
}

std::string Named(const KeptCopy& copy, const HostPath& stateFolder) {
  return OneLine(copy.hive.Empty() ? (stateFolder / kCopies).Join(copy.folder).Text() : copy.hive.Text());
}

/// Programs lock the folder of the hive that they have open for writing. A disk that is not there is not open.
std::string WhyInUse(const KeptCopy& copy, std::optional<FolderLock>& lock) {
  if (copy.hive.Empty()) return "it does not say which disk it is of, so it cannot be found out whether it is in use";
  if (!IsFolder(copy.hive.Parent())) return {};
  try {
    lock.emplace(copy.hive.Parent(), std::vector<HandleNumber>());
    return lock->Lack().empty() ? "" : "its disk has no locks, so it cannot be found out whether it is in use";
  } catch (const Error& error) {
    return error.Why();
  }
}

void RemoveFilesIn(const HostFolder& folder) {
  for (const std::string& entry : NamesIn(folder)) {
    if (folder.InfoOf(entry).IsFolder()) continue;
    if (const std::error_code fault = folder.Remove(entry)) throw std::system_error(fault);
  }
}

/// Throws std::system_error.
void RemoveCopy(const HostFolder& copies, const std::string& name) {
  RemoveFilesIn(copies.OpenFolder(name));  // closed again: Windows removes no folder that is open
  if (const std::error_code fault = copies.RemoveFolder(name)) throw std::system_error(fault);
}

}  // namespace

PrivateData ListPrivateData(const HostPath& stateFolder) {
  PrivateData data;
  HostFolder state;
  const auto note = [&](const HostPath& path, const std::system_error& failure) {
    data.faults.push_back(OneLine(path.Text()) + ": " + ReasonOf(failure.code()));
  };
  if (!IsFolder(stateFolder)) return data;
  try {
    state = HostFolder::Open(stateFolder);
    for (const char* log : kLogs) {
      const auto info = state.Find(log);
      if (!info || info->IsFolder()) continue;
      data.logs.emplace_back(log);
      data.logSize += info->size;
    }
    const HostFolder copies = OpenIfThere(state, kCopies);
    if (!copies) return data;
    for (const std::string& name : NamesIn(copies)) {
      try {
        const KeptCopy copy = LookAt(copies.OpenFolder(name), name);
        // A folder is made before anything is kept in it.
        if (copy.files > 0 || copy.size > 0) data.copies.push_back(copy);
      } catch (const std::system_error& failure) {
        note((stateFolder / kCopies).Join(name), failure);
      }
    }
  } catch (const std::system_error& failure) {
    note(state ? stateFolder / kCopies : stateFolder, failure);
  }
  return data;
}

std::string TextOf(const PrivateData& data, const HostPath& stateFolder, std::int64_t now) {
  std::string text;
  if (!data.copies.empty()) {
    text =
        "Copies of registries that could not be written on their disks. Each holds changes that were NEVER WRITTEN TO "
        "ITS DISK; they are lost with it:\n";
  }
  for (const KeptCopy& copy : data.copies) {
    const std::int64_t days = std::max<std::int64_t>(0, (now - copy.changed.seconds) / kDay);
    text += "\n" + Named(copy, stateFolder) + ": " + Counted(copy.files, " copy, ", " copies, ") + Bytes(copy.size) +
            ", last changed " +
            (days == 0 ? "today" : Counted(static_cast<std::size_t>(days), " day ago", " days ago"));
  }
  if (!data.logs.empty()) text += (text.empty() ? "The log: " : "\n\nThe log: ") + Bytes(data.logSize);
  for (const std::string& fault : data.faults) text += "\nNot looked at: " + fault;
  return text;
}

PrivateRemoval RemovePrivateData(const HostPath& stateFolder, const PrivateData& shown) {
  PrivateRemoval removal;
  removal.kept = shown.faults;
  try {
    const HostFolder state = HostFolder::Open(stateFolder);
    for (const std::string& log : shown.logs) {
      const std::error_code fault = state.Remove(log);
      if (!fault) ++removal.logs;
      if (fault) removal.kept.push_back(OneLine(log) + ": " + ReasonOf(fault));
    }
    const HostFolder copies = OpenIfThere(state, kCopies);
    for (const KeptCopy& copy : shown.copies) {
      std::optional<FolderLock> lock;
      std::string why = WhyInUse(copy, lock);
      try {
        if (why.empty()) RemoveCopy(copies, copy.folder);
      } catch (const std::system_error& failure) {
        why = ReasonOf(failure.code());
      }
      if (why.empty()) ++removal.copies;
      if (!why.empty()) removal.kept.push_back("the copy of " + Named(copy, stateFolder) + ": " + why);
    }
  } catch (const std::system_error& failure) {
    removal.kept.push_back(OneLine(stateFolder.Text()) + ": " + ReasonOf(failure.code()));
  }
  return removal;
}

std::string SummaryOf(const PrivateRemoval& removal) {
  std::string what;
  if (removal.copies > 0) what = "the copies of " + Counted(removal.copies, " registry", " registries");
  if (removal.logs > 0) what += what.empty() ? "the log" : " and the log";
  std::string text = what.empty() ? "Nothing was removed." : "Removed: " + what + ".";
  if (removal.kept.empty()) return text;
  text += "\n\nKept:";
  for (const std::string& kept : removal.kept) text += "\n" + kept;
  return text;
}

}  // namespace quillbox
