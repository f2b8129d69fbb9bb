// SPDX-License-Identifier: GPL-3.0-or-later
// What the sample machine's own hives hold: the parts of an installed Windows that mail programs look at.
#pragma once

#include <span>

#include "sample/registry_rows.h"

namespace quillbox {

/// Below the root of the hive `software`. Placeholders: <product>, <profile>.
std::span<const ValueRow> SoftwareRows();
/// Below the root of the hive `system`. Placeholder: <codepage>.
std::span<const ValueRow> SystemRows();

}  // namespace quillbox
