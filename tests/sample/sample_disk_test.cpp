#include "sample/sample_disk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "support/damaged_hive.h"
#include "support/temp_folder.h"
#include "text/error.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;

class SampleDiskTest : public testing::Test {
 protected:
  static std::string Text(const Hive& hive, std::string_view path, std::string_view name, std::uint32_t type) {
    const auto key = hive.Find(hive.Root(), path);
    const auto value = key ? hive.Value(*key, name) : std::nullopt;
    if (!value) return "missing";
    EXPECT_EQ(value->type, type) << path << ' ' << name;
    return ToUtf8(Utf16FromBytes(value->data));
  }

  TempFolder temp_;
  const fs::path folder_ = temp_.Path();
};

using namespace std::string_literals;

TEST_F(SampleDiskTest, HivesLeadToTheStoresAndHoldWhatWasAskedFor) {
  SampleOptions options;
  options.smallStores = true;
  options.productName = "Microsoft Windows 2000";
  options.codePage = 1250;
  const SampleDisk disk = MakeSampleDisk(folder_ / "disk", options);
  const fs::path config = disk.driveC / "WINDOWS" / "system32" / "config";
  const Hive software = Hive::Load(ReadBytes(config / "software"), "software");
  EXPECT_EQ(Text(software, "Microsoft\\Windows NT\\CurrentVersion", "ProductName", 1), "Microsoft Windows 2000\0"s);
  const Hive system = Hive::Load(ReadBytes(config / "system"), "system");
  EXPECT_EQ(Text(system, "ControlSet001\\Control\\Nls\\CodePage", "ACP", 1), "1250\0"s);

  const fs::path person = disk.driveC / "Documents and Settings" / disk.profile;
  const Hive user = Hive::Load(ReadBytes(person / "NTUSER.DAT"), "NTUSER.DAT");
  std::vector<std::string> stores;
  for (const HiveKey identity : user.Subkeys(user.Find(user.Root(), "Identities").value())) {
    const std::string path = "Identities\\" + user.Name(identity) + "\\Software\\Microsoft\\Outlook Express\\5.0";
    std::string store = Text(user, path, "Store Root", 2);
    stores.push_back(store.substr(0, 3));
    if (store == "missing") continue;
    store.pop_back();  // its NUL
    std::replace(store.begin(), store.end(), '\\', '/');
    const fs::path folder = store.starts_with("%") ? person / store.substr(14) : disk.driveD / store.substr(3);
    EXPECT_TRUE(fs::exists(folder / "Folders.dbx")) << store;
  }
  EXPECT_EQ(stores, (std::vector<std::string>{"%Us", "D:\\", "mis"})) << "the third was never started";
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
