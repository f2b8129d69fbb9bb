// SPDX-License-Identifier: GPL-3.0-or-later
// Small hives, made by code, that hold every kind of record.
#pragma once

#include <vector>

#include "harness.h"
#include "registry/hive.h"

namespace quillbox {

/// A hive of version 1.`minor` with values of every form, nested keys and names of both forms.
Hive SeedHive(std::uint32_t minor);

std::vector<Seed> HiveSeeds();

}  // namespace quillbox
