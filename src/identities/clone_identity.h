// SPDX-License-Identifier: GPL-3.0-or-later
// The clone of an identity: everything that the registry keeps under the source goes under the destination, by exports
// that are rewritten and merged, and its message store files are copied.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/registry_store.h"
#include "identities/clone_files.h"
#include "platform/platform.h"

namespace quillbox {

struct CloneRequest {
  std::string source;       ///< {USER_ID}
  std::string destination;  ///< {USER_ID}
  WinPath backupFolder;     ///< for the temporary files
  bool keepFiles = false;   ///< whether the temporary files stay
};

/// Why a clone, or a part of it, was not made: a message to the user.
struct CloneRefusal {
  std::string message;
};

/// A message store that Outlook Express would look for in another folder than the one that has it.
struct StoreElsewhere {
  WinPath recorded;  ///< what the "Store Root" expands to on this disk
  WinPath copied;    ///< the folder with the messages
};

class IdentityClone {
 public:
  IdentityClone(Platform& platform, RegistryStore& store, CloneRequest request);

  /// Why this cannot be cloned; nothing when it can be tried.
  std::optional<CloneRefusal> Refusal();

  /// Clones the registry's part. Throws Error when a step fails; Done() then says what was already changed.
  void CloneSettings();
  /// The changes of the registry so far, each as a sentence.
  const std::vector<std::string>& Done() const { return done_; }

  /// Copies the source's message store, subfolders included, to the destination's own folder, which is made when it is
  /// missing. A refusal when nothing can be copied.
  std::optional<CloneRefusal> CopyMessages();

  /// Where the "Store Root" of the destination leads, when that is not the folder that CopyMessages fills.
  std::optional<StoreElsewhere> FindElsewhere();
  /// Has the destination's "Store Root" name the folder that CopyMessages fills. False when it cannot be written.
  bool PointToCopies();

 private:
  WinPath File(const char* name) const { return WinPath(request_.backupFolder.Text() + name); }
  void Export(const char* name, const std::string& key);
  RegText Read(const char* name);
  void Merge(const char* name, const std::string& what);
  void WriteStoreRoot(const WinPath& expanded);
  void CloneAccounts();
  void RemoveFiles();

  Platform& platform_;
  RegistryStore& store_;
  CloneRequest request_;
  CodePage codePage_;
  std::vector<std::string> done_;
};

}  // namespace quillbox
