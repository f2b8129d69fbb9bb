#include "registry/reg_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "text/error.h"

namespace quillbox {
namespace {

using testing::ElementsAre;

Bytes Stored(std::u16string text) {
  return Utf16Bytes(text += u'\0');
}

std::string Narrow(const std::string& file) {
  EXPECT_EQ(file.substr(0, 2), "\xFF\xFE");
  const ByteView bytes(reinterpret_cast<const std::uint8_t*>(file.data()) + 2, file.size() - 2);
  return ToUtf8(Utf16FromBytes(bytes));
}

/// Every call as one line: `+ key`, `- key`, `name type data`, `! line reason`.
class Recorder : public RegFileVisitor {
 public:
  void OnKey(std::string_view fullName, std::size_t) override { Add("+ " + std::string(fullName)); }
  void OnDeleteKey(std::string_view fullName, std::size_t) override { Add("- " + std::string(fullName)); }
  void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t) override {
    std::string text = std::string(name) + " " + std::to_string(type);
    if (type == 1 || type == 2 || type == 7) {
      text += " ";
      for (const char16_t unit : Utf16FromBytes(data)) unit == 0 ? text += "|" : text += ToUtf8({&unit, 1});
    } else {
      for (const std::uint8_t byte : data) text += " " + std::to_string(byte);
    }
    Add(text);
    values[std::string(name)] = {type, Bytes(data.begin(), data.end())};
  }
  void OnDeleteValue(std::string_view name, std::size_t) override { Add("delete " + std::string(name)); }
  void OnProblem(std::size_t line, std::string_view) override { Add("! " + std::to_string(line)); }

  std::vector<std::string> said;
  std::map<std::string, std::pair<std::uint32_t, Bytes>> values;

 private:
  void Add(std::string text) { said.push_back(std::move(text)); }
};

Recorder Read(std::string_view bytes, unsigned codePage = 1252) {
  Recorder recorder;
  ReadRegFile(bytes, "test.reg", CodePage(codePage), recorder);
  return recorder;
}

std::vector<std::string> Said(const std::string& lines) {
  return Read("Windows Registry Editor Version 5.00\r\n" + lines).said;
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
  EXPECT_EQ(Narrow(writer.Finish()),
            "Windows Registry Editor Version 5.00\r\n\r\n"
            "[HKEY_CURRENT_USER\\A]\r\n"
            "@=\"C:\\\\say \\\"hi\\\"\"\r\n"
            "\"q\\\"\\\\\"=\"cut\"\r\n"
            "\"number\"=dword:12345678\r\n"
            "\"short\"=hex(4):ab\r\n\r\n"
            "[HKEY_CURRENT_USER\\A\\B]\r\n"
            "\"path\"=hex(2):25,00,50,00,72,00,6f,00,67,00,72,00,61,00,6d,00,46,00,69,00,6c,\\\r\n"
            "  00,65,00,73,00,25,00,5c,00,4d,00,61,00,69,00,6c,00,00,00\r\n"
            "\"list\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
            "\"none\"=hex(0):\r\n"
            "\"wide\"=hex(b):ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,\\\r\n"
            "  ff,ff,ff,ff,ff,ff\r\n\r\n");
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
  RegFileWriter writer(RegFileForm::Regedit4, CodePage(1252));
  writer.Key("HKEY_CURRENT_USER\\A");
  writer.Value("fine", 1, Stored(u"\u20AC"));
  EXPECT_TRUE(writer.HoldsEverything());
  writer.Value("list", 7, Stored(u"\u8868"));
  writer.Value("later", 1, Stored(u"\u8868"));
  EXPECT_FALSE(writer.HoldsEverything());
  EXPECT_EQ(writer.FirstLoss(), "[HKEY_CURRENT_USER\\A] \"list\"");
  RegFileWriter odd(RegFileForm::Regedit4, CodePage(1252));
  odd.Key("HKEY_CURRENT_USER\\A");
  odd.Value("x", 2, Bytes{'a', 0, 'b'});
  EXPECT_FALSE(odd.HoldsEverything());
}

TEST(RegFileReader, BothFormsReadBackWhatWasWritten) {
  std::mt19937 random(7);
  const std::u16string alphabet = u"aZ09 \\\"=;[]@,\r\n\t\u00E9\u20AC";
  for (const RegFileForm form : {RegFileForm::Regedit4, RegFileForm::Unicode5}) {
    RegFileWriter writer(form, CodePage());
    std::map<std::string, std::pair<std::uint32_t, Bytes>> expected;
    for (int i = 0; i < 3000; ++i) {
      if (i % 100 == 0) writer.Key("HKEY_CURRENT_USER\\K" + std::to_string(i));
      std::u16string name = ToUtf16(std::to_string(i)), text;
      for (auto n = random() % 8; n > 0; --n) name += alphabet[random() % alphabet.size()];
      for (auto n = random() % 60; n > 0; --n) text += alphabet[random() % alphabet.size()];
      const auto type = static_cast<std::uint32_t>(random() % 13);
      Bytes data = Stored(text);
      if (type == 0 || (type > 2 && type != 7)) data.resize(random() % data.size());
      writer.Value(ToUtf8(name), type, data);
      expected[ToUtf8(name)] = {type, data};
    }
    ASSERT_TRUE(writer.HoldsEverything());
    EXPECT_EQ(Read(writer.Finish()).values, expected);
  }
}

TEST(RegFileReader, TakesWhatPeopleAndOtherEditorsWrite) {
  EXPECT_THAT(Said("; alone\n  [hkey_current_user\\a[1]]\r\n"
                   "\"n\"\t = DWORD:1f ; after data\r"
                   "@=\"\"\n\"\"=\"again\"\r\n"
                   "\"h\"=hex(7):61,0,\\ ; why\r\n  ; between\r\n\r\n\t00,00,62,\\\r\n 00\r\n"
                   "\"odd\"=hex(2):41\r\n\"empty\"=hex(2):\r\n\"x\"=hex(A):FF , 1\n"
                   "\"gone\"=-\r\n\"raw\"=\"one\r\ntwo\n\"\n"
                   "[-HKEY_CURRENT_USER\\B]\r\n\"never\"=\"seen\"\r\n"
                   "[HKEY_CURRENT_USER\\C]\n\"last\"=dword:0000000a"),
              ElementsAre("+ hkey_current_user\\a[1]", "n 4 31 0 0 0", " 1 |", " 1 again|", "h 7 a|b|", "odd 2 ",
                          "empty 2 ", "x 10 255 1", "delete gone", "raw 1 one\r\ntwo\n|", "- HKEY_CURRENT_USER\\B",
                          "+ HKEY_CURRENT_USER\\C", "last 4 10 0 0 0"));
}

TEST(RegFileReader, MarkDecidesTheEncodingAndHeaderTheHexText) {
  const std::string ansi = "[HKEY_CURRENT_USER\\\xE9]\r\n@=hex(2):e9\r\n";
  EXPECT_THAT(Read("REGEDIT4\r\n" + ansi).said, ElementsAre("+ HKEY_CURRENT_USER\\\xC3\xA9", " 2 \xC3\xA9|"));
  EXPECT_THAT(Said("[HKEY_CURRENT_USER\\\xE9]\r\n@=hex(2):e9,00\r\n"),
              ElementsAre("+ HKEY_CURRENT_USER\\\xC3\xA9", " 2 \xC3\xA9|"));
  EXPECT_THAT(Read("\xEF\xBB\xBFWindows Registry Editor Version 5.00\n[HKCU\\\xC3\xA9]\n").said,
              ElementsAre("+ HKCU\\\xC3\xA9"));
  const Bytes wide = Utf16Bytes(u"\uFEFFREGEDIT4\r[HKCU\\\u00E9]\r\r@=hex(2):e9\r\u001A");
  EXPECT_THAT(Read({reinterpret_cast<const char*>(wide.data()), wide.size()}).said,
              ElementsAre("+ HKCU\\\xC3\xA9", " 2 \xC3\xA9|"));
  for (const char* wrong : {"", "regedit4\r\n", "\r\nREGEDIT4\r\n", "REGEDIT5\r\n", "\xFF\xFE"}) {
    EXPECT_THROW(Read(wrong), Error) << wrong;
  }
}

TEST(RegFileReader, ReportsMalformedLinesAndReadsOn) {
  const Recorder recorder = Read(
      "REGEDIT4\r\n\"early\"=\"x\"\r\n[HKEY_CURRENT_USER\\A]\r\n"   // 2 before any key
      "\"open\"=\"never closed\r\n\"after\"=\"kept\"\r\n"           // 4
      "nonsense\r\n\"no equals\"\r\n\"kind\"=qword:1\r\n"           // 6, 7, 8
      "\"d\"=dword:123456789\r\n\"d\"=dword:\r\n\"t\"=\"x\"y\r\n"   // 9, 10, 11
      "\"h\"=hex:01,02,\\\r\n  0g,\\\r\n  04\r\n\"h\"=hex:123\r\n"  // 13, 15
      "\"h\"=hex:01,\\\r\n\"kept\"=dword:1\r\n\"h\"=hex:01,\r\n"    // 16, 18
      "\"multi\"=\"a\r\nb\"\r\n\"m\"=hex:1,\\\r\n2\r\n?\r\n"        // 23
      "[HKEY_CURRENT_USER\\B\r\n\"lost\"=\"with its key\"\r\n"      // 24
      "[HKEY_CURRENT_USER\\C]\r\n\"cut\"=hex:01,\\\r\n");           // 27
  EXPECT_THAT(recorder.said,
              ElementsAre("! 2", "+ HKEY_CURRENT_USER\\A", "! 4", "after 1 kept|", "! 6", "! 7", "! 8", "! 9", "! 10",
                          "! 11", "! 13", "! 15", "! 16", "kept 4 1 0 0 0", "! 18", "multi 1 a\r\nb|", "m 3 1 2",
                          "! 23", "! 24", "+ HKEY_CURRENT_USER\\C", "! 27"));
}

TEST(RegFileReader, CutOffAnywhereGivesNoValueThatWasNotWritten) {
  for (const RegFileForm form : {RegFileForm::Regedit4, RegFileForm::Unicode5}) {
    RegFileWriter writer(form, CodePage());
    WriteOneOfEach(writer);
    const std::string file = writer.Finish();
    const auto whole = Read(file).values;
    const std::size_t header = form == RegFileForm::Regedit4 ? 8 : 74;
    for (std::size_t length = header; length < file.size(); ++length) {
      for (const auto& [name, value] : Read(file.substr(0, length)).values) {
        ASSERT_EQ(whole.count(name), 1U) << length;
        EXPECT_TRUE(value.first != 1 || value == whole.at(name)) << length;
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

}  // namespace
}  // namespace quillbox
