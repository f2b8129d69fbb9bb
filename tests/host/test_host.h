// SPDX-License-Identifier: GPL-3.0-or-later
// What these tests can have on one host and not on another. What wine lacks is in its functions for Windows, and
// nowhere else.
#pragma once

#include <cstddef>
#include <system_error>

#include "host/host_path.h"
#include "support/temp_folder.h"

namespace quillbox {

/// Makes a link to a folder; false where the system lets nobody, or not this user.
bool MakeLink(const HostPath& link, const HostPath& target);

/// How long a path can be that names are made in one by one, in bytes.
std::size_t LongestPath();

/// The reason why `act` fails; no code when it does not.
template <class Act>
std::error_code CodeOf(const Act& act) {
  try {
    act();
  } catch (const std::system_error& failure) {
    return failure.code();
  }
  return {};
}

class InTempFolder : public testing::Test {
 protected:
  TempFolder temp_;
  const HostPath path_{temp_.Path()};
};

}  // namespace quillbox
