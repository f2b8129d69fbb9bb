// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/disk_image.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "host/host_file.h"
#include "host/host_paths.h"
#include "text/byte_order.h"

namespace quillbox {

namespace {

constexpr std::uint64_t kSector = 512;
constexpr std::size_t kMaxPartitions = 128;
constexpr const char* kMountPoint = "/mnt";

using Sector = std::array<std::uint8_t, kSector>;

struct Magic {
  std::uint64_t offset;
  std::string_view bytes;
  const char* what;
};

constexpr Magic kVolumes[] = {
    {3, "NTFS    ", "NTFS"}, {3, "EXFAT   ", "exFAT"}, {54, "FAT12   ", "FAT"},
    {54, "FAT16   ", "FAT"}, {82, "FAT32   ", "FAT"},
};
// What qemu-nbd shows as a device.
constexpr Magic kVirtualDisks[] = {
    {0, "QFI\xFB", "a QEMU disk"},
    {0, "KDMV", "a VMware disk"},
    {0, "# Disk DescriptorFile", "a VMware disk"},
    {64, "\x7F\x10\xDA\xBE", "a VirtualBox disk"},
    {0, "conectix", "a Virtual PC disk"},
    {0, "vhdxfile", "a Hyper-V disk"},
};
constexpr Magic kEvidence = {0, "EVF\x09\x0D\x0A\xFF", "an evidence file"};
constexpr Magic kDisc = {32769, "CD001", "a CD-ROM"};

class Image {
 public:
  explicit Image(HostFile file) : file_(std::move(file)) {}

  /// All zero past the end, and where it cannot be read.
  Sector Read(std::uint64_t sector) {
    Sector bytes = {};
    try {
      file_.ReadAt(sector * kSector, {reinterpret_cast<char*>(bytes.data()), bytes.size()});
    } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): what cannot be read is nothing known
    }
    return bytes;
  }
  bool Has(const Magic& magic, std::uint64_t sector = 0) {
    const Sector bytes = Read(sector + magic.offset / kSector);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return text.substr(magic.offset % kSector).starts_with(magic.bytes);
  }
  /// What kind of Windows volume begins at a sector; null for none.
  const char* VolumeAt(std::uint64_t sector) {
    const auto* found =
        std::find_if(std::begin(kVolumes), std::end(kVolumes), [&](const Magic& magic) { return Has(magic, sector); });
    return found == std::end(kVolumes) ? nullptr : found->what;
  }

 private:
  HostFile file_;
};

struct Partition {
  std::uint64_t start, length;  ///< in sectors
};

bool IsExtended(std::uint8_t type) {
  return type == 0x05 || type == 0x0F || type == 0x85;
}

/// Where a table of the PC's is.
struct TablePlace {
  std::uint64_t at = 0;        ///< its sector
  std::uint64_t extended = 0;  ///< where the extended partition that it is in starts; 0 for the first table
};

/// The partitions of the PC's table at `place`, and in the chain of tables that an extended partition is: the links in
/// it count from its start.
void AddPartitions(Image& image, const TablePlace& place, std::vector<Partition>& partitions, std::size_t& tablesLeft) {
  constexpr std::size_t kTable = 446;
  constexpr std::size_t kEntry = 16;
  const auto [at, extended] = place;
  const Sector table = image.Read(at);
  if (tablesLeft == 0 || Load16(&table[510]) != 0xAA55) return;
  --tablesLeft;
  for (std::size_t entry = kTable; entry < 510 && partitions.size() < kMaxPartitions; entry += kEntry) {
    const std::uint8_t type = table[entry + 4];
    const Partition part = {Load32(&table[entry + 8]), Load32(&table[entry + 12])};
    if (type == 0 || part.length == 0) continue;
    if (!IsExtended(type)) {
      partitions.push_back({at + part.start, part.length});
    } else {
      const std::uint64_t next = extended + part.start;
      AddPartitions(image, {next, extended == 0 ? next : extended}, partitions, tablesLeft);
    }
  }
}

/// The partitions of UEFI's table.
void AddUefiPartitions(Image& image, std::vector<Partition>& partitions) {
  constexpr std::uint32_t kSmallestEntry = 128;
  const Sector header = image.Read(1);
  const std::uint64_t first = Load64(&header[72]);
  const std::uint32_t count = Load32(&header[80]);
  const std::uint32_t size = Load32(&header[84]);
  if (size < kSmallestEntry || size > kSector || kSector % size != 0) return;
  for (std::uint64_t number = 0; number < std::min<std::uint64_t>(count, kMaxPartitions); ++number) {
    const Sector sector = image.Read(first + number * size / kSector);
    const std::uint8_t* entry = &sector[number * size % kSector];
    const std::uint64_t start = Load64(entry + 32);
    const std::uint64_t last = Load64(entry + 40);
    if (start > 0 && last >= start) partitions.push_back({start, last - start + 1});
  }
}

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

std::string MountPart(const std::string& file, const Partition& part, const std::string& where) {
  return "sudo mount -o ro,loop,offset=" + std::to_string(part.start * kSector) +
         ",sizelimit=" + std::to_string(part.length * kSector) + " " + file + " " + where;
}

std::optional<MountAdvice> AdviceOnPartitions(Image& image, const std::string& file) {
  constexpr Magic kUefiTable = {kSector, "EFI PART", ""};
  std::vector<Partition> partitions;
  if (image.Has(kUefiTable)) {
    AddUefiPartitions(image, partitions);
  } else {
    std::size_t tablesLeft = kMaxPartitions;
    AddPartitions(image, {}, partitions, tablesLeft);
  }
  std::sort(partitions.begin(), partitions.end(),
            [](const Partition& a, const Partition& b) { return a.start < b.start; });
  partitions.erase(std::unique(partitions.begin(), partitions.end(),
                               [](const Partition& a, const Partition& b) { return a.start == b.start; }),
                   partitions.end());
  std::erase_if(partitions, [&](const Partition& part) { return image.VolumeAt(part.start) == nullptr; });
  if (partitions.empty()) return std::nullopt;
  if (partitions.size() == 1) {
    const std::string what = std::string("with one ") + image.VolumeAt(partitions[0].start) + " partition";
    return MountAdvice{what, MountPart(file, partitions[0], kMountPoint), kMountPoint};
  }
  std::string folders;
  std::string mounts;
  for (std::size_t number = 1; number <= partitions.size(); ++number) {
    const std::string folder = kMountPoint + std::string("/") + std::to_string(number);
    folders += " " + folder;
    mounts += " && " + MountPart(file, partitions[number - 1], folder);
  }
  return MountAdvice{"with " + std::to_string(partitions.size()) + " Windows partitions",
                     "sudo mkdir -p" + folders + mounts, "the one below /mnt that holds WINDOWS"};
}

/// What the content says, for a file with the (quoted) name. `isDevice`: it needs no loop device.
std::optional<MountAdvice> AdviceOnContent(Image& image, const std::string& file, bool isDevice) {
  const std::string mount = std::string("sudo mount -o ro") + (isDevice ? "" : ",loop") + " " + file + " /mnt";
  if (const char* volume = image.VolumeAt(0)) return MountAdvice{volume, mount, kMountPoint};
  for (const Magic& magic : kVirtualDisks) {
    if (!image.Has(magic)) continue;
    return MountAdvice{magic.what,
                       "sudo modprobe nbd max_part=16 && sudo qemu-nbd --read-only --connect=/dev/nbd0 " + file +
                           " && sudo mount -o ro /dev/nbd0p1 /mnt",
                       kMountPoint};
  }
  if (image.Has(kEvidence)) {
    return MountAdvice{kEvidence.what, "sudo mkdir -p /mnt/ewf && sudo ewfmount " + file + " /mnt/ewf",
                       "/mnt/ewf/ewf1"};
  }
  if (image.Has(kDisc)) return MountAdvice{kDisc.what, mount, kMountPoint};
  return AdviceOnPartitions(image, file);
}

/// The same; nothing for a file that cannot be read.
std::optional<MountAdvice> AdviceOnReadable(const HostPath& file, const std::string& quoted, bool isDevice) try {
  Image image(HostFile::Open(file));
  return AdviceOnContent(image, quoted, isDevice);
} catch (const std::system_error&) {
  return std::nullopt;
}

}  // namespace

std::string MountAdvice::Clause() const {
  return "it is " + what + ", not a folder; mount it with \"" + command + "\", then choose " + where;
}

std::optional<MountAdvice> AdviceOnMounting(const HostPath& file) {
  const bool isDevice = IsDiskDevice(file);
  const PathInfo there = InfoOf(file);
  if (!isDevice && !(there.info && there.info->IsFile())) return std::nullopt;
  const std::string quoted = Quoted(Absolute(file).Text());
  std::optional<MountAdvice> advice = AdviceOnReadable(file, quoted, isDevice);
  if (advice) {
    advice->what = std::string(isDevice ? "the device of a disk (" : "the image of a disk (") + advice->what + ")";
  } else if (isDevice) {
    // Devices are often readable for the administrator only.
    advice = {"the device of a disk", "sudo mount -o ro " + quoted + " /mnt", kMountPoint};
  }
  return advice;
}

}  // namespace quillbox
