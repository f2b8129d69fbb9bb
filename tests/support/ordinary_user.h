// A user who may not write everywhere, whoever runs the test: an administrator gives up that right.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

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

}  // namespace quillbox
