#include "sample/sample_disk.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "registry/hive.h"
#include "text/error.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;

class SampleDiskTest : public testing::Test {
 protected:
  SampleDiskTest() {
    std::string name = (fs::temp_directory_path() / "sample.XXXXXX").string();
    folder_ = mkdtemp(name.data());
  }
  ~SampleDiskTest() override { fs::remove_all(folder_); }

  static Bytes Read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return Bytes(std::istreambuf_iterator<char>(file), {});
  }

  static std::string Text(const Hive& hive, std::string_view path, std::string_view name, std::uint32_t type) {
    const auto key = hive.Find(hive.Root(), path);
    const auto value = key ? hive.Value(*key, name) : std::nullopt;
    if (!value) return "missing";
    EXPECT_EQ(value->type, type) << path << ' ' << name;
    return ToUtf8(Utf16FromBytes(value->data));
  }

  fs::path folder_;
};

using namespace std::string_literals;

TEST_F(SampleDiskTest, HivesSayWhereEverythingIs) {
  SampleOptions options;
  options.smallStores = true;
  options.productName = "Microsoft Windows 2000";
  options.codePage = 1250;
  const SampleDisk disk = MakeSampleDisk(folder_ / "disk", options);
  const fs::path config = disk.driveC / "WINDOWS" / "system32" / "config";
  const Hive software = Hive::Load(Read(config / "software"), "software");
  EXPECT_EQ(Text(software, "Microsoft\\Windows NT\\CurrentVersion", "ProductName", 1), "Microsoft Windows 2000\0"s);
  EXPECT_EQ(Text(software, "Microsoft\\Windows\\CurrentVersion", "ProductName", 1), "missing");
  const Hive system = Hive::Load(Read(config / "system"), "system");
  EXPECT_EQ(Text(system, "ControlSet001\\Control\\Nls\\CodePage", "ACP", 1), "1250\0"s);

  const fs::path person = disk.driveC / "Documents and Settings" / disk.profile;
  const Hive user = Hive::Load(Read(person / "NTUSER.DAT"), "NTUSER.DAT");
  EXPECT_TRUE(fs::exists(person / "Application Data/Microsoft/Address Book/Ann Miller.wab"));
  const HiveKey list = user.Find(user.Root(), "Identities").value();
  ASSERT_EQ(user.SubkeyCount(list), 3u);
  const std::string main = "Identities\\" + user.Name(user.SubkeyAt(list, 0));
  EXPECT_EQ(Text(user, "Identities", "Default User ID", 1), main.substr(11) + '\0');
  const std::string settings = "\\Software\\Microsoft\\Outlook Express\\5.0";
  const std::string root = Text(user, main + settings, "Store Root", 2);
  std::string folder = root.substr(0, root.size() - 1);
  ASSERT_TRUE(folder.starts_with("%UserProfile%\\")) << folder;
  for (char& c : folder) c = c == '\\' ? '/' : c;
  EXPECT_TRUE(fs::exists(person / folder.substr(14) / "comp.lang.c++.dbx"));

  const std::string office = "Identities\\" + user.Name(user.SubkeyAt(list, 1));
  EXPECT_EQ(Text(user, office, "Username", 1), "B\xC3\xBCro\0"s);
  EXPECT_EQ(Text(user, office + settings, "Store Root", 2), "D:\\Mail\\Office\0"s);
  EXPECT_TRUE(fs::exists(disk.driveD / "Mail" / "Office" / "Inbox.dbx"));
  EXPECT_FALSE(user.Find(user.SubkeyAt(list, 2), settings.substr(1))) << "never started";

  const HiveKey words = user.Find(user.Root(), main + settings + "\\Rules\\Mail\\000\\Criteria\\000").value();
  const Bytes value = user.Value(words, "Value").value().data;
  EXPECT_EQ(std::string(value.begin(), value.end()), "[choir]\0rehearsal\0\0"s);
}

TEST_F(SampleDiskTest, OtherReadersTakeTheHives) {
  SampleOptions options;
  options.smallStores = true;
  const SampleDisk disk = MakeSampleDisk(folder_ / "disk", options);
  const std::string commands[] = {"hivexml ", "reglookup "};
  const fs::path hives[] = {disk.driveC / "WINDOWS/system32/config/software",
                            disk.driveC / "WINDOWS/system32/config/system",
                            disk.driveC / "Documents and Settings" / disk.profile / "NTUSER.DAT"};
  for (const std::string& command : commands) {
    if (std::system(("command -v " + command + ">/dev/null").c_str()) != 0) continue;
    for (const fs::path& hive : hives) {
      // reglookup shows other than ASCII text as bytes and says so each time; any other word is a complaint.
      const std::string complaints =
          "{ " + command + "'" + hive.string() + "' 2>&1 >/dev/null || echo failed; } | grep -v 'While quoting'";
      EXPECT_NE(std::system(complaints.c_str()), 0) << command << hive;
    }
  }
}

TEST_F(SampleDiskTest, StoresAreLikeRealOnesAndTheSameEachTime) {
  const SampleDisk disk = MakeSampleDisk(folder_ / "1");
  MakeSampleDisk(folder_ / "2");
  std::size_t stores = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder_ / "1")) {
    if (!entry.is_regular_file()) continue;
    const Bytes file = Read(entry.path());
    EXPECT_EQ(file, Read(folder_ / "2" / fs::relative(entry.path(), folder_ / "1"))) << entry.path();
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
