// What all windows of one run share: the platform, the registry, the catalogue, and the way to one another.
#pragma once

#include <functional>

#include "backup/backup_folder.h"
#include "core/address_book_slots.h"
#include "core/disk_path.h"
#include "core/identity_catalogue.h"
#include "core/registry_store.h"
#include "identities/create_identity.h"
#include "platform/platform.h"
#include "ui/form.h"

namespace quillbox {

/// The program's page, which the Help menu names and opens.
inline constexpr const char* kWebAddress = "https://quillbox.example/";

struct Program {
  explicit Program(Platform& onPlatform) : platform(onPlatform), store(onPlatform), guard(onPlatform) {}

  Platform& platform;
  RegistryStore store;
  HandlerGuard guard;
  BackupFolder backupFolder{platform, store};
  IdentityMaker identityMaker{platform, store};
  IdentityCatalogue catalogue;
  AddressBookSlots addressBookSlots;
  bool searchPerformed = false;  ///< the search window has searched since the start
  bool overwrite = false;        ///< the overwrite setting that the last backup command read

  /// Ends the program; set by whoever runs the windows.
  std::function<void()> quit = [] {};
};

/// Says that a path is not used, and why: a PathRefusal or a FolderRefusal.
template <class Refusal>
void TellRefusal(Program& program, const Refusal& refusal) {
  program.platform.GetDialogs().Show({.text = refusal.Sentence(), .icon = MessageIcon::Exclamation});
}

}  // namespace quillbox
