#include "registry/hive_data.h"
#include "registry/hive_log.h"
#include "text/error.h"

namespace quillbox {

namespace {

constexpr std::uint32_t kOldestMinor = 3;
constexpr std::uint32_t kNewestMinor = 6;

[[noreturn]] void BaseFault(const HiveData& hive, std::size_t offset, std::string why) {
  throw Error("opening the hive", {.name = hive.name, .offset = offset, .line = {}}, std::move(why));
}

/// Refuses what is no hive of a kind that we know.
void CheckBase(const HiveData& hive, const Bytes& file) {
  if (!LooksLikeHive(file)) BaseFault(hive, 0, "it does not begin with \"regf\", so it is no registry hive");
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

void LoadFile(HiveData& hive, Bytes file) {
  CheckBase(hive, file);
  hive.cells = HiveCells(CutToBins(hive, std::move(file)));
  const std::uint8_t* base = hive.cells.Base();
  hive.minor = Load32(base + BaseField::kMinor);
  hive.root = Load32(base + BaseField::kRoot);
  hive.now = Load64(base + BaseField::kTime);
  hive.cells.Scan(hive.name);
  CheckHive(hive);
}

/// True when the hive could be recovered and is whole.
bool LoadRecovered(HiveData& hive, Bytes file, const std::vector<HiveLogFile>& logs) {
  if (!ApplyLogs(file, logs)) return false;
  HiveData recovered;
  recovered.name = hive.name;
  try {
    LoadFile(recovered, std::move(file));
  } catch (const Error&) {
    return false;
  }
  recovered.origin = HiveOrigin::Recovered;
  recovered.changed = true;
  hive = std::move(recovered);
  return true;
}

}  // namespace

bool LooksLikeHive(ByteView file) {
  return file.size() >= 4 && Load32(file.data()) == kHiveTag;
}

void LoadHive(HiveData& hive, Bytes file, const ReadHiveLogs& readLogs, DamagedParts /*damaged*/) {
  if (IsClosedCleanly(file)) {
    LoadFile(hive, std::move(file));
    return;
  }
  const std::vector<HiveLogFile> logs = readLogs ? readLogs() : std::vector<HiveLogFile>();
  if (LoadRecovered(hive, file, logs)) return;
  LoadFile(hive, std::move(file));
  hive.origin = logs.empty() ? HiveOrigin::DirtyNoLog : HiveOrigin::DirtyUnusedLogs;
  for (const HiveLogFile& log : logs) {
    hive.unusedLogs.push_back({log.name, log.unreadable.value_or("it does not belong to the hive, or is damaged")});
  }
}

}  // namespace quillbox
