// SPDX-License-Identifier: GPL-3.0-or-later
// The kind of Windows that the registry belongs to.
#pragma once

#include <optional>
#include <string>

#include "platform/registry.h"

namespace quillbox {

/// "SE", "NT", "2K" and "XP". It chooses the registry editor's export switch, some file names, and the type with which
/// a "Store Root" is written.
enum class OsCode { Unknown, SE, NT, W2K, XP };

/// True for the family that NT 4, 2000 and XP belong to.
bool IsNtFamily(OsCode code);

/// Reads the kind of Windows from the machine's product name; `known` when the registry does not say.
OsCode ReadOsCode(Registry& registry, OsCode known);

/// Why the code is Unknown, as a clause; nothing for any other code.
std::optional<std::string> WhyUnknown(Registry& registry, OsCode code);

}  // namespace quillbox
