// A balloon's text as the host hands it over: plain, or hex-encoded behind its head.
#include "editor/balloon_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(BalloonText, HexEncodedTextsAreDecodedAfterTheirHead) {
  const std::string marker = "\x01\x01", head = marker + "abcdefgh";  // then eight bytes of any kind
  const struct {
    std::string given, text;
  } cases[] = {
      {head + "48656C6C6F", "Hello"},
      {marker + "12345678" + "48656c6C6f", "Hello"},  // either case
      {head + "48656C6C6", "Hell"},                   // a lone last digit is ignored
      {head, ""},
      {marker + "abcdefg", ""},  // shorter than the head
      {marker, ""},
      {head + "4865XX6C6F", "He"},  // stops at a pair that is not hex
      {head + "48 5", "H"},
      {head + "48006C", "H"},                                          // a zero byte ends the text
      {head + "C2B0E6B8A9", "\xC2\xB0\xE6\xB8\xA9"},                   // any byte above 0x7F
      {head.substr(1) + "48656C6C6F", head.substr(1) + "48656C6C6F"},  // one marker byte: plain
      {"48656C6C6F", "48656C6C6F"},
      {"", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(DecodeBalloonText(c.given.c_str()), c.text) << c.given;
  EXPECT_EQ(DecodeBalloonText(nullptr), "");
}

}  // namespace
