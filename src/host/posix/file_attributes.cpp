// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/file_attributes.h"

#include <fcntl.h>
#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "host/posix/posix.h"
#include "text/byte_order.h"

namespace quillbox {

using RawAttributes = std::uint32_t;

/// One way in which a file system keeps attributes. `read` returns nothing where the file system does not have it, and
/// 0 for an entry without attributes.
struct AttributeSource {
  std::optional<RawAttributes> (*read)(const char* path);
};

namespace {

constexpr RawAttributes kHidden = 0x2;
constexpr RawAttributes kSystem = 0x4;

/// An attribute's bytes: empty for a file without it, nothing where the file system has no such attributes.
std::optional<std::string> ReadExtended(const char* path, const char* name) {
  std::array<char, 256> buffer = {};
  const ssize_t size = lgetxattr(path, name, buffer.data(), buffer.size());
  if (size >= 0) return std::string(buffer.data(), static_cast<std::size_t>(size));
  if (errno == ENOTSUP) return std::nullopt;
  return std::string();
}

RawAttributes AttributesAt(const char* bytes) {
  return Load32(reinterpret_cast<const std::uint8_t*>(bytes));
}

std::optional<RawAttributes> ReadNtfsBigEndian(const char* path) {
  const std::optional<std::string> bytes = ReadExtended(path, "system.ntfs_attrib_be");
  if (!bytes) return std::nullopt;
  return bytes->size() == 4 ? AttributesAt(std::string(bytes->rbegin(), bytes->rend()).data()) : 0;
}

std::optional<RawAttributes> ReadNtfs(const char* path) {
  const std::optional<std::string> bytes = ReadExtended(path, "system.ntfs_attrib");
  if (!bytes) return std::nullopt;
  return bytes->size() == 4 ? AttributesAt(bytes->data()) : 0;
}

std::optional<RawAttributes> ReadFat(const char* path) {
  const HostHandle file(open(path, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
  if (!file) return 0;
  RawAttributes attributes = 0;
  if (ioctl(Fd(file), FAT_IOCTL_GET_ATTRIBUTES, &attributes) != 0) return std::nullopt;
  return attributes;
}

/// What file servers and copying tools leave: "0x22", or a record with the attributes at byte 12 where bit 0 at
/// byte 8 says that they are set.
std::optional<RawAttributes> ReadUserAttribute(const char* path) {
  const std::optional<std::string> bytes = ReadExtended(path, "user.DOSATTRIB");
  if (!bytes) return std::nullopt;
  if (bytes->starts_with("0x")) {
    RawAttributes value = 0;
    std::from_chars(bytes->data() + 2, bytes->data() + bytes->size(), value, 16);
    return value;
  }
  const bool isRecord = bytes->size() >= 16 && (*bytes)[0] == 0 && ((*bytes)[8] & 1) != 0;
  return isRecord ? AttributesAt(bytes->data() + 12) : 0;
}

constexpr std::array kSources = {AttributeSource{ReadNtfsBigEndian}, AttributeSource{ReadNtfs},
                                 AttributeSource{ReadFat}, AttributeSource{ReadUserAttribute}};

}  // namespace

AttributeReader::AttributeReader(const HostFolder& folder)
    : folder_("/proc/self/fd/" + std::to_string(Fd(folder.Handle())) + "/") {
  const std::string itself = folder_ + ".";
  for (const AttributeSource& source : kSources) {
    if (source_ == nullptr && source.read(itself.c_str())) source_ = &source;
  }
}

FileAttributes AttributeReader::Of(const std::string& name) const {
  if (source_ == nullptr) return {};
  const RawAttributes attributes = source_->read((folder_ + name).c_str()).value_or(0);
  return {(attributes & kHidden) != 0, (attributes & kSystem) != 0};
}

}  // namespace quillbox
