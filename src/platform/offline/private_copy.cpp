#include "platform/offline/private_copy.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <system_error>

#include "platform/offline/hive_storage.h"
#include "platform/offline/state_folder.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr const char* kDoing = "making a private copy of the hive";
constexpr int kMaxOlderCopies = 10'000;

// The two sequence numbers and the time of the last write, in a hive's first block.
constexpr std::size_t kStampAt = 4;
constexpr std::size_t kStampEnd = 20;

/// FNV-1a: all that is asked of it is one folder for each path.
std::string HashName(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  std::array<char, 17> digits = {};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
  return digits.data();
}

std::string ReadText(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string HiveStamp(const fs::path& hive) {
  std::array<char, kStampEnd> block = {};
  std::ifstream(hive, std::ios::binary).read(block.data(), block.size());
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

PrivateCopy::PrivateCopy(const fs::path& stateFolder, const fs::path& disk)
    : disk_(disk),
      folder_(stateFolder / "copies" / HashName(disk.string())),
      file_(folder_ / disk.filename()),
      originFile_(file_.string() + ".origin") {}

std::string PrivateCopy::DiskOrigin() const {
  const FileState state = StateOf(disk_);
  return "A private copy of " + disk_.string() + "\nsize " + std::to_string(state.size) + "\nmodified " +
         std::to_string(state.seconds) + "." + std::to_string(state.nanoseconds) + "\nstamp " + HiveStamp(disk_) + "\n";
}

bool PrivateCopy::IsCurrent() const {
  std::error_code code;
  return fs::is_regular_file(file_, code) && ReadText(originFile_) == DiskOrigin();
}

bool PrivateCopy::IsOutdated() const {
  std::error_code code;
  return fs::is_regular_file(file_, code) && !IsCurrent();
}

bool PrivateCopy::CanWrite() const {
  return MakePrivateFolder(folder_) && CanWriteFolder(folder_);
}

fs::path PrivateCopy::Begin() try {
  fs::path older;
  if (IsOutdated()) older = KeepOlder(file_);
  const std::string origin = DiskOrigin();
  ReplaceHostFile(originFile_, ByteView(reinterpret_cast<const std::uint8_t*>(origin.data()), origin.size()), kDoing,
                  originFile_);
  return older;
} catch (const fs::filesystem_error& error) {
  throw HostFileError(kDoing, file_, error.code().value());
}

}  // namespace quillbox
