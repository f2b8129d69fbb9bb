// SPDX-License-Identifier: GPL-3.0-or-later
// Every harness, for what works on all of them.
#pragma once

#include <array>

#include "harness.h"

namespace quillbox {

inline const std::array kAllHarnesses = {
    &kHiveHarness, &kHiveChangeHarness, &kHiveLogHarness, &kRegTextHarness,    &kCommandLineHarness, &kTextHarness,
    &kRuleHarness, &kStoreHarness,      &kMboxHarness,    &kMailHeaderHarness, &kContactBookHarness, &kCregHarness};

}  // namespace quillbox
