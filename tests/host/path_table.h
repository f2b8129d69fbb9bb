// SPDX-License-Identifier: GPL-3.0-or-later
// A table of texts and the paths that they mean.
#pragma once

#include "host/host_path.h"
#include "support/matchers.h"

namespace quillbox {

struct PathRow {
  std::string text;
  bool isAbsolute;
  std::vector<std::string> names;
  std::string written = {};  ///< the path's own text, where it is another
};

inline void CheckPaths(const std::vector<PathRow>& rows) {
  for (const PathRow& row : rows) {
    const HostPath path(row.text);
    EXPECT_EQ(path.IsAbsolute(), row.isAbsolute) << row.text;
    EXPECT_EQ(path.Names(), row.names) << row.text;
    EXPECT_EQ(path.Text(), row.written.empty() ? row.text : row.written);
    EXPECT_EQ(HostPath(path.Text()), path);
  }
}

}  // namespace quillbox
