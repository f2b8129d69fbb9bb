// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/hive_storage.h"

#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/hosted/host_open.h"
#include "platform/hosted/host_streams.h"

namespace quillbox {
namespace {

// A hive's offsets have 31 useful bits.
constexpr std::uint64_t kMaxFileBytes = 1ull << 31;
constexpr const char* kKeeping = "keeping the original hive";

// The two sequence numbers and the time of the last write, in a hive's first block.
constexpr std::size_t kStampAt = 4;
constexpr std::size_t kStampEnd = 20;

std::string_view AsText(ByteView bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};  // NOLINT: bytes as they are
}

/// Gives `file` owner, permissions and attributes of `like`, as far as the file system has them.
void TakeAttributes(NewFile& file, const HostPlace& like) try {
  file.TakeAttributesOf(OpenForReading(like));
} catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): what is not there hands nothing on
}

/// How a file is replaced.
struct ReplaceHow {
  const std::string& doing;
  const HostPlace& like;             ///< whose owner, permissions and attributes it gets
  const EntryInfo* times = nullptr;  ///< whose times, where there are any
};

void Replace(const HostPlace& file, ByteView bytes, const ReplaceHow& how) try {
  const std::unique_ptr<NewFile> replacement = StartNewFile(file);
  TakeAttributes(*replacement, how.like);
  replacement->Write(AsText(bytes));
  if (how.times != nullptr) replacement->SetTimes(how.times->accessed, how.times->modified);
  replacement->Commit();
} catch (const FolderFlushError& error) {
  throw HostFileError(how.doing, file, error.code(), true);
} catch (const std::system_error& error) {
  throw HostFileError(how.doing, file, error.code());
}

void KeepCopy(const HostPlace& file, const HostPlace& kept) {
  const std::optional<EntryInfo> info = InfoOf(file);
  Replace(kept, ReadHostFile(file, kKeeping), {.doing = kKeeping, .like = file, .times = info ? &*info : nullptr});
}

bool LinkBeside(const OpenPlace& file, const OpenPlace& second) {
  return !file.folder.Link(file.name, second.folder, second.name);
}

}  // namespace

HostFileError::HostFileError(std::string doing, const HostPlace& file, const std::error_code& code, bool inPlace)
    : Error(std::move(doing), {file.Path().Text(), {}, {}},
            (inPlace ? "it was written, but its folder could not be flushed to the disk: " : "") + ReasonOf(code)),
      code_(code),
      inPlace_(inPlace) {}

bool HostFileError::IsReadOnly() const {
  return ForbidsWriting(code_);
}

FileState StateOf(const HostPlace& file) {
  const std::optional<EntryInfo> info = InfoOf(file);
  return info ? FileState{info->id, info->size, info->modified} : FileState();
}

std::string HiveStamp(const HostPlace& hive) try {
  std::string block(kStampEnd, '\0');
  if (OpenHostFile(hive, {})->Read(block) < block.size()) return "none";
  std::string digits;
  for (std::size_t at = kStampAt; at < kStampEnd; ++at) {
    std::array<char, 3> byte = {};
    std::snprintf(byte.data(), byte.size(), "%02x", static_cast<unsigned char>(block[at]));
    digits += byte.data();
  }
  return digits;
} catch (const Error&) {
  return "none";
}

Bytes ReadHostFile(const HostPlace& file, const std::string& doing) try {
  const HostFile opened = OpenForReading(file);
  const EntryInfo info = opened.Info();
  if (!info.IsFile()) ThrowFault(HostFault::NotOrdinary);
  if (info.size > kMaxFileBytes) {
    throw Error(doing, {file.Path().Text(), {}, {}}, "it is larger than 2 GB, and no hive or log has more");
  }
  Bytes bytes(static_cast<std::size_t>(info.size));
  if (opened.Read({reinterpret_cast<char*>(bytes.data()), bytes.size()}) < bytes.size()) {
    throw Error(doing, {file.Path().Text(), {}, {}}, "it became shorter while it was read");
  }
  return bytes;
} catch (const std::system_error& error) {
  throw HostFileError(doing, file, error.code());
}

void ReplaceHostFile(const HostPlace& file, ByteView bytes, const std::string& doing, const HostPlace& like) {
  Replace(file, bytes, {.doing = doing, .like = like});
}

HostPlace Beside(const HostPlace& file, const char* suffix) {
  return file.Folder().Join(file.Name() + suffix);
}

void MoveIntoPlace(const HostMove& move, const std::string& doing) try {
  const OpenPlace target = OpenFolderOf(move.to);
  const std::string from = move.from.Name();
  if (const std::error_code fault = target.folder.Rename({.from = from, .to = target.name})) ThrowFault(fault);
  target.folder.Flush();
} catch (const FolderFlushError& error) {
  throw HostFileError(doing, move.to, error.code(), true);
} catch (const std::system_error& error) {
  throw HostFileError(doing, move.to, error.code());
}

bool IsOrdinaryEntry(const HostPlace& file) try {
  const OpenPlace entry = OpenFolderOf(file);
  const std::optional<EntryInfo> info = entry.folder.Find(entry.name);
  return info && info->IsFile();
} catch (const std::system_error&) {
  return false;
}

std::error_code RemoveEntry(const HostPlace& file) try {
  const OpenPlace entry = OpenFolderOf(file);
  return entry.folder.Remove(entry.name);
} catch (const std::system_error& failure) {
  return failure.code();
}

bool KeepBeside(const HostPlace& file, const HostPlace& kept, KeepHow how) try {
  if (StateOf(kept) != FileState{}) return false;
  if (how == KeepHow::Copy || !LinkBeside(OpenFolderOf(file), OpenFolderOf(kept))) KeepCopy(file, kept);
  return true;
} catch (const std::system_error& error) {
  throw HostFileError(kKeeping, file, error.code());
}

bool CanWriteFolder(const HostPlace& folder) try {
  return OpenFolder(folder).CanMakeFiles();
} catch (const std::system_error&) {
  return false;
}

bool CanReplaceFile(const HostPlace& file) try {
  const OpenPlace entry = OpenFolderOf(file);
  if (const std::error_code fault = entry.folder.WriteFaultOf(entry.name, entry.links)) return MayPass(fault);
  return CanWriteFolder(file.Folder());
} catch (const std::system_error& failure) {
  return MayPass(failure.code());
}

}  // namespace quillbox
