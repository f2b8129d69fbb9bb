// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/message_store.h"

#include "core/disk_path.h"
#include "core/file_helpers.h"
#include "core/identity_catalogue.h"
#include "text/error.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

struct Located {
  WinPath stored;  ///< as the registry names it, for messages
  WinPath folder;
};

std::variant<Located, StoreFault> Locate(RegistryStore& store, Platform& platform, const std::string& userId) {
  try {
    const auto stored = ReadStoreFolder(store, platform.GetSystemFacts(), userId);
    if (!stored) return StoreFault{"it was never started in Outlook Express and has no message store yet"};
    if (stored->Empty()) return StoreFault{"no store folder is recorded (the registry has no \"Store Root\" for it)"};
    const DiskPath folder = CheckStoreFolder(platform.GetDrives(), userId, *stored);
    if (!folder.IsUsable()) return StoreFault{folder.Refusal().Clause()};
    return Located{*stored, folder.Path()};
  } catch (const Error& error) {
    return StoreFault{"its message store folder is not known: " + Describe(error)};
  }
}

}  // namespace

StoreFolderResult LocateStore(RegistryStore& store, Platform& platform, const std::string& userId) {
  auto located = Locate(store, platform, userId);
  if (auto* fault = std::get_if<StoreFault>(&located)) return std::move(*fault);
  return std::get<Located>(located).folder;
}

StoreFolderResult FindStore(RegistryStore& store, Platform& platform, const std::string& userId) {
  auto located = Locate(store, platform, userId);
  if (auto* fault = std::get_if<StoreFault>(&located)) return std::move(*fault);
  const auto& [stored, folder] = std::get<Located>(located);
  if (DirExists(platform.GetFiles(), folder)) return folder;
  return StoreFault{"its message store folder \"" + OneLine(stored.Text()) + "\" " +
                    WhyNoFolder(platform.GetFiles(), stored)};
}

}  // namespace quillbox
