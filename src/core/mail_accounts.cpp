// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/mail_accounts.h"

#include "core/identity_catalogue.h"

namespace quillbox {
namespace {

struct ServerRow {
  const char* value;
  const char* type;
};
constexpr ServerRow kServers[] = {
    {"POP3 Server", "POP3"}, {"IMAP Server", "IMAP"}, {"NNTP Server", "News"}, {"LDAP Server", "Directory"}};

}  // namespace

std::vector<MailAccount> ReadAccounts(RegistryStore& store, const std::string& key) {
  std::vector<MailAccount> accounts;
  const OpenResult opened = store.OpenKey(CurrentUser(key), Access::Read);
  if (opened.status != Status::Success) return accounts;
  for (const std::string& number : store.EnumSubKeys(opened.key)) {
    const OpenResult account = store.OpenKey(CurrentUser(key + "\\" + number), Access::Read);
    const auto text = [&](const char* name) {
      const RegValue value = store.ReadValue(account.key, name);
      return value.Text() ? *value.Text() : std::string();
    };
    // The assistants keep a key here that is not an account's.
    if (text("Account Name").empty()) continue;
    MailAccount read{text("Account Name"), {}, {}, text("SMTP Server"), text("SMTP Email Address")};
    for (const ServerRow& row : kServers) {
      if (!read.type.empty() || text(row.value).empty()) continue;
      read.type = row.type;
      read.server = text(row.value);
    }
    accounts.push_back(std::move(read));
  }
  return accounts;
}

}  // namespace quillbox
