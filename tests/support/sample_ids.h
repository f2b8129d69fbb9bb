// SPDX-License-Identifier: GPL-3.0-or-later
// The {USER_ID}s of the identities on a sample disk.
#pragma once

#include <string>

namespace quillbox {

inline const std::string kMain = "{2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}";    ///< "Main Identity", the default one
inline const std::string kOffice = "{8F41D3C2-5B0A-4E76-A9D8-13C7E2046FB5}";  ///< "Büro"
inline const std::string kGuest = "{C65A0B97-2E18-4D03-B7F4-90AC61D85E3C}";   ///< "Guest", never started

}  // namespace quillbox
