// A balloon's text as the host hands it over: plain, or hex-encoded behind its head.
#include "editor/balloon_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct DecodeCase {
  const char* given;
  std::string text;
};

TEST(BalloonText, HexEncodedTextsAreDecodedAfterTheirHead) {
  const DecodeCase cases[] = {
      {"\x01\x01"
       "abcdefgh"
       "48656C6C6F",
       "Hello"},
      {"\x01\x01"
       "12345678"
       "48656c6C6f",
       "Hello"},  // either case
      {"\x01\x01"
       "abcdefgh"
       "48656C6C6",
       "Hell"},  // a lone last digit is ignored
      {"\x01\x01"
       "abcdefgh",
       ""},  // the head alone
      {"\x01\x01"
       "abcdefg",
       ""},  // shorter than the head
      {"\x01\x01", ""},
      {"\x01\x01"
       "abcdefgh"
       "4865XX6C6F",
       "He"},  // stops at a pair that is not hex
      {"\x01\x01"
       "abcdefgh"
       "48 5",
       "H"},
      {"\x01\x01"
       "abcdefgh"
       "48006C",
       "H"},  // a zero byte ends the text
      {"\x01\x01"
       "abcdefgh"
       "C2B0E6B8A9",
       "\xC2\xB0\xE6\xB8\xA9"},  // any byte above 0x7F
      {"\x01"
       "abcdefgh48656C6C6F",
       "\x01"
       "abcdefgh48656C6C6F"},  // one marker byte: plain
      {"48656C6C6F", "48656C6C6F"},
      {"", ""},
  };
  for (const DecodeCase& c : cases) EXPECT_EQ(DecodeBalloonText(c.given), c.text) << c.given;
  EXPECT_EQ(DecodeBalloonText(nullptr), "");
}

}  // namespace
