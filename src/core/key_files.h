// SPDX-License-Identifier: GPL-3.0-or-later
// Keys as hive files: saving a key with everything below it, and replacing what a key holds by such a file.
#pragma once

#include "platform/platform.h"
#include "platform/registry.h"

namespace quillbox {

class KeyFiles {
 public:
  explicit KeyFiles(Platform& platform) : platform_(platform), registry_(platform.GetRegistry()) {}

  struct Outcome {
    Status opened = Status::Success;  ///< what opening the key answered
    Status status = Status::Success;  ///< the outcome of all steps
  };
  /// Writes a key as a hive file, whole or not at all, in place of a file of that name. For a key that does not exist
  /// that file is deleted. Without the privilege nothing is done, which is a success.
  Outcome Save(const RegistryPath& path, const WinPath& file);
  /// Replaces what an existing key holds by a hive file's content; a file that is not a usable hive changes nothing.
  /// Without the privilege nothing is done, which is a success.
  Outcome Restore(const RegistryPath& path, const WinPath& file);

 private:
  Status ReplaceByKey(const Key& key, const WinPath& file);

  Platform& platform_;
  Registry& registry_;
};

}  // namespace quillbox
