// Date and time as the disk's Windows shows them: a report names the moment of its creation in the way that its
// person is used to.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

#include "core/registry_store.h"

namespace quillbox {

/// How a person's Windows writes dates and times; the defaults are those of the United States.
struct DateStyle {
  std::string shortDate = "M/d/yyyy";
  std::string time = "h:mm:ss tt";
  std::string dateSeparator = "/";  ///< stands for "/" in shortDate
  std::string timeSeparator = ":";  ///< stands for ":" in time
  std::string morning = "AM", afternoon = "PM";
};

/// The style in the person's Control Panel settings; what is missing there keeps its default.
DateStyle ReadDateStyle(RegistryStore& store);

/// Date, blank and time. Month and weekday names are English.
std::string FormatGeneralDate(const std::tm& when, const DateStyle& style);

/// `fileTime` (FILETIME) in this computer's time zone, in the person's style.
std::string GeneralDate(RegistryStore& store, std::uint64_t fileTime);

}  // namespace quillbox
