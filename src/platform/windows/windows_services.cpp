// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/windows_services.h"

#include <windows.h>
// After it.
#include <objbase.h>

#include <array>

#include "platform/windows/system_text.h"

namespace quillbox {

std::string WindowsFacts::ExpandEnvironment(std::string_view text) {
  const std::wstring wide = WideText(text);
  std::wstring expanded;
  // Its length counts the final NUL; another thread may have made a variable longer meanwhile.
  for (DWORD room = 0;;) {
    const DWORD needed = ExpandEnvironmentStringsW(wide.c_str(), expanded.data(), room);
    if (needed == 0) return std::string(text);
    expanded.resize(needed);
    if (needed <= room) return InnerText({expanded.data(), needed - 1});
    room = needed;
  }
}

unsigned WindowsFacts::CodePageNumber() {
  return GetACP();
}

std::string WindowsGuids::Create() {
  GUID guid = {};
  std::array<wchar_t, 39> text = {};
  if (FAILED(CoCreateGuid(&guid)) || StringFromGUID2(guid, text.data(), static_cast<int>(text.size())) == 0) return {};
  return InnerText(text.data());
}

}  // namespace quillbox
