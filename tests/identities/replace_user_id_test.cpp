#include "identities/replace_user_id.h"

#include "identities/replace_string.h"
#include "platform/offline/offline_files.h"
#include "platform/offline/system_services.h"
#include "support/sample_ids.h"
#include "support/temp_folder.h"
#include "text/error.h"

namespace quillbox {
namespace {

const std::string kOld = kMain, kOther = kOffice, kNew = kGuest;
const std::string kOldLower = "{2b7c0e64-91d3-4f5a-8c17-6e0d53a9f421}";

std::string Utf16(const std::string& text) {
  const Bytes bytes = Utf16Bytes(ToUtf16(text));
  return "\xFF\xFE" + std::string(bytes.begin(), bytes.end());
}

class ReplaceUserIdTest : public ::testing::Test {
 protected:
  std::string Replaced(const std::string& content, const std::string& userId = kNew) {
    temp.File("in.reg", content);
    ReplaceUserId(files, facts, {WinPath("C:\\in.reg"), WinPath("C:\\out.reg"), userId});
    return temp.Read("out.reg");
  }

  TempFolder temp;
  OfflineDrives drives{DriveMap{temp.Path()}};
  OfflineFiles files{drives};
  RegistryFacts facts;
};

TEST(ReplaceString, GoesOnAfterWhatWasPutIn) {
  EXPECT_EQ(ReplaceString("an AN An n", {"an", "<an>"}, Case::Ignore), "<an> <an> <an> n");
  EXPECT_EQ(ReplaceString("an AN", {"an", ""}, Case::Match), " AN");
  EXPECT_EQ(ReplaceString("aaa", {"aa", "a"}, Case::Match), "aa");
  EXPECT_EQ(ReplaceString("\xC3\xA4x", {"", "y"}, Case::Ignore), "\xC3\xA4x");
}

TEST_F(ReplaceUserIdTest, ReplacesTheFirstUserIdInBothForms) {
  const auto text = [](const std::string& id, const std::string& mixedLine) {
    return "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Identities\\" + id + "]\r\n\"User ID\"=\"" + id + "\"\r\n\"Pair\"=\"" +
           mixedLine + "\"\r\n\"lower\"=\"" + kOldLower + "\"\r\n\"other\"=\"" + kOther + "\"\r\n";
  };
  const std::string before = text(kOld, kOld + "ü" + kOldLower);
  const std::string after = text(kNew, kNew + "ü" + kNew);
  EXPECT_EQ(Replaced(before), after);
  EXPECT_EQ(Replaced(Utf16(before)), Utf16(after));
  EXPECT_EQ(FindOldUserId(files, facts, WinPath("C:\\in.reg")), kOld);
  // Where a {USER_ID}'s bytes stand between two characters it is another text.
  const std::string shifted = Utf16("{" + kOld.substr(1) + "\r\n") + "x" + Utf16(kOld).substr(2) + "y";
  EXPECT_EQ(Replaced(shifted), Utf16(kNew + "\r\n") + shifted.substr(2 + 40 * 2) + std::string("\r\0\n\0", 4));
}

TEST_F(ReplaceUserIdTest, WritesTheSystemsLineEnds) {
  EXPECT_EQ(Replaced("a\r" + kOld + "\rb\n\n" + kOld + "\r\nc"), "a\r\n" + kNew + "\r\nb\r\n\r\n" + kNew + "\r\nc\r\n");
  EXPECT_EQ(Replaced(Utf16(kOld + "\nb") + "x"), Utf16(kNew + "\r\nb\r\n") + "x");
}

TEST_F(ReplaceUserIdTest, AFileWithoutAUserIdIsCopiedAsItIs) {
  for (const std::string& content :
       {std::string(), std::string("\xFF\xFE"), std::string("\xFF"), std::string("no brace\rat all\n\n"),
        Utf16("none\n") + "x", "the line ends too soon {8F41D3\r\n" + kOld, std::string("\0\x7B\n\xFF", 4)}) {
    EXPECT_EQ(Replaced(content), content);
  }
  // In code page 932 "{" is the second byte of some characters.
  facts = RegistryFacts({}, 932);
  EXPECT_EQ(Replaced("\x83\x7B\r\n" + kOld + "\r\n"), "\x83\x7B\r\n" + kNew + "\r\n");
}

TEST_F(ReplaceUserIdTest, PiecesAndLongLinesHideNoUserId) {
  // A piece, and the longest line.
  for (const auto& [length, end] : {std::pair(std::size_t{1} << 18, "\r\n"), {kMaxLineBytes, ""}}) {
    for (const std::size_t before : {0, 1, 2, 3, 20, 37, 38, 39, 40, 41, 42}) {
      const std::string start = kOld + "\r\n" + std::string(length - before - 40, 'x') + end;
      ASSERT_EQ(Replaced(start + kOld + "tail\r\n"), kNew + start.substr(38) + kNew + "tail\r\n") << before;
    }
  }
  const std::string wide(kMaxLineBytes / 2 - 60, 'x');
  ASSERT_EQ(Replaced(Utf16(kOld + wide + kOld + "\r\n")), Utf16(kNew + wide + kNew + "\r\n"));
}

TEST_F(ReplaceUserIdTest, NothingIsWrittenThatTheFileCannotHold) {
  temp.File("out.reg", "earlier");
  EXPECT_THROW(Replaced(kOld, "{Ж}"), Error);
  EXPECT_EQ(temp.Read("out.reg"), "earlier");
  EXPECT_EQ(Replaced(Utf16(kOld + "\r\n"), "{Ж}"), Utf16("{Ж}\r\n"));
  EXPECT_EQ(Replaced(kOld, "{ä}"), "{\xE4}\r\n");
  EXPECT_THROW(ReplaceUserId(files, facts, {WinPath("C:\\none.reg"), WinPath("C:\\out.reg"), kNew}), Error);
  EXPECT_EQ(ReplacedFile(WinPath("C:\\Bk"), WinPath("D:\\x\\a.b.reg")).Text(), "C:\\Bk\\Newa.reg");
}

}  // namespace
}  // namespace quillbox
