// SPDX-License-Identifier: GPL-3.0-or-later
// Changes a hive's bytes so that the result still resembles a hive: fields of records rather than arbitrary bytes, and
// a valid base block, so that the code after the check of it is reached.
#pragma once

#include "harness.h"

namespace quillbox {

/// Mostly mends the base block afterwards.
void MutateHive(Bytes& file, std::size_t limit, Mutation& mutation);

/// Makes the base block that of a hive closed cleanly, with as many bytes of bins as there are. The file is filled up
/// to whole pages.
void MendHiveBase(Bytes& file);

/// The checksum of a base block at the front of a hive or log, where there is one.
void MendBaseChecksum(Bytes& file);

}  // namespace quillbox
