// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/reg_file.h"

#include "registry/reg_file_recorder.h"
#include "support/golden_text.h"
#include "support/matchers.h"

namespace quillbox {
namespace {

Bytes Stored(std::u16string text) {
  return Utf16Bytes(text += u'\0');
}

std::string Narrow(const std::string& file) {
  EXPECT_EQ(file.substr(0, 2), "\xFF\xFE");
  const ByteView bytes(reinterpret_cast<const std::uint8_t*>(file.data()) + 2, file.size() - 2);
  return ToUtf8(Utf16FromBytes(bytes));
}

RegFileRecorder ReadOnce(std::string_view bytes, unsigned codePage = 1252, const RegFileLimits& limits = {}) {
  RegFileRecorder recorder;
  ReadRegFile(bytes, "test.reg", CodePage(codePage), recorder, limits);
  return recorder;
}

/// Reads a file whole. In pieces of any size, and with every value read twice, it must say the same.
RegFileRecorder Read(std::string_view bytes, unsigned codePage = 1252, RegFileLimits limits = {}) {
  const RegFileRecorder whole = ReadOnce(bytes, codePage, limits);
  for (limits.piece = 1; limits.piece <= 70 && bytes.size() < 2000; ++limits.piece) {
    for (const std::uint64_t held : {RegFileLimits().held, std::uint64_t{2}}) {
      limits.held = held;
      const RegFileRecorder inPieces = ReadOnce(bytes, codePage, limits);
      EXPECT_EQ(inPieces.said, whole.said) << "pieces of " << limits.piece;
      EXPECT_EQ(inPieces.lines, whole.lines) << "pieces of " << limits.piece;
    }
  }
  return whole;
}

std::string Utf16File(std::u16string_view text) {
  const Bytes bytes = Utf16Bytes(u"\uFEFF" + std::u16string(text));
  return {bytes.begin(), bytes.end()};
}

/// What lines below a header say, in each encoding.
RegFileRecorder ReadLines(const std::string& lines) {
  const std::string file = "Windows Registry Editor Version 5.00\r\n" + lines;
  EXPECT_EQ(Read(Utf16File(ToUtf16(file))).said, Read(file).said);
  EXPECT_EQ(Read("\xEF\xBB\xBF" + file).said, Read(file).said);
  return Read(file);
}

/// A golden text with the ends of lines that registry files have.
std::string Lines(const std::string& name) {
  std::string lines;
  for (const std::string& line : GoldenTexts("registry/" + name)) lines += line + "\r\n";
  return lines;
}

void WriteOneOfEach(RegFileWriter& writer) {
  writer.Key("HKEY_CURRENT_USER\\A");
  writer.Value("", 1, Stored(u"C:\\say \"hi\""));
  writer.Value("q\"\\", 1, Utf16Bytes({u"cut\0off\0", 8}));
  writer.Value("number", 4, Bytes{0x78, 0x56, 0x34, 0x12});
  writer.Value("short", 4, Bytes{0xAB});
  writer.Key("HKEY_CURRENT_USER\\A\\B");
  writer.Value("path", 2, Stored(u"%ProgramFiles%\\Mail"));
  writer.Value("list", 7, Utf16Bytes({u"a\0b\0\0", 5}));
  writer.Value("none", 0, {});
  writer.Value("wide", 11, Bytes(27, 0xFF));
}

TEST(RegFileWriter, UnicodeFormIsExact) {
  RegFileWriter writer(RegFileForm::Unicode5, CodePage());
  WriteOneOfEach(writer);
  EXPECT_EQ(Narrow(writer.Finish()), Lines("one_of_each.reg"));
}

TEST(RegFileWriter, EightBitFormIsExact) {
  RegFileWriter writer(RegFileForm::Regedit4, CodePage(932));
  writer.Key("HKEY_CURRENT_USER\\\xE8\xA1\xA8");  // its second byte in this code page is a backslash
  writer.Value("\xE8\xA1\xA8", 1, Stored(u"\u8868"));
  writer.Value("", 2, Stored(u"%A%\\\u8868"));
  EXPECT_TRUE(writer.HoldsEverything());
  const std::string file = writer.Finish();
  EXPECT_EQ(file,
            "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\\x95\x5C]\r\n\"\x95\x5C\"=\"\x95\x5C\"\r\n"
            "@=hex(2):25,41,25,5c,95,5c,00\r\n\r\n");
  EXPECT_THAT(Read(file, 932).said, ElementsAre("+ HKEY_CURRENT_USER\\\xE8\xA1\xA8", "\xE8\xA1\xA8 1 \xE8\xA1\xA8|",
                                                " 2 %A%\\\xE8\xA1\xA8|"));
}

TEST(RegFileWriter, LinesBreakAtTheCommaThatReachesTheColumn) {
  for (std::size_t length = 1; length < 90; ++length) {
    RegFileWriter writer(RegFileForm::Unicode5, CodePage());
    writer.Value(ToUtf8(std::u16string(length, u'\u00E9')), 3, Bytes(80, 1));
    const std::u16string text = ToUtf16(Narrow(writer.Finish()));
    const std::size_t start = text.find(u'"'), first = text.find(u'\\'), second = text.find(u'\\', first + 1);
    const std::size_t prefix = length + 7;
    EXPECT_EQ(first - start, prefix + std::max<std::size_t>(3, prefix < 77 ? (77 - prefix + 2) / 3 * 3 : 0));
    EXPECT_EQ(second - first, 3U + 77);
  }
}

TEST(RegFileWriter, NamesTheFirstTextThatEightBitsCannotHold) {
  for (const Bytes& lost : {Stored(u"\u8868"), Bytes{'a', 0, 'b'}}) {
    RegFileWriter writer(RegFileForm::Regedit4, CodePage(1252));
    writer.Key("HKEY_CURRENT_USER\\A");
    writer.Value("fine", 1, Stored(u"\u20AC"));
    EXPECT_TRUE(writer.HoldsEverything());
    writer.Value("list", 7, lost);
    writer.Value("later", 1, Stored(u"\u8868"));
    EXPECT_EQ(writer.FirstLoss(), "[HKEY_CURRENT_USER\\A] \"list\"");
  }
}

TEST(RegFileReader, TakesWhatPeopleAndOtherEditorsWrite) {
  const RegFileRecorder recorder = ReadLines(
      "; alone\n  [hkey_current_user\\a[1]]\r\n"
      "\"n\"\t = DWORD:1f ; after data\r"
      "@=\"\"\n\"\"=\"again\"\r\n"
      "\"h\"=hex(7):61,0,\\ ; why\r\n  ; between\r\n\r\n\t00,00,62,\\\r\n 00\r\n"
      "\"odd\"=hex(2):41\r\n\"empty\"=hex(2):\r\n\"x\"=hex(A):FF , 1\n"
      "\"gone\"=-\r\n\"raw\"=\"one\r\ntwo\n\"\n"
      "[-HKEY_CURRENT_USER\\B]\r\n\"never\"=\"seen\"\r\n\"x\"=hex:zz\r\n"
      "[HKEY_CURRENT_USER\\C]\n\"last\"=dword:0000000a");
  EXPECT_THAT(recorder.said, ElementsAre("+ hkey_current_user\\a[1]", "n 4 31 0 0 0", " 1 |", " 1 again|", "h 7 a|b|",
                                         "odd 2 ", "empty 2 ", "x 10 255 1", "delete gone", "raw 1 one\r\ntwo\n|",
                                         "- HKEY_CURRENT_USER\\B", "+ HKEY_CURRENT_USER\\C", "last 4 10 0 0 0"));
  EXPECT_THAT(recorder.lines, ElementsAre(3, 4, 5, 6, 7, 12, 13, 14, 15, 16, 19, 22, 23));
}

TEST(RegFileReader, MarkDecidesTheEncodingAndHeaderTheHexText) {
  for (const std::string& file :
       {std::string("REGEDIT4\r\n[HKCU\\\xE9]\r\n@=hex(2):e9\r\n"),
        std::string("Windows Registry Editor Version 5.00\r\n[HKCU\\\xE9]\r\n@=hex(2):e9,00\r\n"),
        std::string("\xEF\xBB\xBFWindows Registry Editor Version 5.00\n[HKCU\\\xC3\xA9]\n@=hex(2):e9,00\n"),
        Utf16File(u"REGEDIT4\r[HKCU\\\u00E9]\r\r@=hex(2):e9\r\u001A")}) {
    EXPECT_THAT(Read(file).said, ElementsAre("+ HKCU\\\xC3\xA9", " 2 \xC3\xA9|")) << file;
  }
  for (const char* wrong : {"", "regedit4\r\n", "\r\nREGEDIT4\r\n", "REGEDIT5\r\n", "\xFF\xFE"}) {
    EXPECT_THROW(Read(wrong), Error) << wrong;
  }
}

TEST(RegFileReader, ReportsMalformedLinesAndReadsOn) {
  const RegFileRecorder recorder = Read(Lines("malformed.reg"));
  EXPECT_THAT(recorder.said,
              ElementsAre("! 2", "+ HKEY_CURRENT_USER\\A", "! 4", "after 1 kept|", "! 6", "! 7", "! 8", "! 9", "! 10",
                          "! 11", "! 13", "! 15", "! 16", "kept 4 1 0 0 0", "! 18", "multi 1 a\r\nb|", "m 3 1 2",
                          "! 23", "! 24", "+ HKEY_CURRENT_USER\\C", "! 27"));
}

TEST(RegFileReader, CutOffAnywhereGivesNoKeyOrTextThatWasNotWritten) {
  for (const RegFileForm form : {RegFileForm::Regedit4, RegFileForm::Unicode5}) {
    RegFileWriter writer(form, CodePage());
    WriteOneOfEach(writer);
    const std::string file = writer.Finish();
    const std::vector<std::string> whole = ReadOnce(file).said;
    for (std::size_t length = form == RegFileForm::Regedit4 ? 8 : 74; length < file.size(); ++length) {
      for (const std::string& said : ReadOnce(file.substr(0, length)).said) {
        const bool isText = said.ends_with("|") && said.find(" 1 ") != std::string::npos;
        const bool isWritten = std::count(whole.begin(), whole.end(), said) == 1;
        EXPECT_TRUE(isWritten || !(isText || said.starts_with("+ "))) << length << ": " << said;
      }
    }
  }
}

// Each line opens a quote that no line closes; looking for its end must not cost the whole file each time.
TEST(RegFileReader, LookingAheadInVainStaysLinear) {
  std::string file = "REGEDIT4\n[HKEY_CURRENT_USER\\A]\n";
  for (int i = 0; i < 50000; ++i) file += "\"a\n@=\"b\\\n  \\\"c\n";
  EXPECT_GT(Read(file).said.size(), 50000U);
}

// What is not a character must come out alike wherever the pieces end, and a pair of surrogates must stay one.
TEST(RegFileReader, BrokenAndLongCharactersStayWhatTheyAre) {
  const std::string utf8 =
      "\xEF\xBB\xBFREGEDIT4\n[HKCU]\n\"\xF0\x9F\x98\x80\"=\"a\x80\x80\x80\x80\x80\xE8\xA1z\\\xF0\x9F\x98\x80\"";
  Bytes wide = Utf16Bytes(u"\uFEFFREGEDIT4\n[HKCU]\n\"\U0001F600\"=\"\xD83D-\xDE00\\\U0001F600\"\r\n");
  wide.push_back('x');
  const std::string_view utf16(reinterpret_cast<const char*>(wide.data()), wide.size());
  const std::string replaced = "\xEF\xBF\xBD";
  EXPECT_THAT(Read(utf8).said,
              ElementsAre("+ HKCU", "\xF0\x9F\x98\x80 1 a" + replaced + replaced + replaced + replaced + replaced +
                                        replaced + replaced + "z\xF0\x9F\x98\x80|"));
  const RegFileRecorder recorder = Read(utf16);
  EXPECT_THAT(recorder.said,
              ElementsAre("+ HKCU", "\xF0\x9F\x98\x80 1 \xED\xA0\xBD-\xED\xB8\x80\xF0\x9F\x98\x80|", "! 3"));
  EXPECT_THAT(recorder.problems, ElementsAre("3 the file ends in the middle of a character"));
}

TEST(RegFileLimits, ValueThatNoHiveHoldsIsReportedAndLeftOut) {
  RegFileLimits limits;
  limits.data = 8;
  const std::string reason = " bytes long, and no hive holds more than 8 in one value";
  const RegFileRecorder recorder = Read(
      "REGEDIT4\n[HKCU]\n\"fits\"=\"abc\"\n\"t\"=\"abcd\"\n"   // 3, 4
      "\"lines\"=\"a\nbcdefg\n\"\n"                            // 5 to 7
      "\"fits\"=hex:1,2,3,4,\\\n5,6,7,8\n"                     // 8, 9
      "\"h\"=hex(7):1,2,3,4,\\\n5,6,7,8,9\n\"after\"=\"x\"\n"  // 10 to 12
      "\"open\"=\"abcdefgh\nijk\n[HKCU\\B]\n",                 // 13, 14, 15
      1252, limits);
  EXPECT_THAT(recorder.said, ElementsAre("+ HKCU", "fits 1 abc|", "! 4", "! 5", "fits 3 1 2 3 4 5 6 7 8", "! 10",
                                         "after 1 x|", "! 13", "! 14", "+ HKCU\\B"));
  EXPECT_THAT(recorder.problems, ElementsAre("4 the value's data are 10" + reason, "5 the value's data are 20" + reason,
                                             "10 the value's data are 9" + reason, "13 a quote is not closed",
                                             "14 this is neither a key nor a value nor a comment"));
}

TEST(RegFileLimits, NamesThatNothingCanHaveAreNotHeld) {
  const std::string shortName(16383, 'n');
  const std::string longName(3 * 16383 + 1, 'n');
  RegFileLimits limits;
  limits.piece = 1000;
  const RegFileRecorder recorder = Read("REGEDIT4\n[HKCU]\n\"" + shortName + "\"=-\n\"" + longName + "\"=-\n[HKCU\\" +
                                            std::string(1 << 20, 'k') + "]\n\"lost\"=\"x\"\n[HKCU\\B]\n",
                                        1252, limits);
  EXPECT_THAT(recorder.said, ElementsAre("+ HKCU", "delete " + shortName, "! 4", "! 5", "+ HKCU\\B"));
  EXPECT_THAT(recorder.problems,
              ElementsAre("4 the value's name has more than 16383 characters, and no hive holds such a name",
                          "5 the key's name is longer than any key's; its values are left out"));
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
  EXPECT_TRUE(ReadOnce("REGEDIT4\n" + std::string(1000 - 9, ';'), 1252, limits).said.empty());
  EXPECT_THROW(ReadOnce("REGEDIT4\n" + std::string(1001 - 9, ';'), 1252, limits), Error);
  RegFileRecorder recorder;
  EndlessSource endless;
  EXPECT_THROW(ReadRegFile(endless, "test.reg", CodePage(), recorder, limits), Error);
}

}  // namespace
}  // namespace quillbox
