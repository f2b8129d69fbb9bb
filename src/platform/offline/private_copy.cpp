// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/private_copy.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>
#include <system_error>

#include "host/host_paths.h"
#include "host/state_folder.h"
#include "platform/hosted/host_open.h"
#include "platform/hosted/host_streams.h"
#include "platform/offline/hive_storage.h"

namespace quillbox {
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
HostPath OlderName(const HostPath& file) {
  for (int number = 1; number < kMaxOlderCopies; ++number) {
    HostPath older = file.Parent().Join(file.Name() + ".older-" + std::to_string(number));
    if (!InfoOf(older, Links::Keep).info) return older;
  }
  throw Error(kDoing, {file.Text(), {}, {}}, "there are too many older copies beside it");
}

}  // namespace

PrivateCopy::PrivateCopy(const HostPath& stateFolder, const HostPlace& disk)
    : disk_(disk),
      folder_(stateFolder / "copies" / HashName(disk.Path().Text())),
      file_(HostPlace::Anywhere(folder_.Join(disk.Name()))),
      originFile_(Beside(file_, ".origin")) {}

std::string PrivateCopy::DiskOrigin() const {
  const FileState state = StateOf(disk_);
  return "A private copy of " + disk_.Path().Text() + "\nsize " + std::to_string(state.size) + "\nmodified " +
         std::to_string(state.modified.seconds) + "." + std::to_string(state.modified.nanoseconds) + "\nstamp " +
         HiveStamp(disk_) + "\n";
}

bool PrivateCopy::IsThere() const {
  const std::optional<EntryInfo> info = InfoOf(file_);
  return info && info->IsFile();
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

HostPath PrivateCopy::Begin(std::size_t damagedPlaces) {
  HostPath older;
  if (IsOutdated()) {
    older = OlderName(file_.Path());
    if (const std::error_code fault = Move(file_.Path(), older)) throw HostFileError(kDoing, file_, fault);
  }
  std::string origin = DiskOrigin();
  if (damagedPlaces > 0) origin.append(kDamage).append(std::to_string(damagedPlaces)).append("\n");
  ReplaceHostFile(originFile_, ByteView(reinterpret_cast<const std::uint8_t*>(origin.data()), origin.size()), kDoing,
                  originFile_);
  return older;
}

HostPath PrivateCopy::KeepDamaged() const {
  HostPath older = OlderName(file_.Path());
  KeepBeside(file_, HostPlace::Anywhere(older), KeepHow::SecondName);
  return older;
}

}  // namespace quillbox
