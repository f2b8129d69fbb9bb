// SPDX-License-Identifier: GPL-3.0-or-later
// The accounts of the Internet Account Manager, by a list of values that may be shown: passwords, also encrypted ones,
// are not among them.
#pragma once

#include <string>
#include <vector>

#include "core/registry_store.h"

namespace quillbox {

struct MailAccount {
  std::string name;
  std::string type;  ///< "POP3", "IMAP", "News", "Directory"; empty when no server says
  std::string server;
  std::string smtpServer;
  std::string address;
};

/// The key below HKEY_CURRENT_USER with everyone's accounts; an identity's own key has the same below it.
inline constexpr const char* kAccountsKey = "Software\\Microsoft\\Internet Account Manager\\Accounts";

/// The accounts below `key` of HKEY_CURRENT_USER, in the registry's order; none when it cannot be opened.
std::vector<MailAccount> ReadAccounts(RegistryStore& store, const std::string& key);

}  // namespace quillbox
