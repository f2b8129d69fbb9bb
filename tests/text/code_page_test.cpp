#include "text/code_page.h"

#include <gtest/gtest.h>

#include "text/error.h"

namespace quillbox {
namespace {

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
}

TEST(CodePage, DoubleBytePages) {
  const struct {
    unsigned number;
    const char* bytes;
    const char* text;
  } cases[] = {
      {932, "\x93\xFA\x96\x7B\\\xB1", "\xE6\x97\xA5\xE6\x9C\xAC\\\xEF\xBD\xB1"},
      {936, "\xD6\xD0\x80", "\xE4\xB8\xAD\xE2\x82\xAC"},
      {949, "\xB0\xA1", "\xEA\xB0\x80"},
      {950, "\xA4\xA4", "\xE4\xB8\xAD"},
      {1361, "\x88\x61\\~", "\xEA\xB0\x80\\~"},
  };
  for (const auto& c : cases) {
    const CodePage page(c.number);
    EXPECT_TRUE(page.IsDoubleByte());
    EXPECT_EQ(page.Decode(c.bytes), c.text) << c.number;
    EXPECT_EQ(page.Encode(c.text), c.bytes) << c.number;
  }
  EXPECT_EQ(CodePage(932).Decode("\x93\nx\x93"), "\xEF\xBF\xBD\nx\xEF\xBF\xBD") << "a broken pair keeps the line's end";
  EXPECT_THROW(CodePage(1), Error);
}

}  // namespace
}  // namespace quillbox
