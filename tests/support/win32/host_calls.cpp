// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/host_calls.h"

// The system's calls cannot be replaced here, and tests that need it are skipped (host_tricks.cpp).
namespace quillbox {

HostCallGuard::HostCallGuard(OnHostCall onCall) : before_(std::move(onCall)) {}

HostCallGuard::~HostCallGuard() = default;

}  // namespace quillbox
