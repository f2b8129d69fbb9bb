// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/identity_picker.h"

#include <algorithm>

namespace quillbox {

std::vector<std::string> UserIds(const IdentityCatalogue& catalogue) {
  std::vector<std::string> userIds;
  for (const IdentityInfo& identity : catalogue.identities) userIds.push_back(identity.userId);
  return userIds;
}

std::vector<std::string> Usernames(const IdentityCatalogue& catalogue) {
  std::vector<std::string> usernames;
  const std::size_t read = std::min(catalogue.identities.size(), catalogue.end.usernamesRead);
  for (std::size_t i = 0; i < read; ++i) usernames.push_back(catalogue.identities[i].username);
  return usernames;
}

std::vector<std::string> StoreFolders(const IdentityCatalogue& catalogue) {
  std::vector<std::string> folders;
  for (const IdentityInfo& identity : catalogue.identities) folders.push_back(identity.FolderText());
  return folders;
}

void ListUserIds(ComboBox& picker, const IdentityCatalogue& catalogue) {
  picker.Clear();
  picker.items = UserIds(catalogue);
}

void ListAndShowUserIds(ComboBox& picker, const IdentityCatalogue& catalogue) {
  ListUserIds(picker, catalogue);
  picker.text = picker.items->empty() ? std::string() : picker.items->front();
}

}  // namespace quillbox
