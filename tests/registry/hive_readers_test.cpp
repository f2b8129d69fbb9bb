// Programs of others read what we write. A program that is not installed is skipped.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "registry/reg_file_recorder.h"
#include "support/damaged_hive.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

class OtherReaders : public testing::Test {
 protected:
  /// Twenty thousand keys, a third of them deleted and some made again, and values of every form.
  OtherReaders() : hive_(Hive::Create("Test", kMonday)) {
    const auto name = [](int number) {
      return "Keys\\key " + std::to_string(static_cast<unsigned>(number) * 2654435761U);
    };
    const Bytes text = Utf16Bytes(std::u16string_view(u"text", 5));
    for (int number = 0; number < 20000; ++number) {
      hive_.SetValue(hive_.CreatePath(hive_.Root(), name(number)), "Username", 1, text);
    }
    for (int number = 0; number < 20000; number += 3) hive_.DeleteTree(*hive_.Find(hive_.Root(), name(number)));
    for (int number = 0; number < 20000; number += 30) hive_.CreatePath(hive_.Root(), name(number) + "\\below");
    const HiveKey values = hive_.CreateSubkey(hive_.Root(), "Values");
    hive_.SetValue(values, "", 1, text);
    hive_.SetValue(values, "number", 4, Pattern(4));
    for (const std::size_t size : {5U, 16344U, 16345U, 100000U}) {
      hive_.SetValue(values, "bytes " + std::to_string(size), 3, Pattern(size));
    }
    WriteBytes(folder_ / "hive", hive_.Image(kMonday));
  }

  static bool IsMissing(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) != 0;
  }

  /// Runs `command` in the test's folder; what it wrote to its output is in the file `out` there.
  int Run(const std::string& command) const {
    return std::system(("cd '" + folder_.Path().string() + "' && " + command + " >out 2>errors").c_str());
  }

  TempFolder folder_;
  Hive hive_;
};

TEST_F(OtherReaders, HivexregeditExportsTheSame) {
  if (IsMissing("hivexregedit")) GTEST_SKIP() << "hivexregedit is not installed";
  ASSERT_EQ(Run("hivexregedit --export hive '\\' --prefix Test"), 0) << folder_.Read("errors");
  std::vector<std::string> expected;
  AppendLines(expected, hive_, hive_.Root(), "Test", false);
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(ContentsOf(folder_.Read("out")), expected);
}

TEST_F(OtherReaders, HivexmlAndReglookupComplainOfNothing) {
  for (const std::string command : {"hivexml", "reglookup -s"}) {
    if (IsMissing(command)) GTEST_SKIP() << command << " is not installed";
    EXPECT_EQ(Run(command + " hive"), 0);
    EXPECT_EQ(folder_.Read("errors"), "");
  }
}

}  // namespace
}  // namespace quillbox
