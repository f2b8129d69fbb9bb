// The words for the statuses that file and registry calls answer.
#pragma once

#include <string>

#include "platform/status.h"

namespace quillbox {

/// The reason that a status gives, as a clause: "the disk is full".
std::string StatusReason(Status status);

}  // namespace quillbox
