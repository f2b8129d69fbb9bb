// SPDX-License-Identifier: GPL-3.0-or-later
// The sample person's identities: who they are, and the option values that each has collected.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "sample/registry_rows.h"

namespace quillbox {

/// Where an identity's store is.
enum class StorePlace {
  Home,    ///< where its Windows puts it
  DriveD,  ///< D:\Mail\Office
  None,    ///< it was never started
};

struct SampleIdentity {
  std::string_view userId;  ///< in braces, upper case
  std::uint32_t directoryName;
  std::string_view username;
  StorePlace store;
  std::span<const ValueRow> settings;  ///< below the identity's "Outlook Express\5.0" key; placeholder: <documents>
  std::span<const ValueRow> (*accounts)();  ///< below the identity's own "Internet Account Manager" key; may be null
};

/// In the order of their ordinals; the first one is the default.
std::span<const SampleIdentity> SampleIdentities();
/// Below the key "Identities". Placeholder: <default>, the default identity's userId.
std::span<const ValueRow> IdentityListRows();

}  // namespace quillbox
