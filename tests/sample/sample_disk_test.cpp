// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/sample_disk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

#include "registry/hive_tools.h"
#include "sample/dbx_writer.h"
#include "support/damaged_hive.h"
#include "support/host_tricks.h"
#include "support/sample_ids.h"
#include "support/temp_folder.h"
#include "text/byte_order.h"
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
  const SampleDisk disk = MakeSampleDisk(
      folder_ / "disk", {.smallStores = true, .productName = "Microsoft Windows 2000", .codePage = 1250});
  const auto valueOf = [&](const char* file, const char* key, const char* name) {
    const Hive hive = Hive::Load(ReadBytes(disk.driveC / "WINDOWS/system32/config" / file), file);
    const HiveValue value = hive.Value(hive.Find(hive.Root(), key).value(), name).value();
    return std::to_string(value.type) + " " + ToUtf8(Utf16FromBytes(value.data));
  };
  EXPECT_EQ(valueOf("software", "Microsoft\\Windows NT\\CurrentVersion", "ProductName"), "1 Microsoft Windows 2000\0"s);
  EXPECT_EQ(valueOf("system", "ControlSet001\\Control\\Nls\\CodePage", "ACP"), "1 1250\0"s);
}

TEST_F(SampleDiskTest, RulesViewsAndBlockedSendersAreBuiltLikeRealOnes) {
  const SampleDisk disk = MakeSampleDisk(folder_ / "disk", {.smallStores = true});
  const fs::path file = disk.driveC / "Documents and Settings" / disk.profile / "NTUSER.DAT";
  const Hive hive = Hive::Load(ReadBytes(file), file.string());
  const auto read = [&](const std::string& key, const char* name) {
    const std::string path = "Identities\\" + kMain + "\\Software\\Microsoft\\Outlook Express\\5.0\\" + key;
    return hive.Value(hive.Find(hive.Root(), path).value(), name).value().data;
  };
  EXPECT_EQ(ToUtf8(Utf16FromBytes(read("Rules\\Filter", "Order"))), "FFA FFB FFC FFF\0"s);
  EXPECT_EQ(ToUtf8(Utf16FromBytes(read("Rules\\Filter\\FFF", "Name"))), "Show All Messages\0"s);
  for (const char* key : {"Rules\\Mail", "Rules\\Filter", "Block Senders\\Mail"}) {
    EXPECT_EQ(read(key, "Version"), (Bytes{0, 0, 5, 0})) << key;
  }
  EXPECT_EQ(read("Rules\\Mail\\000\\Criteria\\000", "Logic"), (Bytes{2, 0, 0, 0})) << "or";
  EXPECT_EQ(read("Rules\\Mail\\000\\Criteria\\001", "Logic"), (Bytes{0, 0, 0, 0})) << "the last";
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
  EXPECT_TRUE(fs::exists(disk.driveD / u8"Mail/Office/Aufträge.dbx"));
}

TEST_F(SampleDiskTest, NeverTouchesWhatIsThere) {
  const fs::path used = folder_ / "used";
  fs::create_directory(used);
  std::ofstream(used / "letter.txt") << "mine";
  EXPECT_THROW(MakeSampleDisk(used), Error);
  EXPECT_THROW(MakeSampleDisk(used / "letter.txt"), Error);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1) << "nothing left beside it";
  EXPECT_EQ(std::distance(fs::directory_iterator(used), {}), 1);
  EXPECT_THROW(MakeSampleDisk(folder_ / "other", {.smallStores = true, .profile = ".."}), Error);
  fs::create_directory(folder_ / "empty");
  EXPECT_TRUE(fs::exists(MakeSampleDisk((folder_ / "empty").string() + "/", {.smallStores = true}).driveC));
}

/// A registry file's keys and values as cregexport lists them: "path", and "path : name = type data".
std::vector<std::string> ListedByCregexport(const fs::path& file, const fs::path& folder) {
  constexpr std::pair<std::string_view, const char*> kTypes[] = {
      {"string", "1"}, {"expandable", "2"}, {"binary", "3"}, {"32-bit", "4"}, {"multi-value", "7"}};
  std::istringstream text(RunProgram("/usr/bin/cregexport", {file.string()}, folder).out);
  std::vector<std::string> lines;
  std::string path;
  for (std::string line; std::getline(text, line);) {
    if (line.starts_with("Key path: ")) lines.push_back(path = line.substr(10));
    if (line.starts_with("Value: ")) {
      const std::string name = line.substr(line.find(' ', 7) + 1);
      lines.push_back(path + " : " + (name == "(default)" ? "" : name) + " = ");
    }
    for (const auto& [word, type] : kTypes) {
      if (line.starts_with("Type: " + std::string(word))) lines.back() += type + " "s;
    }
    // Numbers are not listed as bytes.
    if (line.starts_with("Data: ") && lines.back().ends_with("= 4 ")) {
      lines.back() += Hex(NumberBytes(static_cast<std::uint32_t>(std::stoul(line.substr(6), nullptr, 0))));
    }
    if (line.size() < 60 || !line.starts_with("0000") || line.substr(8, 2) != ": ") continue;
    std::string digits = line.substr(10, 49);
    std::erase(digits, ' ');
    lines.back() += digits;
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

/// The same as the program reads them.
std::vector<std::string> ReadByUs(const fs::path& file) {
  const CodePage codePage;
  const Hive hive = Hive::LoadCreg(ReadBytes(file), file.string(), codePage);
  std::vector<std::string> lines;
  for (std::string line : Lines(hive)) {
    const std::size_t data = line.find(" = ");
    if (data != std::string::npos && std::string_view("127").find(line[data + 3]) != std::string_view::npos) {
      Bytes units;
      for (std::size_t at = data + 5; at < line.size(); at += 2) {
        units.push_back(static_cast<std::uint8_t>(std::stoul(line.substr(at, 2), nullptr, 16)));
      }
      const std::string text = codePage.Encode(ToUtf8(Utf16FromBytes(units))).value();
      line = line.substr(0, data + 5) + Hex(Bytes(text.begin(), text.end() - 1));
    }
    lines.push_back(line.starts_with('\\') ? line.substr(1) : line);
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

TEST_F(SampleDiskTest, AnIndependentReaderFindsTheSameInTheRegistryOfWindows98) {
  if (RunProgram("/usr/bin/cregexport", {"-V"}, folder_).code != 0) GTEST_SKIP() << "cregexport is not installed";
  const SampleDisk disk = MakeSampleDisk(folder_ / "disk", {.smallStores = true, .kind = SampleKind::Windows98});
  for (const char* name : {"USER.DAT", "SYSTEM.DAT"}) {
    const std::vector<std::string> listed = ListedByCregexport(disk.driveC / "WINDOWS" / name, folder_);
    EXPECT_GT(listed.size(), 40u);
    EXPECT_EQ(ReadByUs(disk.driveC / "WINDOWS" / name), listed) << name;
  }
}

std::uint32_t Number(const Bytes& file, std::size_t offset) {
  (void)file.at(offset + 3);
  return Load32(&file[offset]);
}

/// The records in the tree's order, as its readers walk it; checks what the nodes say about each other.
void Walk(const Bytes& file, std::uint32_t node, std::uint32_t parent, std::vector<std::uint32_t>& records) {
  EXPECT_EQ(Number(file, node), node);
  EXPECT_EQ(Number(file, node + 0x0C), parent);
  const auto child = [&](std::size_t pointerAt, std::size_t countAt) {
    const std::size_t before = records.size();
    if (Number(file, pointerAt) != 0) Walk(file, Number(file, pointerAt), node, records);
    EXPECT_EQ(Number(file, countAt), records.size() - before);
  };
  child(node + 0x08, node + 0x14);
  for (std::size_t i = 0; i < file.at(node + 0x11); ++i) {
    const std::size_t entry = node + 0x18 + 12 * i;
    records.push_back(Number(file, entry));
    child(entry + 4, entry + 8);
  }
}

std::string TextAt(const Bytes& file, std::uint32_t segment) {
  std::string text;
  while (segment != 0) {
    EXPECT_EQ(Number(file, segment), segment);
    const std::uint32_t used = Number(file, segment + 8);
    text.append(file.begin() + segment + 16, file.begin() + segment + 16 + used);
    segment = Number(file, segment + 12);
  }
  return text;
}

TEST(DbxWriter, TheTreeLeadsToEveryMessageInOrder) {
  for (const std::size_t count : {0u, 1u, 51u, 52u, 103u, 104u, 700u, 2703u, 2704u}) {
    std::vector<DbxMessage> messages(count);
    for (std::size_t i = 0; i < count; ++i) messages[i].text = std::string(1 + i * 7 % 1500, 'a') + std::to_string(i);
    const Bytes file = MessageStore(messages);
    EXPECT_EQ(Number(file, 0x7C), file.size());
    EXPECT_EQ(Number(file, 0xC4), count);
    std::vector<std::uint32_t> records;
    if (count != 0) Walk(file, Number(file, 0xE4), 0, records);
    ASSERT_EQ(records.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(Number(file, records[i]), records[i]);
      ASSERT_EQ(file.at(records[i] + 12 + 4 * 4), 0x84) << "the field that says where the text is";
      EXPECT_EQ(TextAt(file, Number(file, records[i] + 12 + 4 * 4) >> 8), messages[i].text);
    }
  }
}

}  // namespace
}  // namespace quillbox
