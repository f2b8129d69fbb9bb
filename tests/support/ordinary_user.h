// A user who may not write everywhere, whoever runs the test: an administrator gives up that right.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <optional>

#include "support/temp_folder.h"

namespace quillbox {

class OrdinaryUser {
 public:
  OrdinaryUser() {
    if (administrator_) Become(kNobody);
  }
  ~OrdinaryUser() {
    if (administrator_) Become(0);
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;
  static void Become(uid_t user) {
    if (seteuid(user) != 0) ADD_FAILURE() << "cannot become user " << user;
  }
  const bool administrator_ = geteuid() == 0;
};

/// A folder in which such a user cannot write anything while an object lives.
class ReadOnlyFolder {
 public:
  ReadOnlyFolder(const TempFolder& temp, std::string_view name) : folder_(temp / name) {
    chmod(temp.Path().c_str(), 0755);
    chmod(folder_.c_str(), 0555);
    user_.emplace();
  }
  ~ReadOnlyFolder() {
    user_.reset();
    chmod(folder_.c_str(), 0755);
  }
  ReadOnlyFolder(const ReadOnlyFolder&) = delete;
  ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

 private:
  const std::filesystem::path folder_;
  std::optional<OrdinaryUser> user_;
};

}  // namespace quillbox
