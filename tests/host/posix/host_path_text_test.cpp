// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/path_table.h"

namespace quillbox {
namespace {

TEST(HostPathText, IsThatOfThisHost) {
  CheckPaths({{"/", true, {}},
              {"/media/disk", true, {"media", "disk"}},
              {"//media/./disk/", true, {"media", "disk"}, "/media/disk"},
              {"../a\\b:c", false, {"..", "a\\b:c"}},
              {"", false, {}},
              {"\xFF", false, {"\xFF"}}});
  EXPECT_FALSE(IsSameHostName("a", "A"));
  EXPECT_EQ(NativePath(HostPath()), ".");
}

}  // namespace
}  // namespace quillbox
