// SPDX-License-Identifier: GPL-3.0-or-later
// What paths are made of, whatever their text is.
#include "host/host_path.h"

#include "support/matchers.h"

namespace quillbox {
namespace {

TEST(HostPath, IsTakenApartAndPutTogetherByNames) {
  const HostPath users = HostPath::Root().Join("E").Join("Users");
  EXPECT_TRUE(HostPath::Root().IsRoot() && !HostPath::Root().HasName() && HostPath().Empty());
  EXPECT_EQ(HostPath::Root().Parent(), HostPath::Root());
  EXPECT_EQ((users / "Ann/./Mail").Names(), (std::vector<std::string>{"E", "Users", "Ann", "Mail"}));
  EXPECT_EQ(HostPath("a") / users.Text(), users);
  EXPECT_EQ(HostPath(std::filesystem::path(users.Text())), users);
  EXPECT_EQ(users.Name(), "Users");

  EXPECT_EQ((users / "Ann/../../x").Normal(), HostPath::Root().Join("E").Join("x"));
  EXPECT_EQ(HostPath("../a/../../b").Normal(), HostPath("../../b"));
  EXPECT_EQ((users / "Ann").Below(users), HostPath("Ann"));
  EXPECT_EQ(users.Below(users / "Ann"), std::nullopt);
  EXPECT_EQ(HostPath("Users").Below(users), std::nullopt);
  EXPECT_EQ((users / "Ann").RelativeTo(HostPath::Root().Join("E") / "x/y"), HostPath("../../Users/Ann"));
}

}  // namespace
}  // namespace quillbox
