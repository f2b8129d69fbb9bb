// SPDX-License-Identifier: GPL-3.0-or-later
// What a sample disk of Windows 98 has in its registry besides the identities.
#pragma once

#include <span>

#include "sample/registry_rows.h"

namespace quillbox {

/// Below the root of SYSTEM.DAT. Placeholders: <product>, <profile>, <codepage>.
std::span<const ValueRow> Windows98SystemRows();
/// Below a person's key in USER.DAT. Placeholders: <home> (the folder with "Application Data" in it), <documents>,
/// <book> (the address book file).
std::span<const ValueRow> Windows98UserRows();

}  // namespace quillbox
