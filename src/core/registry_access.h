// SPDX-License-Identifier: GPL-3.0-or-later
// Reading and writing single values and keys, by the types that the program knows. No key stays open between calls.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/reg_value.h"
#include "platform/registry.h"

namespace quillbox {

/// What Probe answers; any other status is passed through as it is.
namespace probe {
inline constexpr Status kHasData = Status::MoreData;      ///< the value holds at least one byte
inline constexpr Status kMissing = Status::FileNotFound;  ///< no such value or key
inline constexpr Status kPresent = Status::Success;       ///< the value exists and is empty
}  // namespace probe

/// Whether a read takes REG_EXPAND_SZ values for text or for nothing.
enum class ExpandableText { Read, Ignore };

class RegistryAccess {
 public:
  explicit RegistryAccess(Registry& registry) : registry_(registry) {}

  /// A value by the types REG_SZ, REG_EXPAND_SZ (not expanded), REG_BINARY and REG_DWORD; Empty for a missing key or
  /// value and for every other type. Text is cut at its first NUL. An empty name reads the default value.
  RegValue Read(const RegistryPath& path, std::string_view name, ExpandableText expandable = ExpandableText::Read);
  /// The same through an open key; a key that is not open has no values.
  RegValue Read(const Key& key, std::string_view name, ExpandableText expandable = ExpandableText::Read);
  /// Whether a value exists and holds data; see namespace probe.
  Status Probe(const RegistryPath& path, std::string_view name);
  /// A text value whole, without its terminating NUL; empty when it is missing. Throws Error when the value is not
  /// text.
  std::string ReadWholeText(const RegistryPath& path, std::string_view name);
  /// The names of the subkeys in the platform's order.
  std::vector<std::string> SubkeyNames(const Key& key);

  /// Writes into an existing key.
  Status Write(const RegistryPath& path, std::string_view name, const RegValue& value, ValueType type);
  /// Writes through an open key: text with one NUL for REG_SZ and REG_EXPAND_SZ, 4 bytes for REG_DWORD. Any other type
  /// writes nothing and is a success; a REG_DWORD from a text that is not a number is InvalidParameter.
  Status Write(const Key& key, std::string_view name, const RegValue& value, ValueType type);

 private:
  RegValue ReadTyped(const Key& key, std::string_view name, const QueryResult& asked, ExpandableText expandable);

  Registry& registry_;
};

}  // namespace quillbox
