// SPDX-License-Identifier: GPL-3.0-or-later
// Hives that open only if the person agrees: those with damaged parts, and those whose logs cannot be used. The
// question and the lines of the log are worded here.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "platform/platform.h"
#include "registry/hive.h"
#include "text/error.h"

namespace quillbox {

/// Asked before a hive is used that NeedsConsent(): `hive` is what would be worked with. False refuses it.
using HiveConsent = std::function<bool(const Hive& hive)>;

/// A hive was refused that opens with consent.
class HiveRefused : public Error {
 public:
  explicit HiveRefused(const Error& error) : Error(error) {}
};

/// True when the hive is damaged and holds only what could be read, and when it was not closed cleanly and has logs
/// that cannot be used.
bool NeedsConsent(const Hive& hive);

/// The question. `registry` is "The registry of Ann Miller", `copies` a clause that says where earlier copies of it
/// are.
std::string ConsentQuestion(const Hive& hive, const std::string& registry, const std::string& copies = {});

/// The refusal of a hive whose logs cannot be used, as a clause: each log, and why it was not used.
std::string UnusedLogsFault(const Hive& hive);

/// "damaged in 3 places", "damaged in 1 place".
std::string DamagedIn(std::size_t places);

/// One line for each damaged part of `file`, whose rest was left out, and for each log that was not used.
void LogWhatIsMissing(const Hive& hive, const std::string& file, Log& log);

}  // namespace quillbox
