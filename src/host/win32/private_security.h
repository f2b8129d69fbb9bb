// SPDX-License-Identifier: GPL-3.0-or-later
// What is made for the user alone.
#pragma once

#include <windows.h>

namespace quillbox {

/// For new files and folders, and what will be in them: the user, administrators and the system may do everything,
/// others nothing.
class PrivateSecurity {
 public:
  PrivateSecurity();
  ~PrivateSecurity() { LocalFree(descriptor_); }
  PrivateSecurity(const PrivateSecurity&) = delete;
  PrivateSecurity& operator=(const PrivateSecurity&) = delete;

  /// Null, which means the folder's above, where the system does not say who the user is.
  SECURITY_ATTRIBUTES* Attributes() { return descriptor_ != nullptr ? &attributes_ : nullptr; }

 private:
  PSECURITY_DESCRIPTOR descriptor_ = nullptr;
  SECURITY_ATTRIBUTES attributes_ = {};
};

}  // namespace quillbox
