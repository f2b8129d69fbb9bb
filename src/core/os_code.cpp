// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/os_code.h"

#include "core/registry_access.h"
#include "platform/status_text.h"

namespace quillbox {
namespace {

const RegistryPath kWindowsVersion{RegistryRoot::LocalMachine, "Software\\Microsoft\\Windows\\CurrentVersion"};
const RegistryPath kNtVersion{RegistryRoot::LocalMachine, "Software\\Microsoft\\Windows NT\\CurrentVersion"};
constexpr const char* kProductName = "ProductName";

/// Opens with full access, so that a user who may not write to the machine's registry gets no OS code.
bool HasProductName(Registry& registry, const RegistryPath& path) {
  const OpenResult opened = registry.Open(path, Access::Full);
  return opened.status == Status::Success &&
         registry.Query(opened.key, kProductName, std::nullopt).status == Status::Success;
}

}  // namespace

bool IsNtFamily(OsCode code) {
  return code == OsCode::NT || code == OsCode::W2K || code == OsCode::XP;
}

OsCode ReadOsCode(Registry& registry, OsCode known) {
  OsCode code = HasProductName(registry, kWindowsVersion) ? OsCode::SE : known;
  if (!HasProductName(registry, kNtVersion)) return code;
  code = OsCode::NT;
  const RegValue product = RegistryAccess(registry).Read(kNtVersion, kProductName);
  if (product == RegValue("Microsoft Windows 2000")) code = OsCode::W2K;
  if (product == RegValue("Microsoft Windows XP")) code = OsCode::XP;
  return code;
}

std::optional<std::string> WhyUnknown(Registry& registry, OsCode code) {
  if (code != OsCode::Unknown) return std::nullopt;
  const auto refusal = [&](const RegistryPath& path) -> std::optional<std::string> {
    const Status status = registry.Open(path, Access::Full).status;
    if (status == Status::Success) return std::nullopt;
    return FullName(path) + " cannot be opened: " + registry.WhyRefused().value_or(StatusReason(status));
  };
  if (auto machine = refusal({RegistryRoot::LocalMachine, "Software"})) return machine;
  return std::string("the registry does not say which Windows it is of: it has no \"") + kProductName + "\" in " +
         FullName(kNtVersion) + " or " + FullName(kWindowsVersion);
}

}  // namespace quillbox
