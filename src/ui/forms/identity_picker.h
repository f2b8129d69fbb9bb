// The pickers from which windows take one of the identities.
#pragma once

#include "core/identity_catalogue.h"
#include "ui/controls.h"

namespace quillbox {

/// Lists every {USER_ID} in the catalogue's order, after those in `before`.
inline void ListUserIds(ComboBox& picker, const IdentityCatalogue& catalogue, std::vector<std::string> before = {}) {
  for (const IdentityInfo& identity : catalogue.identities) before.push_back(identity.userId);
  picker.Clear();
  picker.items = std::move(before);
}

/// The same, and shows the first; nothing when there is none.
inline void ListAndShowUserIds(ComboBox& picker, const IdentityCatalogue& catalogue) {
  ListUserIds(picker, catalogue);
  picker.text = picker.items->empty() ? std::string() : picker.items->front();
}

}  // namespace quillbox
