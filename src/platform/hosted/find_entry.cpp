// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/find_entry.h"

#include <algorithm>

#include "host/host_names.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

/// EqualIgnoreCase, made quick for the plain names that most are.
bool SameName(std::string_view a, std::string_view b, bool bothPlain) {
  if (!bothPlain) return EqualIgnoreCase(a, b);
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return AsciiUpper(x) == AsciiUpper(y); });
}

std::optional<HostEntry> ExactEntry(const HostFolder& folder, const std::string& name) {
  const std::optional<EntryInfo> info = folder.Find(name);
  return info ? std::optional(HostEntry{folder.StoredName(name), *info}) : std::nullopt;
}

}  // namespace

std::optional<HostEntry> FindEntry(const HostFolder& folder, std::string_view windowsName) {
  const std::string asHost = HostName(windowsName);
  const bool sameText = asHost == windowsName;
  if (std::optional<HostEntry> exact = ExactEntry(folder, asHost)) return exact;
  if (!sameText && !LeavesItsFolder(windowsName)) {
    if (std::optional<HostEntry> exact = ExactEntry(folder, std::string(windowsName))) return exact;
  }
  const bool plain = IsAscii(windowsName);
  std::optional<HostEntry> found;
  folder.EachName([&](const std::string& stored) {
    if (!SameName(WindowsName(stored), windowsName, plain && IsAscii(stored))) return false;
    found = ExactEntry(folder, stored);
    return true;
  });
  return found;
}

}  // namespace quillbox
