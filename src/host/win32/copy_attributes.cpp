// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/win32/copy_attributes.h"

#include <windows.h>
// After it.
#include <aclapi.h>

namespace quillbox {

namespace {

constexpr DWORD kSettable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                            FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

/// A file's security descriptor, and parts that point into it.
struct Security {
  Security(HANDLE file, SECURITY_INFORMATION parts) {
    if (GetSecurityInfo(file, SE_FILE_OBJECT, parts, &owner, &group, &list, nullptr, &whole) != ERROR_SUCCESS) {
      whole = nullptr;
    }
  }
  ~Security() { LocalFree(whole); }
  Security(const Security&) = delete;
  Security& operator=(const Security&) = delete;

  PSECURITY_DESCRIPTOR whole = nullptr;
  PSID owner = nullptr;
  PSID group = nullptr;
  PACL list = nullptr;
};

/// Whether the list replaces what the folder above says, or adds to it.
SECURITY_INFORMATION InheritanceOf(const Security& security) {
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  const bool isProtected =
      GetSecurityDescriptorControl(security.whole, &control, &revision) && (control & SE_DACL_PROTECTED) != 0;
  return isProtected ? PROTECTED_DACL_SECURITY_INFORMATION : UNPROTECTED_DACL_SECURITY_INFORMATION;
}

}  // namespace

void CopyAttributes(FromTo files) {
  const Security security(files.from, DACL_SECURITY_INFORMATION);
  if (security.whole != nullptr && security.list != nullptr) {
    SetSecurityInfo(files.to, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | InheritanceOf(security), nullptr, nullptr,
                    security.list, nullptr);
  }
  FILE_BASIC_INFO basic = {};
  if (!GetFileInformationByHandleEx(files.from, FileBasicInfo, &basic, sizeof basic)) return;
  FILE_BASIC_INFO taken = {};  // times that are zero stay
  taken.CreationTime = basic.CreationTime;
  taken.FileAttributes = basic.FileAttributes & kSettable;
  if (taken.FileAttributes == 0) taken.FileAttributes = FILE_ATTRIBUTE_NORMAL;
  SetFileInformationByHandle(files.to, FileBasicInfo, &taken, sizeof taken);
}

void CopyOwner(FromTo files) {
  constexpr SECURITY_INFORMATION kParts = OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION;
  const Security security(files.from, kParts);
  if (security.whole == nullptr) return;
  SetSecurityInfo(files.to, SE_FILE_OBJECT, kParts, security.owner, security.group, nullptr, nullptr);
}

}  // namespace quillbox
