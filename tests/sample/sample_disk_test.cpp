#include "sample/sample_disk.h"

#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

#include "support/damaged_hive.h"
#include "support/temp_folder.h"
#include "text/error.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;

class SampleDiskTest : public testing::Test {
 protected:
  TempFolder temp_;
  const fs::path folder_ = temp_.Path();
};

using namespace std::string_literals;

TEST_F(SampleDiskTest, HivesHoldWhatWasAskedFor) {
  SampleOptions options;
  options.smallStores = true;
  options.productName = "Microsoft Windows 2000";
  options.codePage = 1250;
  const SampleDisk disk = MakeSampleDisk(folder_ / "disk", options);
  const std::tuple<const char*, const char*, const char*, std::string> values[] = {
      {"software", "Microsoft\\Windows NT\\CurrentVersion", "ProductName", "Microsoft Windows 2000\0"s},
      {"system", "ControlSet001\\Control\\Nls\\CodePage", "ACP", "1250\0"s}};
  for (const auto& [file, key, name, text] : values) {
    const Hive hive = Hive::Load(ReadBytes(disk.driveC / "WINDOWS" / "system32" / "config" / file), file);
    const HiveValue value = hive.Value(hive.Find(hive.Root(), key).value(), name).value();
    EXPECT_EQ(value.type, 1U);
    EXPECT_EQ(ToUtf8(Utf16FromBytes(value.data)), text);
  }
}

TEST_F(SampleDiskTest, StoresAreLikeRealOnesAndTheSameEachTime) {
  const SampleDisk disk = MakeSampleDisk(folder_ / "1");
  MakeSampleDisk(folder_ / "2");
  std::size_t stores = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder_ / "1")) {
    if (!entry.is_regular_file()) continue;
    const Bytes file = ReadBytes(entry.path());
    EXPECT_EQ(file, ReadBytes(folder_ / "2" / fs::relative(entry.path(), folder_ / "1"))) << entry.path();
    if (entry.path().extension() != ".dbx") continue;
    ++stores;
    EXPECT_EQ(Bytes(file.begin(), file.begin() + 4), (Bytes{0xCF, 0xAD, 0x12, 0xFE})) << entry.path();
    if (entry.path().filename() == "Inbox.dbx" && entry.path().string().starts_with(disk.driveC.string())) {
      EXPECT_GT(file.size(), 200'000u);
    }
  }
  EXPECT_EQ(stores, 19u);
}

TEST_F(SampleDiskTest, NeverTouchesWhatIsThere) {
  const fs::path used = folder_ / "used";
  fs::create_directory(used);
  std::ofstream(used / "letter.txt") << "mine";
  EXPECT_THROW(MakeSampleDisk(used), Error);
  EXPECT_THROW(MakeSampleDisk(used / "letter.txt"), Error);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1) << "nothing left beside it";
  EXPECT_EQ(std::distance(fs::directory_iterator(used), {}), 1);
  SampleOptions options;
  options.smallStores = true;
  options.profile = "..";
  EXPECT_THROW(MakeSampleDisk(folder_ / "other", options), Error);
  options.profile = "Ann Miller";
  fs::create_directory(folder_ / "empty");
  EXPECT_TRUE(fs::exists(MakeSampleDisk((folder_ / "empty").string() + "/", options).driveC));
}

}  // namespace
}  // namespace quillbox
