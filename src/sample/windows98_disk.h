// SPDX-License-Identifier: GPL-3.0-or-later
// The sample disk's drive C with Windows 98 on it.
#pragma once

#include <filesystem>

#include "sample/sample_disk.h"

namespace quillbox {

/// How everyone's registry of a Windows without profiles is opened: by the name of its key.
inline constexpr const char* kSharedProfile = ".DEFAULT";

/// Fills `folder`, which has nothing in it. Throws Error.
void FillWindows98(const std::filesystem::path& folder, const SampleOptions& options);

}  // namespace quillbox
