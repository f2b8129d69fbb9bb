// SPDX-License-Identifier: GPL-3.0-or-later
// The system's registry editor and ours: what one writes of a registry, the other writes of a registry that it was
// merged into.
#include <gtest/gtest.h>

#include "registry/reg_file_recorder.h"
#include "running_windows/windows_sample.h"
#include "support/damaged_hive.h"

namespace quillbox {
namespace {

std::vector<std::string> Written(const std::string& file) {
  const Bytes bytes = ReadBytes(file);
  return ContentsOf({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

/// What only the first has. Wine's editor does not merge a text with a line break.
std::vector<std::string> OnlyIn(const std::vector<std::string>& one, const std::vector<std::string>& other) {
  std::vector<std::string> only;
  std::set_difference(one.begin(), one.end(), other.begin(), other.end(), std::back_inserter(only));
  std::erase_if(only, [](const std::string& line) { return line.find("0d000a00") != std::string::npos; });
  return only;
}

TEST(SystemEditorTest, WritesWhatOursHasWrittenKeyByKey) {
  const TempFolder temp;
  const SampleOriginal sample;
  MakeSampled(temp);
  const std::vector<std::string> none;
  std::size_t file = 1;  // after the facts
  for (const SampledKey& key : kSampledKeys) {
    if (!key.isInSample) continue;
    const std::string name = NameOf(temp / "theirs.reg");
    RunOrThrow("C:\\windows\\regedit.exe", {"/e", name, FullName(key.path)}, temp);
    const std::vector<std::string> theirs = Written(name), ours = Written(sample.files[file++]);
    EXPECT_GT(ours.size(), 1U) << FullName(key.path);
    EXPECT_EQ(OnlyIn(ours, theirs), none);
    if (key.path.subkey.ends_with("International")) continue;  // the system fills this one by itself
    EXPECT_EQ(OnlyIn(theirs, ours), none);
  }
}

}  // namespace
}  // namespace quillbox
