// SPDX-License-Identifier: GPL-3.0-or-later
// Merges: what a registry file says is done to a registry. A line that cannot be merged is reported and left out; the
// rest is merged.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "registry/byte_source.h"
#include "text/code_page.h"

namespace quillbox {

struct MergeProblem {
  std::size_t line = 0;  ///< from 1
  std::string reason;
};

struct MergeReport {
  static constexpr std::size_t kMaxProblems = 200;  ///< more are counted, but not kept

  std::size_t keysAdded = 0;    ///< keys named by the file that were missing; parents made on the way are not counted
  std::size_t keysDeleted = 0;  ///< keys named by the file; those below them are not counted
  std::size_t valuesSet = 0;
  std::size_t valuesDeleted = 0;
  std::vector<MergeProblem> problems;
  std::size_t problemCount = 0;
};

/// Merges what `source`, the file `name`, says into `registry`. Deleting what is not there is not a problem.
/// Throws Error when it is not a registry file, with nothing changed, and when it cannot be read to its end: then the
/// registry must not be committed.
MergeReport MergeFile(Registry& registry, ByteSource& source, const std::string& name, const CodePage& codePage);

}  // namespace quillbox
