// SPDX-License-Identifier: GPL-3.0-or-later
// A folder in which a user cannot write anything while an object lives.
#pragma once

#include <optional>
#include <string_view>

#include "support/host_tricks.h"
#include "support/temp_folder.h"

namespace quillbox {

class ReadOnlyFolder {
 public:
  ReadOnlyFolder(const TempFolder& temp, std::string_view name) : folder_(temp / name) {
    std::filesystem::permissions(temp.Path(), std::filesystem::perms{0755});
    std::filesystem::permissions(folder_, std::filesystem::perms{0555});
    user_.emplace();
  }
  ~ReadOnlyFolder() {
    user_.reset();
    std::filesystem::permissions(folder_, std::filesystem::perms{0755});
  }
  ReadOnlyFolder(const ReadOnlyFolder&) = delete;
  ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

 private:
  const std::filesystem::path folder_;
  std::optional<OrdinaryUser> user_;
};

}  // namespace quillbox
