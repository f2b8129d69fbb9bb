// SPDX-License-Identifier: GPL-3.0-or-later
// Date and time in the format of the disk's Windows, for the time at which a report was made.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

#include "core/registry_store.h"

namespace quillbox {

/// How the user's Windows writes dates and times; the defaults are those of the United States.
struct DateStyle {
  std::string shortDate = "M/d/yyyy";
  std::string time = "h:mm:ss tt";
  std::string dateSeparator = "/";  ///< replaces "/" in shortDate
  std::string timeSeparator = ":";  ///< replaces ":" in time
  std::string morning = "AM", afternoon = "PM";
};

/// The style in the user's Control Panel settings; a missing one keeps its default, and so
/// does an empty one other than AM and PM.
DateStyle ReadDateStyle(RegistryStore& store);

/// Date, a blank, and time. Month and weekday names are English.
std::string FormatGeneralDate(const std::tm& when, const DateStyle& style);

/// `fileTime` (FILETIME) in this computer's time zone and the user's style; empty for a time that the C library cannot
/// convert.
std::string GeneralDate(RegistryStore& store, std::uint64_t fileTime);

}  // namespace quillbox
