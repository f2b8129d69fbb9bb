#include "platform/offline/private_copy.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
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

// The two sequence numbers and the time of the last write, in a hive's first block.
constexpr std::size_t kStampAt = 4;
constexpr std::size_t kStampEnd = 20;

/// A file's first bytes, at most `size`; none when it cannot be read.
std::string Beginning(const HostPlace& file, std::size_t size) try {
  std::string bytes(size, '\0');
  const std::size_t length = OpenHostFile(file, {})->Read(bytes);
  bytes.resize(length);
  return bytes;
} catch (const Error&) {
  return {};
}

std::string HiveStamp(const HostPlace& hive) {
  std::string block = Beginning(hive, kStampEnd);
  block.resize(kStampEnd);
  std::string digits;
  for (std::size_t at = kStampAt; at < kStampEnd; ++at) {
    std::array<char, 3> byte = {};
    std::snprintf(byte.data(), byte.size(), "%02x", static_cast<unsigned char>(block[at]));
    digits += byte.data();
  }
  return digits;
}

fs::path KeepOlder(const fs::path& file) {
  for (int number = 1; number < kMaxOlderCopies; ++number) {
    fs::path older = file.string() + ".older-" + std::to_string(number);
    if (fs::exists(fs::symlink_status(older))) continue;
    fs::rename(file, older);
    return older;
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
  return Beginning(originFile_, origin.size() + 1) == origin;
}

bool PrivateCopy::IsOutdated() const {
  return IsThere() && !IsCurrent();
}

bool PrivateCopy::CanWrite() const {
  return MakePrivateFolder(folder_) && CanWriteFolder(HostPlace::Anywhere(folder_));
}

fs::path PrivateCopy::Begin() try {
  fs::path older;
  if (IsOutdated()) older = KeepOlder(file_.Path());
  const std::string origin = DiskOrigin();
  ReplaceHostFile(originFile_, ByteView(reinterpret_cast<const std::uint8_t*>(origin.data()), origin.size()), kDoing,
                  originFile_);
  return older;
} catch (const fs::filesystem_error& error) {
  throw HostFileError(kDoing, file_, error.code());
}

}  // namespace quillbox
