// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/hive_logs.h"

#include <string>
#include <system_error>

#include "host/host_names.h"
#include "platform/hosted/host_open.h"
#include "platform/hosted/place_finder.h"
#include "platform/offline/hive_storage.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kReadingLog = "reading the hive's log";
constexpr std::uint64_t kMegabyte = 1u << 20;

struct FoundLog {
  HostPlace entry;    ///< beside the hive
  PlaceResult place;  ///< what is read: the entry, or the file that it leads to
};

std::vector<FoundLog> FindLogs(const HostPlace& hive) {
  std::vector<FoundLog> logs;
  for (const char* suffix : {".LOG", ".LOG1", ".LOG2"}) {
    const std::string wanted = WindowsName(hive.Name()) + suffix;
    const PlaceResult entry = FindPlace(hive.Folder(), {wanted}, LastStep::Keep);
    if (!entry || !InfoOf(*entry)) continue;
    logs.push_back({*entry, FollowEntry(hive.Folder(), entry->Name())});
  }
  return logs;
}

HiveLogFile ReadLog(const FoundLog& log) {
  HiveLogFile file{log.entry.Path().Text(), {}, {}};
  try {
    const HostPlace& place = log.place.OrThrow();
    if (StateOf(place).size > kMaxHiveLogMegabytes * kMegabyte) {
      file.unreadable = "it is larger than " + std::to_string(kMaxHiveLogMegabytes) + " MB";
    } else {
      file.bytes = ReadHostFile(place, kReadingLog);
    }
  } catch (const Error& error) {
    file.unreadable = error.Why();
  } catch (const std::system_error& error) {
    file.unreadable = ReasonOf(error.code());
  }
  return file;
}

}  // namespace

std::vector<HiveLogFile> ReadLogsOf(const HostPlace& hive) {
  std::vector<HiveLogFile> logs;
  for (const FoundLog& log : FindLogs(hive)) logs.push_back(ReadLog(log));
  return logs;
}

void KeepLogsOf(const HostPlace& hive, const char* suffix, Log& log) {
  for (const FoundLog& found : FindLogs(hive)) {
    const HostPlace kept = Beside(found.entry, suffix);
    if (InfoOf(kept)) continue;
    if (const HiveLogFile content = ReadLog(found); content.unreadable) {
      log.Write(content.name + ": not kept, since " + *content.unreadable);
    } else {
      KeepBeside(*found.place, kept, KeepHow::Copy);  // Windows overwrites its logs in place
    }
  }
}

}  // namespace quillbox
