#include "text/message_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

using testing::EndsWith;
using testing::StartsWith;

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
}

}  // namespace
}  // namespace quillbox
