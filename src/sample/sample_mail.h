// SPDX-License-Identifier: GPL-3.0-or-later
// Made-up mail for the sample's stores: the same every time, with headers, replies and an attachment now and then.
#pragma once

#include <vector>

#include "sample/dbx_writer.h"

namespace quillbox {

enum class MailTopic { Inbox, Sent, Deleted, Drafts, Choir, News, Office };

/// `count` messages on a topic, oldest first.
std::vector<DbxMessage> SampleMail(MailTopic topic, std::size_t count);

}  // namespace quillbox
