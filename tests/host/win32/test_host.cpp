// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/test_host.h"

#include <windows.h>

#include "host/host_paths.h"

namespace quillbox {

namespace {

bool IsWine() {
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace

// Wine says that it has made one, and has not.
bool MakeLink(const HostPath& link, const HostPath& target) {
  constexpr DWORD kAsDeveloper = 2;
  return CreateSymbolicLinkW(NativePath(link).c_str(), NativePath(target).c_str(),
                             SYMBOLIC_LINK_FLAG_DIRECTORY | kAsDeveloper) &&
         InfoOf(link, Links::Keep).info.has_value();
}

// Wine's paths are limited by those of the system below it.
std::size_t LongestPath() {
  return IsWine() ? 3000 : 6000;
}

}  // namespace quillbox
