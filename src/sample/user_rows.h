// SPDX-License-Identifier: GPL-3.0-or-later
// What the sample person's hive holds besides the identities: accounts, the address book's place, folders.
#pragma once

#include <span>

#include "sample/registry_rows.h"

namespace quillbox {

/// Below the root of NTUSER.DAT. Placeholder: <profile>.
std::span<const ValueRow> UserRows();
/// The accounts that the default identity's mail uses, below a key `Internet Account Manager`.
std::span<const ValueRow> HomeAccountRows();
/// The accounts of the second identity, likewise.
std::span<const ValueRow> OfficeAccountRows();

}  // namespace quillbox
