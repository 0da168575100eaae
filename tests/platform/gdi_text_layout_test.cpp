// DrawText's line layout with made-up advances: letters 10 pixels, spaces 4, Han
// characters 20. The rules decided against Wine's GDI are in gdi_text_layout.h.
#include "platform/gdi_text_layout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using platform::text::LayoutRules;
using platform::text::TextLayout;

namespace {

int Advance(char32_t c) { return c == U' ' ? 4 : c >= 0x3000 ? 20 : 10; }

struct Laid {
  std::vector<std::u32string> lines;
  std::vector<std::int64_t> widths;
  std::vector<std::u32string> underlined;  // the marked character of each line, or ""
};

Laid LayOut(std::u32string_view text, LayoutRules rules) {
  const TextLayout layout(text, rules, Advance);
  Laid laid;
  for (const TextLayout::Line& line : layout.lines()) {
    laid.lines.push_back(layout.text().substr(line.begin, line.end - line.begin));
    laid.widths.push_back(line.width);
    laid.underlined.push_back(
        line.underlined == std::string::npos ? U"" : layout.text().substr(line.underlined, 1));
  }
  return laid;
}

LayoutRules Wrapping(std::int64_t width, bool breakWords = false) {
  LayoutRules rules;
  rules.wrap = true;
  rules.width = width;
  rules.breakWords = breakWords;
  return rules;
}

using Lines = std::vector<std::u32string>;

TEST(TextLayout, LineBreaksAreCrLfLfCrAndEitherPair) {
  for (std::u32string_view text : {U"ab\r\ncd", U"ab\ncd", U"ab\rcd", U"ab\n\rcd"})
    EXPECT_EQ(LayOut(text, {}).lines, (Lines{U"ab", U"cd"}));
  EXPECT_EQ(LayOut(U"ab\r\rcd", {}).lines, (Lines{U"ab", U"", U"cd"}));
  EXPECT_EQ(LayOut(U"ab\n\ncd", {}).lines, (Lines{U"ab", U"", U"cd"}));
  // A break at the end starts no line.
  EXPECT_EQ(LayOut(U"ab\n", {}).lines, (Lines{U"ab"}));
  EXPECT_EQ(LayOut(U"ab\r\n", {}).lines, (Lines{U"ab"}));
  EXPECT_EQ(LayOut(U"\n", {}).lines, (Lines{U""}));
  EXPECT_EQ(LayOut(U"ab\n\n", {}).lines, (Lines{U"ab", U""}));
  LayoutRules single;
  single.singleLine = true;
  const Laid one = LayOut(U"ab\r\ncd", single);
  EXPECT_EQ(one.lines, (Lines{U"ab\r\ncd"}));
  EXPECT_EQ(one.widths, (std::vector<std::int64_t>{60}));
}

TEST(TextLayout, PrefixMarksAreTakenOutAndTheLastOneOfALineUnderlines) {
  LayoutRules prefix;
  prefix.prefix = true;
  Laid laid = LayOut(U"&ab", prefix);
  EXPECT_EQ(laid.lines, (Lines{U"ab"}));
  EXPECT_EQ(laid.widths[0], 20);
  EXPECT_EQ(laid.underlined[0], U"a");
  laid = LayOut(U"&&ab", prefix);
  EXPECT_EQ(laid.lines, (Lines{U"&ab"}));
  EXPECT_EQ(laid.underlined[0], U"");
  EXPECT_EQ(LayOut(U"&a&b", prefix).underlined[0], U"b");
  EXPECT_EQ(LayOut(U"&&&x", prefix).lines[0], U"&x");
  EXPECT_EQ(LayOut(U"&&&x", prefix).underlined[0], U"x");
  // A '&' at the end has nothing to mark and is drawn.
  EXPECT_EQ(LayOut(U"a&", prefix).lines, (Lines{U"a&"}));
  EXPECT_EQ(LayOut(U"&", prefix).lines, (Lines{U"&"}));
  // Marks are per line.
  laid = LayOut(U"&a\nb&c", prefix);
  EXPECT_EQ(laid.underlined, (Lines{U"a", U"c"}));
  // Without prefix processing every '&' is a character.
  EXPECT_EQ(LayOut(U"&&a", {}).lines, (Lines{U"&&a"}));
}

TEST(TextLayout, WrapsAtSpacesAndSpacesAtABreakCountNowhere) {
  // "aa bb" is 44 wide and fits in 50; "cc" does not fit after it.
  Laid laid = LayOut(U"aa bb cc", Wrapping(50));
  EXPECT_EQ(laid.lines, (Lines{U"aa bb", U"cc"}));
  EXPECT_EQ(laid.widths, (std::vector<std::int64_t>{44, 20}));
  // Exactly as wide as the line fits.
  EXPECT_EQ(LayOut(U"aa bb", Wrapping(44)).lines, (Lines{U"aa bb"}));
  EXPECT_EQ(LayOut(U"aa bb", Wrapping(43)).lines, (Lines{U"aa", U"bb"}));
  // A run of spaces at the break neither ends the first line nor starts the next.
  laid = LayOut(U"aa      bb", Wrapping(30));
  EXPECT_EQ(laid.lines, (Lines{U"aa", U"bb"}));
  EXPECT_EQ(laid.widths, (std::vector<std::int64_t>{20, 20}));
  // Spaces hang past the end of a wrapped line instead of pushing it over.
  EXPECT_EQ(LayOut(U"aa    ", Wrapping(20)).widths, (std::vector<std::int64_t>{20}));
  EXPECT_EQ(LayOut(U"aa    bb", Wrapping(1000)).widths, (std::vector<std::int64_t>{56}));
  // Unwrapped, trailing spaces are measured.
  EXPECT_EQ(LayOut(U"aa  ", {}).widths, (std::vector<std::int64_t>{28}));
  // A paragraph's leading spaces are kept.
  EXPECT_EQ(LayOut(U"  aa", Wrapping(100)).widths, (std::vector<std::int64_t>{28}));
  EXPECT_EQ(LayOut(U"  aa bb", Wrapping(30)).lines, (Lines{U"  aa", U"bb"}));
  // Spaces alone make an empty line; after a break they make none.
  EXPECT_EQ(LayOut(U"   ", Wrapping(10)).lines, (Lines{U""}));
  EXPECT_EQ(LayOut(U"aa bb   ", Wrapping(25)).lines, (Lines{U"aa", U"bb"}));
  // Explicit breaks inside wrapped text.
  EXPECT_EQ(LayOut(U"aa bb\ncc dd", Wrapping(25)).lines, (Lines{U"aa", U"bb", U"cc", U"dd"}));
}

TEST(TextLayout, AWordLongerThanALineRunsOnOrIsBrokenInside) {
  // It starts a line of its own either way.
  EXPECT_EQ(LayOut(U"a bbbbbbbb c", Wrapping(35)).lines, (Lines{U"a", U"bbbbbbbb", U"c"}));
  // The rest of a broken word shares its last line with what fits after it.
  EXPECT_EQ(LayOut(U"a bbbbbbbb c", Wrapping(35, true)).lines, (Lines{U"a", U"bbb", U"bbb", U"bb c"}));
  EXPECT_EQ(LayOut(U"a bbbbbbbb c", Wrapping(33, true)).lines, (Lines{U"a", U"bbb", U"bbb", U"bb", U"c"}));
  // A line holds at least one character, however narrow.
  EXPECT_EQ(LayOut(U"abc", Wrapping(0, true)).lines, (Lines{U"a", U"b", U"c"}));
  EXPECT_EQ(LayOut(U"abc de", Wrapping(0)).lines, (Lines{U"abc", U"de"}));
}

TEST(TextLayout, HanCharactersBreakAnywhere) {
  EXPECT_EQ(LayOut(U"中文中文", Wrapping(45)).lines, (Lines{U"中文", U"中文"}));
  EXPECT_EQ(LayOut(U"ab中文", Wrapping(35)).lines, (Lines{U"ab", U"中", U"文"}));
  // Hangul is written with spaces between words: a word stays whole.
  EXPECT_EQ(LayOut(U"한글 한글", Wrapping(30)).lines, (Lines{U"한글", U"한글"}));
}

TEST(TextLayout, TabsExpandToTheNextStopOnlyWhenAsked) {
  LayoutRules tabs;
  tabs.tabStop = 32;
  EXPECT_EQ(LayOut(U"a\tb", tabs).widths, (std::vector<std::int64_t>{42}));
  EXPECT_EQ(LayOut(U"\t\tb", tabs).widths, (std::vector<std::int64_t>{74}));
  EXPECT_EQ(LayOut(U"a\tb", {}).widths, (std::vector<std::int64_t>{30}));
  std::vector<std::int64_t> xs;
  const TextLayout layout(U"ab\tc", tabs, Advance);
  layout.Walk(layout.lines()[0],
              [&](std::size_t, char32_t, std::int64_t x, std::int64_t) { xs.push_back(x); });
  EXPECT_EQ(xs, (std::vector<std::int64_t>{0, 10, 20, 32}));
}

TEST(TextLayout, EmptyTextIsOneEmptyLine) {
  const Laid laid = LayOut(U"", Wrapping(10, true));
  EXPECT_EQ(laid.lines, (Lines{U""}));
  EXPECT_EQ(laid.widths, (std::vector<std::int64_t>{0}));
}

}  // namespace
