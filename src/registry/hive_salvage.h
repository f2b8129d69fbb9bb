// SPDX-License-Identifier: GPL-3.0-or-later
// Reading what can be read of a damaged hive.
#pragma once

#include "registry/hive_data.h"
#include "text/error.h"

namespace quillbox {

/// Makes `hive`, which has only a name, a new hive of everything undamaged that the root key of `file` leads to; notes
/// the rest in HiveData::damage. `file` begins with a base block that was found good, and may be shorter than that
/// says. `fault` is the first fault of the file. Throws Error when the root key cannot be read, or when what can be
/// read does not fit into a hive.
///
/// Time and memory are in proportion to the size of the file. The new hive has the version of the file, its
/// base block, and keys with the times, flags, classes and security descriptors that they had; a key whose descriptor
/// is damaged gets its parent's.
void SalvageHive(HiveData& hive, Bytes file, const Error& fault);

}  // namespace quillbox
