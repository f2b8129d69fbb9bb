// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/log.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <optional>
#include <string>

#include "host/host_paths.h"
#include "host/log_file.h"
#include "host/state_folder.h"
#include "host/system_facts.h"
#include "text/local_time.h"
#include "text/message_text.h"

namespace quillbox {

namespace {

std::string TimeNow() {
  const std::optional<std::tm> local = LocalTime(Now().seconds);
  std::array<char, 40> text = {};
  if (!local) return {};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S %z", &*local)};
}

}  // namespace

FileLog::FileLog(const HostPath& stateFolder, LogEcho echo) : echo_(echo) {
  if (!MakePrivateFolder(stateFolder)) return;
  file_ = stateFolder / "quillbox.log";
  const PathInfo there = InfoOf(file_);
  if (there.info && there.info->size > kMaxBytes) Move(file_, stateFolder / "quillbox.log.old");
}

void FileLog::Write(std::string_view text) try {
  // Several lines become one: signs for line ends would be hard to read.
  std::string line = TimeNow() + "  " + std::string(text);
  std::replace(line.begin(), line.end(), '\n', ' ');
  line = OneLine(line) + '\n';
  if (echo_ == LogEcho::StandardError || file_.Empty()) WriteToStandardError(line);
  if (!file_.Empty()) AppendToFile(file_, line);
} catch (...) {  // NOLINT(bugprone-empty-catch): there is nowhere left to say so
}

}  // namespace quillbox
