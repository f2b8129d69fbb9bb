// SPDX-License-Identifier: GPL-3.0-or-later
// Changes of existing identities: removing one, its username, the default one and the one to start as.
#pragma once

#include <string>

#include "core/identity_catalogue.h"
#include "core/registry_store.h"

namespace quillbox {

/// Deletes the identity's key with everything below it. Its message store stays, and so do the values that name it.
/// Nothing happens when `userId` is empty or more than one key's name.
void RemoveIdentity(RegistryStore& store, const std::string& userId);

/// The default identity as the registry has it now; empty when it names none.
std::string ReadDefaultIdentity(RegistryStore& store);
void SetDefaultIdentity(RegistryStore& store, const std::string& userId);

/// The identity that Outlook Express starts as; kNobody has it ask.
std::string ReadStartAs(RegistryStore& store);
/// With kNobody the identity used last is forgotten, too.
void SetStartAs(RegistryStore& store, const std::string& userId);

/// Gives `identity` the name `username` in the registry, and in `catalogue` every identity that had its name. False,
/// with nothing changed, when an identity has that very name.
bool RenameIdentity(RegistryStore& store, IdentityCatalogue& catalogue, const IdentityInfo& identity,
                    const std::string& username);

}  // namespace quillbox
