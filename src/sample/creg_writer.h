// SPDX-License-Identifier: GPL-3.0-or-later
// Registry files as Windows 95, 98 and Me lay them out: the tree of the keys, then blocks with their names and values.
// It shares nothing with the code that reads them, so that each is a witness of the other.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "registry/hive.h"
#include "text/code_page.h"

namespace quillbox {

/// A value as it is stored: 8-bit names and texts.
struct CregFileValue {
  std::string name = {};  ///< empty for the default value
  std::uint32_t type = 1;
  std::string data = {};  ///< texts usually come without their NUL
};

struct CregFileKey {
  std::string name = {};
  std::vector<CregFileValue> values = {};
  std::vector<CregFileKey> subkeys = {};
  bool hasEntry = true;  ///< without one it has neither a name nor values, as most root keys
};

/// The file whose root key is `root`. Throws Error for more values, or longer names and data, than the format counts.
Bytes CregFile(const CregFileKey& root);

/// What a hive's key holds, as this family keeps it: in `codePage`, and texts without their NUL.
CregFileKey CregKeyOf(const Hive& hive, HiveKey key, const CodePage& codePage);

}  // namespace quillbox
