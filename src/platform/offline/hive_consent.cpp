// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/hive_consent.h"

#include "host/host_path.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr const char* kNotClosed = "was not closed cleanly";
constexpr const char* kMightApply = "Windows might still apply them";

/// "NTUSER.DAT.LOG: its checksum is wrong" of each log, with `between` between them.
std::string LogReasons(const Hive& hive, const char* between) {
  std::string text;
  for (const UnusedHiveLog& unused : hive.UnusedLogs()) {
    text += (text.empty() ? "" : between) + HostPath(unused.name).Name() + ": " + unused.why;
  }
  return text;
}

}  // namespace

bool NeedsConsent(const Hive& hive) {
  return !hive.Damage().empty() || hive.Origin() == HiveOrigin::DirtyUnusedLogs;
}

std::string ConsentQuestion(const Hive& hive, const std::string& registry, const std::string& copies) {
  std::string text;
  if (hive.Origin() == HiveOrigin::DirtyUnusedLogs) {
    text = registry + " " + kNotClosed + ", and its logs cannot be used:\n\n" + LogReasons(hive, "\n") + "\n\n" +
           kMightApply + ". ";
    if (hive.Damage().empty()) return text + "Go on with the registry as it is?";
    text += "\n\n";
  }
  text += registry + " is " + DamagedIn(hive.DamageCount()) + ". Open what can be read? The disk will not be written.";
  if (copies.empty()) return text;
  return text + "\n\n" + AsciiUpper(copies.front()) + copies.substr(1) + ".";
}

std::string UnusedLogsFault(const Hive& hive) {
  return std::string("it ") + kNotClosed + ", and its logs cannot be used (" + LogReasons(hive, "; ") + "); " +
         kMightApply;
}

std::string DamagedIn(std::size_t places) {
  return "damaged in " + std::to_string(places) + (places == 1 ? " place" : " places");
}

void LogWhatIsMissing(const Hive& hive, const std::string& file, Log& log) {
  for (const UnusedHiveLog& unused : hive.UnusedLogs()) log.Write(unused.name + ": not used, since " + unused.why);
  for (const HiveDamage& damage : hive.Damage()) {
    log.Write(Describe(Error({}, {file, damage.offset, {}}, damage.part + " is damaged: " + damage.fault)));
  }
  const std::size_t more = hive.DamageCount() - hive.Damage().size();
  if (more > 0) log.Write(file + ": and " + std::to_string(more) + " more damaged places");
}

}  // namespace quillbox
