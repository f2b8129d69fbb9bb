// SPDX-License-Identifier: GPL-3.0-or-later
// The words for the statuses that file and registry calls answer.
#pragma once

#include <string>

#include "platform/status.h"

namespace quillbox {

/// The reason that a status gives, as a clause: "the disk is full".
std::string StatusReason(Status status);
/// The same for a key of the disk's registry, as the registry editor says it.
std::string KeyStatusReason(Status status);

}  // namespace quillbox
