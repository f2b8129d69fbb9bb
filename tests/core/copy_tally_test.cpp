#include "core/copy_tally.h"

#include <gtest/gtest.h>

namespace quillbox {
namespace {

CopyResult Result(CopyEnd end, const char* reason = "") {
  return {.source = {}, .target = {}, .end = end, .keptAs = {}, .reason = reason};
}

TEST(CopyTallyTest, SaysOnlyWhatDidNotGoAsAsked) {
  const CopyResult copied = Result(CopyEnd::Copied);
  const CopyResult damaged = Result(CopyEnd::KeptDamaged);
  const CopyResult leftOut = Result(CopyEnd::LeftOut);
  const CopyResult kept = Result(CopyEnd::NotReplaced);
  const CopyResult full = Result(CopyEnd::Failed, "the disk is full");
  const CopyResult stopped = Result(CopyEnd::Cancelled, "the disk is full");
  const CopyResult cancelled = Result(CopyEnd::Cancelled, "cancelled");
  const struct {
    std::vector<CopyResult> results;
    const char* text;
  } rows[] = {{{}, ""},
              {{copied, copied}, ""},
              {{full, stopped, stopped}, "0 of 3 files copied: the disk is full"},
              {{copied, damaged, copied}, "2 of 3 files copied: 1 kept as damaged"},
              {{leftOut, leftOut}, "0 of 2 files copied: 2 left out as damaged"},
              {{copied, cancelled, cancelled}, "1 of 3 files copied: cancelled"},
              {{copied, kept, full, damaged, full, copied},
               "2 of 6 files copied: 1 not replaced, the disk is full (2 files), 1 kept as damaged"}};
  for (const auto& row : rows) EXPECT_EQ(CopyTally(row.results).Text(), row.text);
  EXPECT_EQ(CopyTally({copied}).After("2 Identities Backed Up"), "2 Identities Backed Up");
  EXPECT_EQ(CopyTally({copied, copied}).CountText(), "2 files copied");
  EXPECT_EQ(CopyTally({copied, full}, {"1 message store not copied"}).After("2 Identities Backed Up"),
            "2 Identities Backed Up; 1 of 2 files copied: the disk is full; 1 message store not copied");
}

}  // namespace
}  // namespace quillbox
