// SPDX-License-Identifier: GPL-3.0-or-later
// From Windows' names to a place on the host: names are matched as Windows does, and links of a disk are followed here,
// step by step, so that whatever opens the place afterwards can refuse every link.
#pragma once

#include <string_view>
#include <vector>

#include "platform/hosted/host_place.h"

namespace quillbox {

/// What becomes of a link at the end of a path. Links on the way are followed in any case.
enum class LastStep {
  Follow,
  Keep,    ///< the link itself is meant
  NoLink,  ///< refused: for what is written
};

/// How many links a path may go through, as on the host.
inline constexpr int kMaxLinks = 40;

/// The place that `windowsNames` lead to from the folder `from`. Each name is taken as it is where there is such an
/// entry, else as the first entry that equals it without regard to case; from the first name on that has none, names
/// are taken as given. Beneath a drive, links are followed as far as they stay on the disk: relative ones, and absolute
/// ones that lead to or below a drive's folder; anything else is LeadsOut, ".." above a drive's folder among it.
/// Anywhere on the host links are left to the host, and `last` means nothing.
PlaceResult FindPlace(const HostPlace& from, const std::vector<std::string_view>& windowsNames, LastStep last);

/// FindPlace for one entry of a folder, by its name on the host.
PlaceResult FollowEntry(const HostPlace& folder, std::string_view hostName, LastStep last = LastStep::Follow);
/// The same place, looked up again.
PlaceResult FindAgain(const HostPlace& place, LastStep last);

}  // namespace quillbox
