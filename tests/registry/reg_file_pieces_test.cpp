// Registry files as they come from a disk: in pieces whose ends fall anywhere, and larger than anything that may be
// held in memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "registry/reg_file.h"
#include "text/error.h"

namespace quillbox {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;

/// Every call as one line, its line number first.
class Recorder : public RegFileVisitor {
 public:
  void OnKey(std::string_view fullName, std::size_t line) override { Add(line, "key ", fullName); }
  void OnDeleteKey(std::string_view fullName, std::size_t line) override { Add(line, "delete key ", fullName); }
  void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t line) override {
    std::string text = std::string(name) + "=" + std::to_string(type) + ":";
    if (type == 1) {
      text += ToUtf8(Utf16FromBytes(data.first(data.size() - 2)));
    } else {
      for (const std::uint8_t byte : data) text += std::to_string(byte) + " ";
    }
    Add(line, "value ", text);
  }
  void OnDeleteValue(std::string_view name, std::size_t line) override { Add(line, "delete value ", name); }
  void OnProblem(std::size_t line, std::string_view reason) override { Add(line, "! ", reason); }

  std::vector<std::string> said;

 private:
  void Add(std::size_t line, const char* what, std::string_view text) {
    said.push_back(std::to_string(line) + " " + what + std::string(text));
  }
};

std::vector<std::string> Read(std::string_view bytes, const RegFileLimits& limits,
                              const CodePage& codePage = CodePage()) {
  Recorder recorder;
  ReadRegFile(bytes, "test.reg", codePage, recorder, limits);
  return recorder.said;
}

RegFileLimits PiecesOf(std::size_t bytes) {
  RegFileLimits limits;
  limits.piece = bytes;
  return limits;
}

// The character U+8868 is three bytes in UTF-8, and in code page 932 it is 95 5C: its second byte is a backslash.
constexpr std::string_view kCharacter = "\xE8\xA1\xA8";

std::string FileWith(std::string_view character) {
  std::string file =
      "\r\n[HKEY_CURRENT_USER\\?\\a]b] ; comment\r\n"         // 2
      "\"?\"=\"C:\\\\?\\\"\\?\"\r"                            // 3
      " @ = hex:1,\\ ; why\n\n ; ?\r\n\t0a , ff \r\n"         // 4 to 7
      "\"two\"=\"one?\\\r\n?two\r\rthree\n\" ; end\r\n"       // 8 to 12
      "\"open\"=\"never? closed\r\n\"n\"=DWord:0000001f\r\n"  // 13, 14
      "\"bad\"=hex(b):00,\\\r\n  0g,\\\n  02\r\n"             // 15 to 17
      "\"cut\"=hex:01,\\\r\n\"?\"=-\r\n??nonsense\r\n"        // 18, 19, 20
      "[-HKEY_CURRENT_USER\\?]\r\n\"x\"=hex:zz\r\n"           // 21, 22
      "[HKEY_USERS]\r\n\"last\"=\"?\"";                       // 23, 24
  for (std::size_t at = 0; (at = file.find('?', at)) != file.npos; at += character.size()) {
    file.replace(at, 1, character);
  }
  return file;
}

std::vector<std::string> SaidByFile() {
  std::vector<std::string> said = {
      "2 key HKEY_CURRENT_USER\\?\\a]b",
      "3 value ?=1:C:\\?\"?",
      "4 value =3:1 10 255 ",
      "8 value two=1:one?\\\r\n?two\r\rthree\n",
      "13 ! a quote is not closed",
      "14 value n=4:31 0 0 0 ",
      "16 ! there is no comma between two bytes",
      "18 ! the data break off: the line that continues them is missing",
      "19 delete value ?",
      "20 ! this is no key, no value and no comment",
      "21 delete key HKEY_CURRENT_USER\\?",
      "23 key HKEY_USERS",
      "24 value last=1:?",
  };
  for (std::string& line : said) {
    for (std::size_t at = 0; (at = line.find('?', at)) != line.npos; ++at) line.replace(at, 1, kCharacter);
  }
  return said;
}

std::string Utf16File(std::string_view text) {
  const Bytes bytes = Utf16Bytes(ToUtf16(text));
  return "\xFF\xFE" + std::string(bytes.begin(), bytes.end());
}

TEST(RegFilePieces, EverySizeOfPieceSaysTheSame) {
  const std::string unicode = "Windows Registry Editor Version 5.00" + FileWith(kCharacter);
  const std::string files[] = {Utf16File(unicode), "\xEF\xBB\xBF" + unicode, "REGEDIT4" + FileWith("\x95\x5C")};
  const std::vector<std::string> expected = SaidByFile();
  const CodePage codePage(932);
  for (const std::string& file : files) {
    EXPECT_THAT(Read(file, {}, codePage), ElementsAreArray(expected));
    for (std::size_t piece = 1; piece <= 70; ++piece) {
      RegFileLimits limits = PiecesOf(piece);
      ASSERT_THAT(Read(file, limits, codePage), ElementsAreArray(expected)) << piece;
      limits.held = 2;  // so that every value is read twice
      ASSERT_THAT(Read(file, limits, codePage), ElementsAreArray(expected)) << piece;
    }
  }
}

// What is no character must come out alike wherever the pieces end, and a pair of surrogates must stay one.
TEST(RegFilePieces, BrokenAndLongCharactersStayWhatTheyAre) {
  const std::string utf8 =
      "\xEF\xBB\xBFREGEDIT4\n[HKCU]\n\"\xF0\x9F\x98\x80\"=\"a\x80\x80\x80\x80\x80\xE8\xA1z\\\xF0\x9F\x98\x80\"";
  Bytes wide = Utf16Bytes(u"\uFEFFREGEDIT4\n[HKCU]\n\"\U0001F600\"=\"\xD83D-\xDE00\\\U0001F600\"\r\n");
  wide.push_back('x');
  const std::string_view utf16(reinterpret_cast<const char*>(wide.data()), wide.size());
  const std::string replaced = "\xEF\xBF\xBD";
  for (std::size_t piece = 1; piece <= 70; ++piece) {
    EXPECT_THAT(Read(utf8, PiecesOf(piece)),
                ElementsAre("2 key HKCU", "3 value \xF0\x9F\x98\x80=1:a" + replaced + replaced + replaced + replaced +
                                              replaced + replaced + replaced + "z\xF0\x9F\x98\x80"))
        << piece;
    EXPECT_THAT(Read(utf16, PiecesOf(piece)),
                ElementsAre("2 key HKCU", "3 value \xF0\x9F\x98\x80=1:\xED\xA0\xBD-\xED\xB8\x80\xF0\x9F\x98\x80",
                            "3 ! the file ends in the middle of a character"))
        << piece;
  }
}

TEST(RegFileLimits, ValueThatNoHiveHoldsIsReportedAndLeftOut) {
  RegFileLimits limits = PiecesOf(5);
  limits.data = 8;
  limits.held = 4;
  const std::string reason = " bytes long, and no hive holds more than 8 in one value";
  EXPECT_THAT(Read("REGEDIT4\n[HKCU]\n\"fits\"=\"abc\"\n\"t\"=\"abcd\"\n"   // 3, 4
                   "\"lines\"=\"a\nbcdefg\n\"\n"                            // 5 to 7
                   "\"fits\"=hex:1,2,3,4,\\\n5,6,7,8\n"                     // 8, 9
                   "\"h\"=hex(7):1,2,3,4,\\\n5,6,7,8,9\n\"after\"=\"x\"\n"  // 10 to 12
                   "\"open\"=\"abcdefgh\nijk\n[HKCU\\B]\n",                 // 13, 14, 15
                   limits),
              ElementsAre("2 key HKCU", "3 value fits=1:abc", "4 ! the value's data are 10" + reason,
                          "5 ! the value's data are 20" + reason, "8 value fits=3:1 2 3 4 5 6 7 8 ",
                          "10 ! the value's data are 9" + reason, "12 value after=1:x", "13 ! a quote is not closed",
                          "14 ! this is no key, no value and no comment", "15 key HKCU\\B"));
}

TEST(RegFileLimits, NamesThatNothingCanHaveAreNotHeld) {
  const std::string shortName(16383, 'n');
  const std::string longName(3 * 16383 + 1, 'n');
  EXPECT_THAT(Read("REGEDIT4\n[HKCU]\n\"" + shortName + "\"=-\n\"" + longName + "\"=-\n[HKCU\\" +
                       std::string(1 << 20, 'k') + "]\n\"lost\"=\"x\"\n[HKCU\\B]\n",
                   PiecesOf(1000)),
              ElementsAre("2 key HKCU", "3 delete value " + shortName,
                          "4 ! the value's name has more than 16383 characters, and no hive holds such a name",
                          "5 ! the key's name is longer than any key's; its values are left out", "7 key HKCU\\B"));
}

/// A file that grows while it is read: nobody knows its size, and it never ends.
class EndlessSource : public ByteSource {
 public:
  std::optional<std::uint64_t> Size() const override { return std::nullopt; }
  std::size_t Read(std::span<char> buffer) override {
    for (char& c : buffer) c = at_++ < 9 ? "REGEDIT4\n"[at_ - 1] : ';';
    return buffer.size();
  }
  void GoBackTo(std::uint64_t offset) override { at_ = offset; }

 private:
  std::uint64_t at_ = 0;
};

TEST(RegFileLimits, FileThatIsTooLargeIsRefused) {
  RegFileLimits limits;
  limits.file = 1000;
  const auto reason = [&](ByteSource& source) -> std::string {
    Recorder recorder;
    try {
      ReadRegFile(source, "test.reg", CodePage(), recorder, limits);
    } catch (const Error& error) {
      return Describe(error);
    }
    return "it was read";
  };
  const std::string file = "REGEDIT4\n" + std::string(1000 - 9, ';');
  TextSource fits(file);
  EXPECT_EQ(reason(fits), "it was read");
  const std::string larger = file + ";";
  TextSource known(larger);
  EXPECT_THAT(reason(known), HasSubstr("test.reg: it is larger than 1000 bytes"));
  EndlessSource endless;
  EXPECT_THAT(reason(endless), HasSubstr("test.reg: it is larger than 1000 bytes"));
}

}  // namespace
}  // namespace quillbox
