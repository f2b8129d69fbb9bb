// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/mail_name.h"

#include <algorithm>

#include "text/unicode.h"

namespace quillbox {

std::string MailName(const IdentityInfo& identity, const std::vector<IdentityInfo>& all) {
  const auto same = std::count_if(all.begin(), all.end(), [&](const IdentityInfo& other) {
    return EqualIgnoreCase(other.username, identity.username);
  });
  return same > 1 ? identity.username + " " + identity.userId : identity.username;
}

}  // namespace quillbox
