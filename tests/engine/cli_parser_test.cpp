// The script host's reading of statement lines: tokens, numbers, strings, names and
// answers. The JSON it prints for `state` is in every scenario's transcript.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "script_parser.h"

namespace script {
namespace {

using Tokens = std::vector<Token>;
Token Word(std::string text) { return {Token::Kind::Word, std::move(text)}; }
Token Str(std::string text) { return {Token::Kind::String, std::move(text)}; }

std::string ParseErrorOf(auto&& call) {
  try {
    call();
  } catch (const ParseError& error) {
    return error.what();
  }
  return "no error";
}

TEST(CliTokenizeTest, WordsStringsEscapesBlanksAndComments) {
  const std::pair<const char*, Tokens> cases[] = {
      {"  SetImage \"a b.jpg\"\t 12  # a comment \"x", {Word("SetImage"), Str("a b.jpg"), Word("12")}},
      {"state\r", {Word("state")}},
      {"   # only a comment", {}},
      {"", {}},
      // '#' inside a string is text; '#' right after a word starts the comment.
      {"type \"#1\"#c", {Word("type"), Str("#1")}},
      {"wait 5#c", {Word("wait"), Word("5")}},
      {"SetImage \"\"", {Word("SetImage"), Str("")}},
      {R"(type "a\\b\"c\nd\x41\xe9")", {Word("type"), Str("a\\b\"c\ndA\xE9")}},
  };
  for (const auto& [line, tokens] : cases) EXPECT_EQ(TokenizeLine(line), tokens) << line;
}

TEST(CliTokenizeTest, MalformedLinesSayWhatIsWrong) {
  const std::pair<const char*, const char*> cases[] = {
      {R"(SetImage "a.jpg\")", "unterminated string"},
      {R"(type "\)", "unterminated string"},
      {R"(type "\x4")", "bad escape: \\x needs two hexadecimal digits"},
      {R"(type "\x4g")", "bad escape: \\x needs two hexadecimal digits"},
      {R"(type "\x00")", "bad escape: \\x00 is not allowed in a string"},
      {R"(type "a"b)", "a closing quote must be followed by a blank"},
      {R"(type a"b")", "a quote inside a word; strings are separate tokens"},
  };
  for (const auto& [line, error] : cases) EXPECT_EQ(ParseErrorOf([&] { TokenizeLine(line); }), error) << line;
}

TEST(CliIntegerTest, DecimalAndHexWithinThirtyTwoBits) {
  // Hexadecimal literals are bit patterns: the full unsigned range is allowed.
  using Case = std::pair<const char*, int>;
  for (const auto& [text, value] :
       {Case{"-7", -7}, Case{"2147483647", 2147483647}, Case{"-2147483648", INT32_MIN}, Case{"0XfF", 255},
        Case{"-0x10", -16}, Case{"0xFFFFFFFF", -1}, Case{"0x80000000", INT32_MIN},
        Case{"-0x80000000", INT32_MIN}, Case{"000000000000000000000000012", 12}}) {
    EXPECT_EQ(ParseInteger(text), value) << text;
  }
  for (const char* bad : {"", "-", "0x", "-0x", "12x", "1.5", "0x1G", "--1", "+1", "1e3", "\xEF\xBC\x90"}) {
    EXPECT_EQ(ParseErrorOf([&] { ParseInteger(bad); }), "bad number '" + std::string(bad) + "'") << bad;
  }
  for (const char* big :
       {"2147483648", "-2147483649", "0x100000000", "-0x80000001", "99999999999999999999999"}) {
    EXPECT_EQ(ParseErrorOf([&] { ParseInteger(big); }),
              "number out of 32-bit range '" + std::string(big) + "'");
  }
}

TEST(CliUtf8Test, DecodesEveryLengthAndRejectsMalformedForms) {
  EXPECT_EQ(DecodeUtf8("A\xC3\xA9\xEC\x95\x88\xF0\x9F\x98\x80"),
            (std::vector<char32_t>{0x41, 0xE9, 0xC548, 0x1F600}));
  EXPECT_TRUE(DecodeUtf8("").empty());
  for (const char* bad : {"\x80", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                          "\xF8\x88\x80\x80\x80", "\xC3\x41", "\xEC\x95"}) {
    EXPECT_EQ(ParseErrorOf([&] { DecodeUtf8(bad); }), "invalid UTF-8 in string");
  }
}

TEST(CliQuoteTest, QuotedTextReadsBackUnchanged) {
  EXPECT_EQ(QuoteString("I failed to read \"a\\b\".\nCode 2"), R"("I failed to read \"a\\b\".\nCode 2")");
  EXPECT_EQ(QuoteString(std::string("\x01\t\x7F\xEB\xA9\x94", 6)), "\"\\x01\\x09\\x7F\xEB\xA9\x94\"");
  const std::string text = "tab\there \"q\" back\\slash\nline \x1F end \xED\x95\x9C";
  EXPECT_EQ(TokenizeLine("type " + QuoteString(text)), (Tokens{Word("type"), Str(text)}));
}

// Names in any case; the scenarios use the common ones.
TEST(CliNamesTest, KeysAndScrollCodes) {
  EXPECT_EQ(VirtualKeyByName("escape"), 0x1B);
  EXPECT_EQ(VirtualKeyByName("PageDown"), 0x22);
  EXPECT_EQ(VirtualKeyByName("z"), 'Z');
  EXPECT_EQ(VirtualKeyByName("F13"), std::nullopt);
  EXPECT_EQ(ScrollCodeByName("sb_lineright"), 1u);
  EXPECT_EQ(ScrollCodeByName("SB_RIGHT"), 7u);
  EXPECT_EQ(ScrollCodeByName("LINEDOWN"), std::nullopt);
}

TEST(CliAnswerTest, ColoursAreRgbHexInBothDirectionsAndFontsTakeTheSevenFieldForm) {
  EXPECT_EQ(ParseRgbHex("123456"), 0x00563412u);
  EXPECT_EQ(ParseRgbHex("abcdef"), 0x00EFCDABu);
  EXPECT_EQ(FormatRgbHex(0x00EFCDABu), "ABCDEF");
  for (const char* bad : {"", "12345", "1234567", "12345G", "0x1234"}) {
    EXPECT_NE(ParseErrorOf([&] { ParseRgbHex(bad); }), "no error") << bad;
  }

  const auto fields = [](const FontChoice& f) {
    return std::tuple(f.face, f.points, f.italic, f.bold, f.strikeOut, f.underline, f.color);
  };
  EXPECT_EQ(fields(ParseFontAnswer("Arial,,bold,12,,Underline,FF0000")),
            std::tuple(std::string("Arial"), 12, false, true, false, true, COLORREF{0x0000FF}));
  EXPECT_EQ(fields(ParseFontAnswer("Gulim,Italic,,9,StrikeOut,,00FF00")),
            std::tuple(std::string("Gulim"), 9, true, false, true, false, COLORREF{0x00FF00}));
  for (const char* bad :
       {"Arial,,Bold,12,,", "Arial,,Bold,12,,,FF0000,0", ",,,12,,,000000", "Arial,Bold,,12,,,000000",
        "Arial,,,0,,,000000", "Arial,,,twelve,,,000000", "Arial,,,1000,,,000000", "Arial,,,12,,,red",
        "A face name longer than thirty-one,,,12,,,000000"}) {
    EXPECT_NE(ParseErrorOf([&] { ParseFontAnswer(bad); }), "no error") << bad;
  }
}

}  // namespace
}  // namespace script
