// SPDX-License-Identifier: GPL-3.0-or-later
// Volumes of the host.
#pragma once

#include <string>

#include "host/host_path.h"

namespace quillbox {

/// The label of the volume that is mounted on `folder`, as it is stored; empty when none is mounted there or its label
/// isn't known.
std::string LabelOfVolume(const HostPath& folder);

}  // namespace quillbox
