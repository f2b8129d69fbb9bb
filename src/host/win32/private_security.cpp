// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/win32/private_security.h"

#include <sddl.h>

#include <array>
#include <cstddef>
#include <string>

#include "host/win32/win32.h"

namespace quillbox {

namespace {

/// The user's identifier as text; empty where it is not known.
std::wstring UserId() {
  HANDLE opened = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened)) return {};
  const HostHandle token = Owned(opened);
  alignas(TOKEN_USER) std::array<std::byte, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> buffer = {};
  DWORD size = 0;
  wchar_t* text = nullptr;
  if (!GetTokenInformation(Raw(token), TokenUser, buffer.data(), static_cast<DWORD>(buffer.size()), &size) ||
      !ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(buffer.data())->User.Sid, &text)) {
    return {};
  }
  std::wstring id = text;
  LocalFree(text);
  return id;
}

}  // namespace

PrivateSecurity::PrivateSecurity() {
  const std::wstring user = UserId();
  if (user.empty()) return;
  // Protected from what is inherited: everything (FA) for the user, the system and administrators.
  const std::wstring rules = L"D:P(A;OICI;FA;;;" + user + L")(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";
  if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(rules.c_str(), SDDL_REVISION_1, &descriptor_, nullptr)) {
    descriptor_ = nullptr;
  }
  attributes_ = {sizeof attributes_, descriptor_, FALSE};
}

}  // namespace quillbox
