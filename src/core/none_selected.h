// SPDX-License-Identifier: GPL-3.0-or-later
// "None Selected": how the registry and the windows say that there is no backup folder, or no file in a slot of the
// address book. Inside the program that is an empty optional.
#pragma once

#include <optional>
#include <string>

#include "text/win_path.h"

namespace quillbox {

inline constexpr const char* kNoneSelected = "None Selected";

/// What a stored or shown text says.
inline std::optional<WinPath> PathOrNone(const std::string& text) {
  return text == kNoneSelected ? std::nullopt : std::optional(WinPath(text));
}
/// The text to store or to show.
inline std::string TextOrNone(const std::optional<WinPath>& path) {
  return path ? path->Text() : kNoneSelected;
}

}  // namespace quillbox
