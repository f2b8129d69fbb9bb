// SPDX-License-Identifier: GPL-3.0-or-later
// Notes of what was left out of a hive because it is damaged, in the same words for every form of registry file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "registry/hive_data.h"

namespace quillbox {

/// No more parts than these are kept in HiveData::damage; damageCount counts all of them.
inline constexpr std::size_t kMaxDamageNotes = 1000;

/// The part of a damage that is not in one key.
inline constexpr const char* kWholeFile = "the file";

/// Notes a damage of `part`, as HiveDamage has it, at `offset` of the file. `fault` is a clause.
void AddDamage(HiveData& hive, std::string part, std::uint64_t offset, std::string fault);

/// The same of a key of `hive`, or of its value, of which `value` is what ValueInNotes() gives.
void AddKeyDamage(HiveData& hive, KeyCell key, const std::string& value, std::uint64_t offset, std::string fault);

/// A value's name as notes show it: in quotes, or "(Default)".
std::string ValueInNotes(std::string_view name);

}  // namespace quillbox
