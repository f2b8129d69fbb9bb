// SPDX-License-Identifier: GPL-3.0-or-later
// New, empty identities: a fresh {USER_ID}, the identity's keys and values, and its message store folder.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/identity_catalogue.h"
#include "core/registry_store.h"
#include "platform/platform.h"

namespace quillbox {

/// The folder before the last backslash, without it; empty without one.
WinPath GetPathOnly(const WinPath& path);
/// Makes sure that the folder holding the last element of `path` exists, its missing parents included: for a path that
/// ends in a backslash the whole chain. Returns `path`. A failure is silent.
WinPath CreateFolder(FileSystem& files, const WinPath& path);

/// Where an identity's messages are by default, final backslash included: below the person's local application data.
/// Throws Error when the registry does not say where those are.
WinPath DefaultStoreFolder(RegistryStore& store, Platform& platform, const std::string& userId);
/// The same with "%UserProfile%" in it, as a "Store Root" has it.
std::string UnexpandedStoreFolder(const std::string& userId);

struct NewIdentity {
  std::string userId;
  std::string username;
};

/// What a window shows while an identity is being made; any may be empty.
struct CreationSteps {
  std::function<void(const std::string& userId)> onUserId;      ///< the {USER_ID} was announced
  std::function<void(const std::string& username)> onUsername;  ///< the username was given; nothing is written yet
};

class IdentityMaker {
 public:
  IdentityMaker(Platform& platform, RegistryStore& store) : platform_(platform), store_(store) {}

  /// Makes a new {USER_ID}, from then on the current one. False, after a message, when none could be made.
  bool CreateNewGUID();
  const std::string& NewUserID() const { return newUserId_; }

  /// The command: asks whether to, makes the {USER_ID}, asks for the username and creates the identity. Nothing, with
  /// nothing written, when the person does not want it or no {USER_ID} can be made.
  std::optional<NewIdentity> Run(const CreationSteps& steps);

  /// Writes the keys and values of an identity with the ordinal `ordinal` and makes its folder. What the registry
  /// refuses is left out; a folder that cannot be made is logged.
  void Create(const NewIdentity& identity, std::uint32_t ordinal);
  /// The ordinal that the next identity gets.
  std::uint32_t NextOrdinal();

 private:
  void MakeStoreFolder(const std::string& userId);

  Platform& platform_;
  RegistryStore& store_;
  std::string newUserId_;
};

}  // namespace quillbox
