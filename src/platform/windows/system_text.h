// SPDX-License-Identifier: GPL-3.0-or-later
// Inner text in the form of the system's wide calls, and back.
#pragma once

#include <string>
#include <string_view>

namespace quillbox {

std::wstring WideText(std::string_view text);
std::string InnerText(std::wstring_view text);

}  // namespace quillbox
