// SPDX-License-Identifier: GPL-3.0-or-later
// The pickers from which windows take one of the identities.
#pragma once

#include <string>
#include <vector>

#include "core/identity_catalogue.h"
#include "ui/controls.h"

namespace quillbox {

std::vector<std::string> UserIds(const IdentityCatalogue& catalogue);
/// Of the identities whose username was read.
std::vector<std::string> Usernames(const IdentityCatalogue& catalogue);
/// As windows show them.
std::vector<std::string> StoreFolders(const IdentityCatalogue& catalogue);

/// Lists every {USER_ID} in the catalogue's order.
void ListUserIds(ComboBox& picker, const IdentityCatalogue& catalogue);
/// The same, and shows the first; nothing when there is none.
void ListAndShowUserIds(ComboBox& picker, const IdentityCatalogue& catalogue);

}  // namespace quillbox
