#include "platform/offline/private_copy.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/offline/hive_storage.h"
#include "platform/offline/host_open.h"
#include "platform/offline/host_streams.h"
#include "platform/offline/state_folder.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr const char* kDoing = "making a private copy of the hive";
constexpr int kMaxOlderCopies = 10'000;

// The last line of the origin of a copy without what was damaged.
constexpr std::string_view kDamage = "damaged places ";
constexpr std::size_t kDamageLine = 32;

/// A file's first bytes, at most `size`; none when it cannot be read.
std::string Beginning(const HostPlace& file, std::size_t size) try {
  std::string bytes(size, '\0');
  const std::size_t length = OpenHostFile(file, {})->Read(bytes);
  bytes.resize(length);
  return bytes;
} catch (const Error&) {
  return {};
}

/// A name beside `file` that is free.
fs::path OlderName(const fs::path& file) {
  for (int number = 1; number < kMaxOlderCopies; ++number) {
    fs::path older = file.string() + ".older-" + std::to_string(number);
    if (!fs::exists(fs::symlink_status(older))) return older;
  }
  throw Error(kDoing, {file.string(), {}, {}}, "there are too many older copies beside it");
}

}  // namespace

PrivateCopy::PrivateCopy(const fs::path& stateFolder, const HostPlace& disk)
    : disk_(disk),
      folder_(stateFolder / "copies" / HashName(disk.Path().string())),
      file_(HostPlace::Anywhere(folder_ / disk.Name())),
      originFile_(HostPlace::Anywhere(file_.Path().string() + ".origin")) {}

std::string PrivateCopy::DiskOrigin() const {
  const FileState state = StateOf(disk_);
  return "A private copy of " + disk_.Path().string() + "\nsize " + std::to_string(state.size) + "\nmodified " +
         std::to_string(state.seconds) + "." + std::to_string(state.nanoseconds) + "\nstamp " + HiveStamp(disk_) + "\n";
}

bool PrivateCopy::IsThere() const {
  const std::optional<struct stat> info = StatPlace(file_);
  return info && S_ISREG(info->st_mode);
}

bool PrivateCopy::IsCurrent() const {
  if (!IsThere()) return false;
  const std::string origin = DiskOrigin();
  return Beginning(originFile_, origin.size()) == origin;
}

std::size_t PrivateCopy::DamagedPlaces() const {
  const std::size_t length = DiskOrigin().size();
  const std::string origin = Beginning(originFile_, length + kDamageLine);
  const std::string_view rest = std::string_view(origin).substr(std::min(length, origin.size()));
  std::size_t places = 0;
  if (rest.starts_with(kDamage)) {
    std::from_chars(rest.data() + kDamage.size(), rest.data() + rest.size(), places);
  }
  return places;
}

bool PrivateCopy::IsOutdated() const {
  return IsThere() && !IsCurrent();
}

bool PrivateCopy::CanWrite() const {
  return MakePrivateFolder(folder_) && CanWriteFolder(HostPlace::Anywhere(folder_));
}

fs::path PrivateCopy::Begin(std::size_t damagedPlaces) try {
  fs::path older;
  if (IsOutdated()) {
    older = OlderName(file_.Path());
    fs::rename(file_.Path(), older);
  }
  std::string origin = DiskOrigin();
  if (damagedPlaces > 0) origin.append(kDamage).append(std::to_string(damagedPlaces)).append("\n");
  ReplaceHostFile(originFile_, ByteView(reinterpret_cast<const std::uint8_t*>(origin.data()), origin.size()), kDoing,
                  originFile_);
  return older;
} catch (const fs::filesystem_error& error) {
  throw HostFileError(kDoing, file_, error.code());
}

fs::path PrivateCopy::KeepDamaged() const {
  fs::path older = OlderName(file_.Path());
  KeepBeside(file_, HostPlace::Anywhere(older), KeepHow::SecondName);
  return older;
}

}  // namespace quillbox
