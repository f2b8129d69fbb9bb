// SPDX-License-Identifier: GPL-3.0-or-later
#include <optional>
#include <utility>

#include "registry/hive_data.h"
#include "registry/hive_log.h"
#include "registry/hive_salvage.h"
#include "text/error.h"

namespace quillbox {

namespace {

constexpr std::uint32_t kOldestMinor = 3;
constexpr std::uint32_t kNewestMinor = 6;

[[noreturn]] void BaseFault(const HiveData& hive, std::size_t offset, std::string why) {
  throw Error("opening the hive", {.name = hive.name, .offset = offset, .line = {}}, std::move(why));
}

/// Refuses what is not a hive of a known kind.
void CheckBase(const HiveData& hive, const Bytes& file) {
  if (!LooksLikeHive(file)) BaseFault(hive, 0, "it does not begin with \"regf\", so it is not a registry hive");
  if (file.size() < kHivePage) {
    BaseFault(hive, file.size(), "the file ends here, within the first 4096 bytes of a hive");
  }
  const auto get = [&](std::size_t field) { return Load32(file.data() + field); };
  const std::uint32_t major = get(BaseField::kMajor);
  const std::uint32_t minor = get(BaseField::kMinor);
  if (major != 1 || minor < kOldestMinor || minor > kNewestMinor) {
    BaseFault(hive, BaseField::kMajor,
              "its format is version " + std::to_string(major) + "." + std::to_string(minor) +
                  "; versions 1.3 to 1.6 can be read");
  }
  if (get(BaseField::kType) != 0) BaseFault(hive, BaseField::kType, "it is a hive's log and not a hive");
  if (get(BaseField::kFormat) != 1) BaseFault(hive, BaseField::kFormat, "its layout is unknown");
  if (minor == kNewestMinor && (get(BaseField::kFlags) & kDifferencingFlag) != 0) {
    BaseFault(hive, BaseField::kFlags, "it holds only the differences to another hive");
  }
}

/// The file without what may follow the last bin.
Bytes CutToBins(const HiveData& hive, Bytes file) {
  const std::size_t size = Load32(file.data() + BaseField::kBinsSize);
  if (size == 0 || size % kHivePage != 0 || size > kMaxBinsSize) {
    BaseFault(hive, BaseField::kBinsSize, "the size of its bins, " + std::to_string(size) + " bytes, is wrong");
  }
  if (file.size() < kHivePage + size) {
    BaseFault(hive, file.size(),
              "the file ends here and should be " + std::to_string(kHivePage + size) + " bytes long");
  }
  file.resize(kHivePage + size);
  return file;
}

void LoadWhole(HiveData& hive, Bytes file) {
  hive.cells = HiveCells(CutToBins(hive, std::move(file)));
  const std::uint8_t* base = hive.cells.Base();
  hive.minor = Load32(base + BaseField::kMinor);
  hive.root = KeyCell(Load32(base + BaseField::kRoot));
  hive.now = Load64(base + BaseField::kTime);
  hive.cells.Scan([&](std::size_t offset, std::string why) { ThrowHiveFault(hive.name, offset, std::move(why)); });
  CheckHive(hive);
}

/// `hive` has a name and nothing else.
void LoadFile(HiveData& hive, Bytes file, DamagedParts damaged) {
  CheckBase(hive, file);
  if (damaged == DamagedParts::Refuse) {
    LoadWhole(hive, std::move(file));
    return;
  }
  try {
    HiveData whole;
    whole.name = hive.name;
    LoadWhole(whole, file);
    hive = std::move(whole);
  } catch (const Error& fault) {
    SalvageHive(hive, std::move(file), fault);
  }
}

HiveData LoadedFile(const std::string& name, Bytes file, DamagedParts damaged) {
  HiveData hive;
  hive.name = name;
  LoadFile(hive, std::move(file), damaged);
  return hive;
}

/// A hive that was not closed cleanly, and the logs beside it.
class DirtyHive {
 public:
  DirtyHive(const std::string& name, Bytes file, std::vector<HiveLogFile> logFiles)
      : name_(name), file_(std::move(file)), logFiles_(std::move(logFiles)), logs_(ReadLogs(logFiles_)) {}

  /// A hive that is whole goes before one with damaged parts, even where it lacks its last changes; otherwise the
  /// recovered one goes before the file as it is.
  HiveData Load(DamagedParts damaged) {
    if (std::optional<HiveData> recovered = LoadWholeRecovery()) return *std::move(recovered);
    try {
      return LoadAsItIs(DamagedParts::Refuse);
    } catch (const Error& error) {
      if (damaged == DamagedParts::Refuse) ThrowWithLogs(error);
    }
    if (std::optional<HiveData> salvaged = SalvageRecovery()) return *std::move(salvaged);
    try {
      return LoadAsItIs(DamagedParts::LeaveOut);
    } catch (const Error& error) {
      ThrowWithLogs(error);
    }
  }

 private:
  HiveData LoadRecovered(RecoveredFile recovered, DamagedParts damaged) const {
    HiveData hive = LoadedFile(name_, std::move(recovered.bytes), damaged);
    hive.origin = HiveOrigin::Recovered;
    hive.changed = true;
    for (const LogBeside* log : recovered.logs) hive.appliedLogs.push_back(log->name);
    return hive;
  }

  /// Nothing when the logs give no whole hive; then all of them have been refused.
  std::optional<HiveData> LoadWholeRecovery() {
    while (std::optional<RecoveredFile> recovered = ApplyLogs(file_, logs_)) {
      const std::vector<LogBeside*> applied = recovered->logs;
      try {
        return LoadRecovered(*std::move(recovered), DamagedParts::Refuse);
      } catch (const Error& error) {
        const std::string fault = Describe(Error({}, error.Place(), error.Why()));
        for (LogBeside* log : applied) log->content = LogRefusal{"what it gives is not a whole hive: " + fault};
      }
    }
    return std::nullopt;
  }

  std::optional<HiveData> SalvageRecovery() const {
    std::vector<LogBeside> logs = ReadLogs(logFiles_);
    std::optional<RecoveredFile> recovered = ApplyLogs(file_, logs);
    if (!recovered) return std::nullopt;
    try {
      return LoadRecovered(*std::move(recovered), DamagedParts::LeaveOut);
    } catch (const Error&) {
      return std::nullopt;  // no tree is left; UnusedLogs() has the reasons
    }
  }

  HiveData LoadAsItIs(DamagedParts damaged) const {
    HiveData hive = LoadedFile(name_, file_, damaged);
    hive.unusedLogs = UnusedLogs();
    hive.origin = hive.unusedLogs.empty() ? HiveOrigin::DirtyNoLog : HiveOrigin::DirtyUnusedLogs;
    return hive;
  }

  /// Logs that are empty or all zero count as none: Windows leaves a log so that it never wrote to. They are listed
  /// only together with one that holds more.
  std::vector<UnusedHiveLog> UnusedLogs() const {
    std::vector<UnusedHiveLog> unused;
    bool any = false;
    for (const LogBeside& log : logs_) {
      const auto& refusal = std::get<LogRefusal>(log.content);
      any = any || !refusal.holdsNothing;
      unused.push_back({log.name, refusal.why});
    }
    if (!any) unused.clear();
    return unused;
  }

  [[noreturn]] void ThrowWithLogs(const Error& error) const {
    std::string why = error.Why();
    for (const UnusedHiveLog& log : UnusedLogs()) why += "; " + log.name + " was not used: " + log.why;
    throw Error(error.Doing(), error.Place(), std::move(why));
  }

  const std::string& name_;
  Bytes file_;
  std::vector<HiveLogFile> logFiles_;
  std::vector<LogBeside> logs_;  ///< refer to the bytes in logFiles_
};

}  // namespace

bool LooksLikeHive(ByteView file) {
  return file.size() >= 4 && Load32(file.data()) == kHiveTag;
}

void LoadHive(HiveData& hive, Bytes file, const ReadHiveLogs& readLogs, DamagedParts damaged) {
  if (IsClosedCleanly(file)) {
    LoadFile(hive, std::move(file), damaged);
    return;
  }
  const std::string name = hive.name;
  hive = DirtyHive(name, std::move(file), readLogs ? readLogs() : std::vector<HiveLogFile>()).Load(damaged);
}

}  // namespace quillbox
