#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/offline/offline_fixture.h"
#include "regedit/export.h"
#include "regedit/merge.h"
#include "regedit/outcome.h"
#include "text/error.h"

namespace quillbox {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const RegistryPath kRoot = {RegistryRoot::CurrentUser, ""};
const RegistryPath kIdentities = {RegistryRoot::CurrentUser, "Identities"};

Bytes Stored(std::u16string text) {
  return Utf16Bytes(text += u'\0');
}

struct Exported : ExportResult {
  std::string bytes;
  std::size_t pieces = 0;
};

/// A registry with nothing but an empty user's hive.
struct System : OfflineFixture {
  explicit System(HiveMode mode = HiveMode::Write)
      : file(HostPlace::Anywhere(MakeHiveFile(disk / "NTUSER.DAT")), mode, disk / "state", log) {
    registry.Mount(kRoot, file);
  }

  void Set(const std::string& path, std::string_view name, ValueType type, const Bytes& data) {
    const OpenResult opened = registry.Create(kIdentities.Child(path));
    ASSERT_EQ(registry.SetStoredValue(opened.key, name, type, data), Status::Success);
  }
  Exported Export(RegFileForm form = RegFileForm::Regedit4, unsigned codePage = CodePage::kDefault) {
    return Export(kIdentities, form, codePage);
  }
  Exported Export(const RegistryPath& path, RegFileForm form, unsigned codePage = CodePage::kDefault) {
    Exported exported;
    static_cast<ExportResult&>(exported) =
        ExportKey(registry, path, form, CodePage(codePage), [&](std::string_view bytes) {
          exported.bytes += bytes;
          ++exported.pieces;
        });
    return exported;
  }
  MergeReport Merge(std::string_view bytes) {
    TextSource source(bytes);
    return MergeFile(registry, source, "x.reg", CodePage());
  }

  HiveFile file;
};

TEST(RegeditExport, WritesKeysDepthFirstAndValuesAsStored) {
  System system;
  system.Set("b\\deep", "", ValueType::Sz, Stored(u"default"));
  system.Set("A", "z", ValueType::Dword, {1, 0, 0, 0});
  system.Set("A", "a", ValueType::ExpandSz, Stored(u"%A%\u00E9"));
  system.Set("C", "", ValueType::Binary, {});
  const Exported result = system.Export();
  EXPECT_EQ(result.bytes,
            "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Identities]\r\n\r\n"
            "[HKEY_CURRENT_USER\\Identities\\A]\r\n\"z\"=dword:00000001\r\n\"a\"=hex(2):25,41,25,e9,00\r\n\r\n"
            "[HKEY_CURRENT_USER\\Identities\\b]\r\n\r\n"
            "[HKEY_CURRENT_USER\\Identities\\b\\deep]\r\n@=\"default\"\r\n\r\n"
            "[HKEY_CURRENT_USER\\Identities\\C]\r\n@=hex:\r\n\r\n");
  EXPECT_EQ(result.keys, 5U);
  EXPECT_EQ(result.values, 4U);
  System copy;
  EXPECT_EQ(copy.Merge(result.bytes).valuesSet, 4U);
  EXPECT_EQ(copy.Export().bytes, result.bytes);
  EXPECT_THROW(system.Export(kIdentities.Child("D"), RegFileForm::Unicode5), Error);
  EXPECT_THROW(system.Export({RegistryRoot::Users, "x"}, RegFileForm::Unicode5), Error);
}

TEST(RegeditExport, TextThatEightBitsCannotHoldGetsTheUnicodeForm) {
  System system;
  system.Set("Key", "Username", ValueType::Sz, Stored(u"\u8868"));
  EXPECT_EQ(system.Export(RegFileForm::Regedit4, 932).form, RegFileForm::Regedit4);
  const Exported result = system.Export();
  EXPECT_EQ(result.form, RegFileForm::Unicode5);
  System copy;
  copy.Merge(result.bytes);
  EXPECT_EQ(copy.Export(RegFileForm::Unicode5).bytes, result.bytes);
  EXPECT_THAT(FormNotice(result, "u.reg"), HasSubstr("[HKEY_CURRENT_USER\\Identities\\Key] \"Username\""));
}

TEST(RegeditExport, LargeKeysAreWrittenInPiecesAndComeBack) {
  System system, copy;
  for (int i = 0; i < 8; ++i) system.Set("Key" + std::to_string(i), "b", ValueType::Binary, Bytes(100'000, 0xAB));
  const Exported result = system.Export();
  EXPECT_GT(result.pieces, 4U);
  EXPECT_EQ(copy.Merge(result.bytes).valuesSet, 8U);
  EXPECT_EQ(copy.Export().bytes, result.bytes);
}

TEST(RegeditMerge, CountsWhatItChangesAndTellsWhatItCannot) {
  System system;
  system.Set("Old\\Sub", "v", ValueType::Sz, Stored(u"x"));
  system.Set("Kept", "v", ValueType::Sz, Stored(u"x"));
  const MergeReport report = system.Merge(
      "REGEDIT4\r\n"
      "[-HKEY_CURRENT_USER\\Identities\\Old]\r\n"
      "[-HKEY_CURRENT_USER\\Identities\\Never]\r\n"
      "[hkey_current_user\\Identities\\Kept]\r\n"
      "\"V\"=-\r\n\"never\"=-\r\n\"new\"=dword:2\r\n"
      "[HKEY_CURRENT_USER\\Identities\\New\\Sub]\r\n"
      "@=\"y\"\r\nbroken\r\n"
      "[HKEY_USERS\\S-1]\r\n\"lost\"=\"x\"\r\n"
      "[HKEY_NOWHERE\\S-1]\r\n\"lost\"=\"x\"\r\n"
      "[-HKEY_CURRENT_USER]\r\n");
  EXPECT_EQ(MergeSummary(report, "x.reg"), "x.reg: 1 key added, 1 key deleted, 2 values set, 1 value deleted\n");
  EXPECT_THAT(ProblemLines(report, "x.reg"),
              testing::AllOf(StartsWith("x.reg, line 10: "), HasSubstr("x.reg, line 11: \"HKEY_USERS\\S-1\": "),
                             HasSubstr("x.reg, line 13: \"HKEY_NOWHERE\\S-1\" "), HasSubstr("x.reg, line 15: ")));
  EXPECT_EQ(report.problemCount, 4U);
  EXPECT_EQ(system.Export().bytes,
            "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Identities]\r\n\r\n"
            "[HKEY_CURRENT_USER\\Identities\\Kept]\r\n\"new\"=dword:00000002\r\n\r\n"
            "[HKEY_CURRENT_USER\\Identities\\New]\r\n\r\n"
            "[HKEY_CURRENT_USER\\Identities\\New\\Sub]\r\n@=\"y\"\r\n\r\n");
}

TEST(RegeditMerge, RegistryThatCannotBeWrittenIsToldLineByLine) {
  System system(HiveMode::Read);
  std::string file = "REGEDIT4\r\n";
  for (int i = 0; i < 300; ++i) file += "[HKEY_CURRENT_USER\\Identities\\" + std::to_string(i) + "]\r\n@=\"x\"\r\n";
  const MergeReport report = system.Merge(file);
  EXPECT_EQ(report.problemCount, 300U);
  EXPECT_THAT(ProblemLines(report, "x.reg"), HasSubstr("x.reg: and 100 more lines that could not be merged\n"));
  EXPECT_THROW(system.Merge("no registry file"), Error);
}

}  // namespace
}  // namespace quillbox
