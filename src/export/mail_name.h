// SPDX-License-Identifier: GPL-3.0-or-later
// What an export calls the mail of an identity.
#pragma once

#include <string>
#include <vector>

#include "core/identity_catalogue.h"

namespace quillbox {

/// The username, with the {USER_ID} where another one of `all` has the same: what is shown and made of the names must
/// differ.
std::string MailName(const IdentityInfo& identity, const std::vector<IdentityInfo>& all);

}  // namespace quillbox
