#include "core/copy_tally.h"

#include <gtest/gtest.h>

namespace quillbox {
namespace {

TEST(CopyTallyTest, SaysOnlyWhatDidNotGoAsAsked) {
  const CopyResult copied{WinPath(), CopyEnd::Copied, {}, {}};
  const CopyResult damaged{WinPath(), CopyEnd::KeptDamaged, "Inbox (damaged).dbx", {}};
  const CopyResult leftOut{WinPath(), CopyEnd::LeftOut, {}, {}};
  const CopyResult kept{WinPath(), CopyEnd::NotReplaced, {}, {}};
  const CopyResult full{WinPath(), CopyEnd::Failed, {}, "the disk is full"};
  const CopyResult stopped{WinPath(), CopyEnd::Cancelled, {}, "the disk is full"};
  const CopyResult cancelled{WinPath(), CopyEnd::Cancelled, {}, "cancelled"};
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
  CopyTally stores({copied, full});
  stores.AddMissingStores(1);
  EXPECT_EQ(stores.After("2 Identities Backed Up"),
            "2 Identities Backed Up; 1 of 2 files copied: the disk is full; 1 message store not copied");
}

}  // namespace
}  // namespace quillbox
