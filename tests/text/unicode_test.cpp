#include "text/unicode.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace quillbox
