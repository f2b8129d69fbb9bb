// SPDX-License-Identifier: GPL-3.0-or-later
// What the files of this folder share: handles, text and error codes of the system.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <system_error>

#include "host/host_handle.h"

namespace quillbox {

inline HANDLE Raw(const HostHandle& handle) {
  return reinterpret_cast<HANDLE>(handle.Number());
}
/// Takes over what a call has opened; some calls give null where others give INVALID_HANDLE_VALUE.
inline HostHandle Owned(HANDLE handle) {
  return handle == nullptr ? HostHandle() : HostHandle(reinterpret_cast<HandleNumber>(handle));
}

/// Inner text as the system's, and back.
std::wstring Wide(std::string_view text);
std::string Narrow(std::wstring_view text);

/// The error code for one of the system: an errno where there is one, so that callers compare with std::errc; else one
/// with the system's own words.
std::error_code CodeOf(DWORD error);
/// For the call that has just failed.
std::error_code LastCode();
[[noreturn]] void ThrowLast();
/// No code for a call that has done its work.
inline std::error_code CodeUnless(BOOL done) {
  return done != FALSE ? std::error_code() : LastCode();
}

}  // namespace quillbox
