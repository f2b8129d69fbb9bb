// The label of the volume that is mounted on a folder.
#pragma once

#include <filesystem>
#include <string>

namespace quillbox {

/// The label of the device mounted on `folder`; empty when nothing is mounted there or its label isn't known.
std::string LabelOfMount(const std::filesystem::path& folder);

}  // namespace quillbox
