// SPDX-License-Identifier: GPL-3.0-or-later
// What texts, paths and names become on their way in and out of the program.
#include "support/matchers.h"
#include "text/code_page.h"
#include "text/error.h"
#include "text/message_text.h"
#include "text/registry_path.h"
#include "text/unicode.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

TEST(Unicode, EveryUnitSurvivesTheWayInAndOut) {
  std::u16string units;
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    units += static_cast<char16_t>(unit);
    units += u'x';  // keeps the halves of surrogate pairs apart
  }
  units += u"\xD83D\xDE00\xD83D";
  const std::string text = ToUtf8(units);
  EXPECT_TRUE(IsInnerText(text));
  EXPECT_EQ(ToUtf16(text), units);
  EXPECT_EQ(Utf16FromBytes(Utf16Bytes(units)), units);
  EXPECT_EQ(ToUtf8(u"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
}

TEST(Unicode, BytesThatAreNoTextBecomeReplacementsOneByOne) {
  const std::pair<std::string_view, std::u16string_view> cases[] = {
      {"a\xFF\x80z", u"a\xFFFD\xFFFDz"},
      {"\xE2\x82", u"\xFFFD\xFFFD"},                      // cut off
      {"\xC0\xAF", u"\xFFFD\xFFFD"},                      // longer than need be
      {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},  // beyond the last code point
      {"\xE2\x28\xA1", u"\xFFFD(\xFFFD"},
  };
  for (const auto& [bytes, units] : cases) {
    EXPECT_EQ(ToUtf16(bytes), units);
    EXPECT_FALSE(IsInnerText(bytes));
  }
  EXPECT_FALSE(IsInnerText("\xED\xA0\xBD\xED\xB8\x80")) << "a pair in two halves";
}

TEST(Unicode, UpperCaseFollowsWindows) {
  constexpr std::pair<char16_t, char16_t> cases[] = {
      {u'z', u'Z'},     {0x00E4, 0x00C4},                    // ä
      {0x00FF, 0x0178},                                      // ÿ
      {0x03C2, 0x03A3},                                      // final sigma
      {0x0451, 0x0401}, {0x1F80, 0x1F88}, {0x00DF, 0x00DF},  // ß stays
      {0x0131, 0x0131},                                      // the dotless i is no Turkish affair here
      {0x00B5, 0x00B5},                                      // the micro sign is no letter mu
      {0x01C5, 0x01C5},                                      // title case stays
      {0x00F7, 0x00F7}, {0x0250, 0x0250},                    // got its capital only later
      {0x0102, 0x0102},
  };
  for (const auto& [lower, upper] : cases) EXPECT_EQ(UpperCase(lower), upper) << std::hex << unsigned{lower};
}

TEST(Unicode, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(EqualIgnoreCase("B\xC3\xBCro", "b\xC3\x9CRO"));
  EXPECT_FALSE(EqualIgnoreCase("Inbox", "Inbox2"));
  EXPECT_TRUE(StartsWithIgnoreCase("Identities\\x", "identities"));
  EXPECT_FALSE(StartsWithIgnoreCase("Ident", "identities"));
  EXPECT_LT(CompareIgnoreCase(u"a", u"_"), 0) << "letters are compared as capitals";
  EXPECT_LT(CompareIgnoreCase(u"abc", u"ABCD"), 0);
  EXPECT_EQ(UpperCase("straße é"), "STRAßE É");
}

TEST(CodePage, EveryByteOfASingleBytePageComesBack) {
  std::string all;
  for (unsigned byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  // 1255 and 1258 join letters with accents on some hosts.
  for (const unsigned number : {874u, 1250u, 1251u, 1252u, 1253u, 1254u, 1255u, 1256u, 1257u, 1258u}) {
    const CodePage page(number);
    EXPECT_EQ(page.Encode(page.Decode(all)), all) << number;
    EXPECT_FALSE(page.IsDoubleByte());
  }
}

TEST(CodePage, KnowsWindowsCharacters) {
  const CodePage western;
  EXPECT_EQ(western.Decode("\x80\x81\xFC"), "\xE2\x82\xAC\xC2\x81\xC3\xBC");
  EXPECT_EQ(western.Encode("B\xC3\xBCro"), "B\xFCro");
  EXPECT_EQ(western.Encode("\xC5\x82"), std::nullopt) << "no best fit";
  EXPECT_EQ(western.EncodeLossy("a\xC5\x82\xF0\x9F\x98\x80z"), "a??z");
  EXPECT_EQ(CodePage(1251).Decode("\xCF\xEE"), "\xD0\x9F\xD0\xBE");
  EXPECT_EQ(CodePage(874).Decode("\x81\xDB"), "\u0081\uF8C1");
  EXPECT_EQ(CodePage(874).Encode("\u00DB"), std::nullopt) << "a byte without a meaning is not Latin-1";
  EXPECT_EQ(CodePage(1255).Decode("\xCA\xDF"), "\u05BA\uF893");
}

TEST(CodePage, DoubleBytePages) {
  const struct {
    unsigned number;
    const char* bytes;
    const char* text;
  } cases[] = {
      {932, "\x93\xFA\x96\x7B\\~\xB1\xF0\x40", "\xE6\x97\xA5\xE6\x9C\xAC\\~\xEF\xBD\xB1\uE000"},
      {936, "\xD6\xD0\x80\xAA\xA1\xA2\xAB", "\xE4\xB8\xAD\xE2\x82\xAC\uE000\uE766"},
      {949, "\xB0\xA1\xFE\xFE", "\xEA\xB0\x80\uE0BB"},
      {950, "\xA4\xA4\xF9\xF9\xFA\x40\x8D\xFE", "\xE4\xB8\xAD\u2550\uE000\uF6B0"},
  };
  for (const auto& c : cases) {
    const CodePage page(c.number);
    EXPECT_TRUE(page.IsDoubleByte());
    EXPECT_EQ(page.Decode(c.bytes), c.text) << c.number;
    EXPECT_EQ(page.Encode(c.text), c.bytes) << c.number;
  }
  EXPECT_EQ(CodePage(932).Decode("\x93\nx\x93"), "\xEF\xBF\xBD\nx\xEF\xBF\xBD") << "a broken pair keeps the line's end";
  EXPECT_EQ(CodePage(932).Encode("\u00A5"), std::nullopt) << "0x5C is a backslash, the yen sign has no byte";
  for (const unsigned none : {0u, 1u, 1361u, 65001u}) EXPECT_THROW(CodePage{none}, Error) << none;
}

/// All that a page says, as one number (FNV-1a).
std::uint64_t Fingerprint(const CodePage& page) {
  std::uint64_t hash = 0xCBF29CE484222325;
  const auto add = [&hash](std::string_view text) {
    for (const char c : text) hash = (hash ^ static_cast<std::uint8_t>(c)) * 0x100000001B3;
    hash *= 0x100000001B3;
  };
  for (unsigned code = 0; code < 0x10000; ++code) {
    add(page.Decode(std::string{static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)}));
    const auto unit = static_cast<char16_t>(code);
    add(page.Encode(ToUtf8(std::u16string_view(&unit, 1))).value_or("none"));
  }
  return hash;
}

// The numbers were found with two hosts' tables that have nothing in common.
TEST(CodePage, IsTheSameOnEveryHost) {
  constexpr std::pair<unsigned, std::uint64_t> kPages[] = {
      {437, 0xBF08E40F18113B8F},  {850, 0x159B742D03CD98DD},  {852, 0x49669E786F0E7D27},  {855, 0xF2DC40E5B7616AAB},
      {866, 0x3E7270F5696607B7},  {874, 0xC2BAD342BD0BD7E1},  {932, 0xB764911BF0464C48},  {936, 0xBE495359620F8098},
      {949, 0xDFD65FDF53F837DF},  {950, 0x4B1620501ADBB0A9},  {1250, 0x405E07102ED928B1}, {1251, 0x3C63D63119489D8D},
      {1252, 0x8A44E6FD7B5FA8BF}, {1253, 0x87C44F35F7762E91}, {1254, 0x980242512FA20973}, {1255, 0xE17E32FBB52CEAEB},
      {1256, 0x55431F035650E91},  {1257, 0x124DE813C79DE3ED}, {1258, 0xE2F22F1DA57F0285},
  };
  for (const auto& [number, fingerprint] : kPages) EXPECT_EQ(Fingerprint(CodePage(number)), fingerprint) << number;
}

TEST(MessageText, ShortensOverLongNamesOnly) {
  EXPECT_EQ(ShortName(""), "");
  const std::string longest(400, 'a');
  EXPECT_EQ(ShortName(longest), longest);
  std::string cyrillic;
  for (int number = 0; number < 400; ++number) cyrillic += "\xD0\x96";
  EXPECT_EQ(ShortName(cyrillic), cyrillic) << "its bytes are more than 400";
  const std::string shortened = ShortName("begin" + std::string(16373, 'a') + "end.x");
  EXPECT_THAT(shortened, StartsWith("beginaaaa"));
  EXPECT_THAT(shortened, EndsWith("aaaend.x [16383 characters]"));
  EXPECT_LT(shortened.size(), 420U);
}

TEST(MessageText, NeverCutsACharacter) {
  for (std::size_t shift = 0; shift < 2; ++shift) {
    std::string name(shift, 'a');
    for (int number = 0; number < 300; ++number) name += "\xF0\x9F\x98\x80";
    const std::string shortened = ShortName(name);
    EXPECT_TRUE(IsInnerText(shortened));
    EXPECT_EQ(OneLine(shortened), shortened) << "it holds half a character";
  }
}

TEST(MessageText, IsOneLineWhateverANameHolds) {
  EXPECT_EQ(OneLine("C:\\Mail\\\xC3\x84rger \xF0\x9F\x98\x80"), "C:\\Mail\\\xC3\x84rger \xF0\x9F\x98\x80");
  EXPECT_EQ(OneLine("a\r\nb\x1b[2J\x7f"), "a␍␊b␛[2J␡");
  EXPECT_EQ(OneLine(std::string_view("a\0b", 3)), "a␀b");
  const std::string unknown = "\xEF\xBF\xBD";
  EXPECT_EQ(OneLine("a\xC2\x85\xE2\x80\xA8z"), "a" + unknown + unknown + "z") << "next line, line separator";
  EXPECT_EQ(OneLine("exe.\xE2\x80\xAEtxt"), "exe." + unknown + "txt") << "turns the direction";
  EXPECT_EQ(OneLine("\xED\xA0\x80 \xFF"), unknown + " " + unknown) << "half a character, not UTF-8";
}

TEST(MessageText, OrKeepsTheLinesOfAMessage) {
  EXPECT_EQ(SeveralLines(""), "");
  EXPECT_EQ(SeveralLines("one\n\ntw\ro\n"), "one\n\ntw\u240Do\n");
  EXPECT_EQ(SeveralLines("\u061C\u2066x\u200D\n"), "\uFFFD\uFFFDx\u200D\n") << "joiners are part of names";
}

TEST(MessageText, ErrorsAreOneShortLine) {
  const Error error("opening\nit", {std::string(5000, 'k') + "\n", 16, {}}, "why\tnot");
  EXPECT_THAT(Describe(error), EndsWith("kkk␊ [5001 characters], offset 0x10: why␉not (while opening␊it)"));
  EXPECT_LT(Describe(error).size(), 500U);
  EXPECT_EQ(error.Place().name.size(), 5001U);
  EXPECT_EQ(Describe(Error("", {"", 16, 3}, "why")), "offset 0x10, line 3: why") << "who shows it names the file";
}

TEST(WinPath, ResolvesToAnAbsolutePath) {
  const std::pair<const char*, const char*> cases[] = {
      {"x", "C:\\Data\\x"},
      {"..\\..\\..\\x", "C:\\x"},
      {"\\x\\.\\y\\", "C:\\x\\y"},
      {"D:/a//b/../c", "D:\\a\\c"},
      {"D:x", "D:\\x"},
      {"c:x", "c:\\Data\\x"},
      {"C:\\", "C:\\"},
      {"C:\\a. .\\b \\...\\c", "C:\\a\\b\\c"},
      {"\\\\server\\share\\x", "\\\\server\\share\\x"},
      {"", "C:\\Data"},
  };
  for (const auto& [path, resolved] : cases) {
    EXPECT_EQ(Resolve(WinPath(path), WinPath("C:\\Data\\")).Text(), resolved) << path;
  }
}

TEST(WinPath, TakesPathsApart) {
  EXPECT_EQ(WinPath("C:\\x").Parent().Text(), "C:\\");
  EXPECT_EQ(WinPath("C:\\x\\y").Parent().Text(), "C:\\x");
  EXPECT_TRUE(WinPath("x").Parent().Empty());
  EXPECT_EQ(WinPath("C:x").Name(), "x");
  EXPECT_EQ(WinPath("c:x").Drive(), 'C');
  EXPECT_FALSE(WinPath("C:x").IsAbsolute());
  EXPECT_EQ(WinPath("C:\\").Join("x").Text(), "C:\\x");
  EXPECT_EQ(DirectoryFromFile("  C:\\Data\\book.wab "), "C:\\Data\\");
  EXPECT_EQ(DirectoryFromFile("book.wab"), "");
  EXPECT_EQ(NameFromFullPath("C:\\a\\b.wab"), "b.wab");
  EXPECT_EQ(NameFromFullPath("b.wab"), "");
  EXPECT_EQ(GetFileName("C:\\a.b\\My.File.reg"), "My");
  EXPECT_EQ(GetFileName("File"), "File");
}

TEST(WinPath, FindsNamesThatWindowsCannotHave) {
  for (const char* good : {"Inbox.dbx", "comp.lang.c++.dbx", "CONSOLE", "LPT10", "B\xC3\xBCro", ".x"}) {
    EXPECT_FALSE(FileNameFault(good)) << good;
  }
  const std::string tooLong(256, 'x');
  for (const char* bad : {"", ".", "..", "a\\b", "a/b", "C:x", "a*", "tab\t", "end.", "end ", "con", "Nul.txt",
                          "COM1 .x", "bad\xFF", tooLong.c_str()}) {
    EXPECT_TRUE(FileNameFault(bad)) << bad;
  }
}

TEST(RegistryPath, FullNamesBothWays) {
  const auto path = ParseRegistryPath("hkey_current_user\\\\Identities\\{1}\\");
  ASSERT_TRUE(path);
  EXPECT_EQ(path->subkey, "Identities\\{1}");
  EXPECT_EQ(FullName(path->Child("Software")), "HKEY_CURRENT_USER\\Identities\\{1}\\Software");
  EXPECT_EQ(ParseRegistryPath("HKLM"), (RegistryPath{RegistryRoot::LocalMachine, ""}));
  EXPECT_EQ(FullName({RegistryRoot::Users, ""}), "HKEY_USERS");
  EXPECT_FALSE(ParseRegistryPath("HKEY_CURRENT_USERS\\x"));
  EXPECT_FALSE(ParseRegistryPath("\\HKEY_CURRENT_USER"));
}

}  // namespace
}  // namespace quillbox
