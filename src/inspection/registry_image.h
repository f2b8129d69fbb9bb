// SPDX-License-Identifier: GPL-3.0-or-later
// Keys and values as one table, whatever they were read from, so that a registry file can be compared with a registry.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "inspection/inspection_progress.h"
#include "platform/registry.h"
#include "registry/hive.h"
#include "registry/reg_file.h"
#include "text/code_page.h"

namespace quillbox {

/// No more bytes of data than these are held for a comparison.
inline constexpr std::uint64_t kLargestImage = std::uint64_t{512} << 20;

struct ImageValue {
  std::string name;
  std::uint32_t type = 0;
  Bytes data;
};
struct ImageKey {
  std::string name;                          ///< as written; of a hive relative to its root
  std::map<std::string, ImageValue> values;  ///< by their names in upper case
};

struct RegistryImage {
  std::map<std::string, ImageKey> keys;  ///< by their names in upper case
  std::vector<std::string> order;        ///< the same names, in the order in which they were read
  std::vector<std::string> roots;        ///< those of them that are not below one before
  bool deletes = false;                  ///< the file deletes keys or values, which no export does

  ImageKey& Add(const std::string& name);
  bool Has(const std::string& key) const;
};

/// What a registry file says. Throws Error.
RegistryImage ImageOfText(ByteSource& source, const CodePage& page);
/// The keys of `registry` that are in the trees below the image's roots, as an export in `form` would show them; none
/// of a root that does not exist. Throws Error.
RegistryImage ImageOfRegistry(Registry& registry, const RegistryImage& like, RegFileForm form, const CodePage& page);
/// All of a hive, as it is stored.
RegistryImage ImageOfHive(const Hive& hive);
/// A key with everything below it, as it is stored; nothing when it does not exist. Throws Error.
std::optional<RegistryImage> ImageOfKey(Registry& registry, const RegistryPath& path);

struct ImageDifference {
  std::size_t keys = 0;  ///< that differ, or are in one of the two only
  std::string first;     ///< a clause: which key it is, and what differs; empty for none
};
/// The keys of `file` in their order, then those that only `disk` has.
ImageDifference DifferenceOf(const RegistryImage& file, const RegistryImage& disk);

}  // namespace quillbox
