// Text on the raster with the fonts the project ships: Arial is drawn with Liberation
// Sans, 굴림체 and 宋体 with the monospaced Noto CJK faces (fonts/font_aliases.txt).
// Measuring, wrapping, drawing modes, character sets, fallback faces, clipping and
// what hostile arguments do. The line layout's own rules (breaks, spaces at a wrap,
// prefixes) are gdi_text_layout_test.cpp's.
#include "platform/gdi_text.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "platform/gdi_test_support.h"

using gdi_test::kBlack;
using gdi_test::kWhite;
using gdi_test::MemSurface;

namespace {

constexpr COLORREF kKey = RGB(0x13, 0x43, 0x0B);
constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kGreen = RGB(0, 255, 0);

LOGFONTA Font(const char* face, LONG height, LONG weight = FW_NORMAL, BYTE charset = ANSI_CHARSET,
              bool italic = false, bool underline = false, bool strikeOut = false) {
  LOGFONTA font{};
  font.lfHeight = height;
  font.lfWeight = weight;
  font.lfItalic = italic;
  font.lfUnderline = underline;
  font.lfStrikeOut = strikeOut;
  font.lfCharSet = charset;
  font.lfOutPrecision = 3;
  font.lfClipPrecision = 2;
  font.lfQuality = 1;
  std::strncpy(font.lfFaceName, face, LF_FACESIZE - 1);
  return font;
}

// A surface filled with the key colour, with a font selected and the text colour red.
class TextSurface : public MemSurface {
 public:
  TextSurface(int width, int height, const LOGFONTA& font, bool mono = false)
      : MemSurface(width, height, mono), font_(CreateFontIndirectA(&font)) {
    old_ = SelectObject(dc(), font_);
    Fill(mono ? kWhite : kKey);
    SetTextColor(dc(), kRed);
    SetBkMode(dc(), TRANSPARENT);
  }
  ~TextSurface() {
    SelectObject(dc(), old_);
    DeleteObject(font_);
  }

  HFONT font() const { return font_; }
  TEXTMETRICA Metrics() const {
    TEXTMETRICA tm{};
    EXPECT_TRUE(GetTextMetricsA(dc(), &tm));
    return tm;
  }
  SIZE Extent(const std::string& text) const {
    SIZE size{-1, -1};
    EXPECT_TRUE(GetTextExtentPoint32A(dc(), text.data(), static_cast<int>(text.size()), &size));
    return size;
  }

 private:
  HFONT font_;
  HGDIOBJ old_;
};

// The smallest box holding every pixel of `color`, and the pixels in it as a picture
// of '#' and '.'; empty when there are none.
std::vector<std::string> Ink(const std::vector<COLORREF>& pixels, int width, COLORREF color) {
  const int height = static_cast<int>(pixels.size()) / width;
  int left = width, right = -1, top = height, bottom = -1;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      if (pixels[y * width + x] != color) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
  }
  std::vector<std::string> picture;
  for (int y = top; y <= bottom; ++y) {
    std::string row;
    for (int x = left; x <= right; ++x) row += pixels[y * width + x] == color ? '#' : '.';
    picture.push_back(row);
  }
  return picture;
}

int Count(const std::vector<COLORREF>& pixels, COLORREF color) {
  return static_cast<int>(std::count(pixels.begin(), pixels.end(), color));
}

bool RowFilled(const TextSurface& s, int y, int left, int right, COLORREF color) {
  for (int x = left; x < right; ++x) {
    if (GetPixel(s.dc(), x, y) != color) return false;
  }
  return true;
}

// Every test checks that it leaves no GDI object behind.
class GdiText : public ::testing::Test {
 protected:
  void SetUp() override { before_ = platform::LiveGdiObjects(); }
  void TearDown() override { EXPECT_EQ(platform::LiveGdiObjects().total(), before_.total()); }
  platform::GdiCounts before_;
};

TEST_F(GdiText, MetricsComeFromTheFaceAtItsSize) {
  {
    // A negative height is the em: the cell less its internal leading.
    TextSurface s(4, 4, Font("Arial", -12));
    const TEXTMETRICA tm = s.Metrics();
    EXPECT_EQ(tm.tmHeight, tm.tmAscent + tm.tmDescent);
    EXPECT_EQ(tm.tmHeight - tm.tmInternalLeading, 12);
    EXPECT_GT(tm.tmDescent, 0);
    EXPECT_GT(tm.tmAveCharWidth, 3);
    EXPECT_LT(tm.tmAveCharWidth, 12);
    EXPECT_GE(tm.tmMaxCharWidth, tm.tmAveCharWidth);
    EXPECT_EQ(tm.tmWeight, FW_NORMAL);
    EXPECT_EQ(tm.tmItalic | tm.tmUnderlined | tm.tmStruckOut, 0);
    EXPECT_TRUE(tm.tmPitchAndFamily & TMPF_FIXED_PITCH);  // set for a variable pitch
    EXPECT_TRUE(tm.tmPitchAndFamily & TMPF_TRUETYPE);
  }
  // A positive height is the cell; 0 is the default 16-pixel cell.
  for (LONG height : {16, 0}) {
    TextSurface s(4, 4, Font("Arial", height));
    EXPECT_EQ(s.Metrics().tmHeight, 16) << height;
  }
  {
    TextSurface s(4, 4, Font("Arial", -16, FW_BOLD, DEFAULT_CHARSET, true, true, true));
    const TEXTMETRICA tm = s.Metrics();
    EXPECT_EQ(tm.tmWeight, FW_BOLD);
    EXPECT_TRUE(tm.tmItalic && tm.tmUnderlined && tm.tmStruckOut);
    EXPECT_EQ(tm.tmCharSet, ANSI_CHARSET);  // what the default set becomes
  }
  {
    TextSurface s(4, 4, Font("굴림체", -12, FW_NORMAL, HANGEUL_CHARSET));
    EXPECT_EQ(s.Metrics().tmCharSet, HANGEUL_CHARSET);
    // Latin letters all half an em wide, Hangul wider.
    EXPECT_EQ(s.Extent("i").cx, 6);
    EXPECT_EQ(s.Extent("W").cx, 6);
    SIZE hangul{};
    ASSERT_TRUE(GetTextExtentPoint32W(s.dc(), u"한", 1, &hangul));
    EXPECT_GT(hangul.cx, 9);
  }
}

TEST_F(GdiText, HugeHeightsAreCapped) {
  for (LONG height : {-(1 << 20), INT_MIN, 1 << 30, INT_MAX}) {
    TextSurface s(4, 4, Font("Arial", height));
    EXPECT_GT(s.Metrics().tmHeight, 900) << height;
    EXPECT_LT(s.Metrics().tmHeight, 1400) << height;
  }
  // Such a font still draws, its glyphs as large as the cap.
  TextSurface s(1400, 1400, Font("Arial", -(1 << 20)));
  RECT r{0, 0, 1400, 1400};
  EXPECT_EQ(DrawTextA(s.dc(), "I", -1, &r, DT_WORDBREAK | DT_EDITCONTROL), s.Metrics().tmHeight);
  const auto stem = Ink(s.Pixels(), 1400, kRed);
  EXPECT_GT(stem.size(), 600u);
  EXPECT_LT(stem.size(), 1024u);
}

TEST_F(GdiText, ExtentsAddWholePixelAdvancesWithoutKerning) {
  TextSurface s(4, 4, Font("Arial", -13));
  const LONG height = s.Metrics().tmHeight;
  EXPECT_EQ(s.Extent("Hello").cy, height);
  EXPECT_EQ(s.Extent("Hello").cx, s.Extent("He").cx + s.Extent("llo").cx);
  EXPECT_EQ(s.Extent("AV").cx, s.Extent("A").cx + s.Extent("V").cx);
  EXPECT_EQ(s.Extent("").cx, 0);
  EXPECT_EQ(s.Extent("").cy, height);
  SIZE wide{};
  ASSERT_TRUE(GetTextExtentPoint32W(s.dc(), u"Hello", 5, &wide));
  EXPECT_EQ(wide.cx, s.Extent("Hello").cx);
  // A length past the text stops at its terminator.
  SIZE past{};
  ASSERT_TRUE(GetTextExtentPoint32A(s.dc(), "Hello", 1000, &past));
  EXPECT_EQ(past.cx, s.Extent("Hello").cx);
}

TEST_F(GdiText, CalcRectMeasuresWholeLinesAndDrawsNothing) {
  TextSurface s(80, 80, Font("Arial", -12));
  const LONG lh = s.Metrics().tmHeight;
  const auto before = s.Pixels();
  RECT r{5, 7, 5, 7};
  EXPECT_EQ(DrawTextA(s.dc(), "one\ntwo three\r\nfour", -1, &r, DT_CALCRECT | DT_EDITCONTROL), 3 * lh);
  EXPECT_EQ((std::vector<LONG>{r.left, r.top, r.right, r.bottom}),
            (std::vector<LONG>{5, 7, 5 + s.Extent("two three").cx, 7 + 3 * lh}));
  EXPECT_EQ(s.Pixels(), before);
  // The same rectangle drawn into reports the same height.
  EXPECT_EQ(DrawTextA(s.dc(), "one\ntwo three\r\nfour", -1, &r, DT_EDITCONTROL | DT_WORDBREAK), 3 * lh);
  EXPECT_NE(s.Pixels(), before);
}

TEST_F(GdiText, WordsWrapAtTheRectanglesWidth) {
  TextSurface s(4, 4, Font("Arial", -12));
  const LONG lh = s.Metrics().tmHeight;
  const LONG whole = s.Extent("Hello world").cx;
  const LONG hello = s.Extent("Hello").cx;
  const LONG world = s.Extent("world").cx;
  const auto measure = [&](const char* text, LONG width, UINT format) {
    RECT r{10, 0, 10 + width, 0};
    const int height = DrawTextA(s.dc(), text, -1, &r, format | DT_CALCRECT);
    EXPECT_EQ(r.bottom, height);
    return std::make_pair(r.right - r.left, height / lh);
  };
  EXPECT_EQ(measure("Hello world", whole, DT_WORDBREAK), std::make_pair(whole, 1));
  // One pixel short: the space at the break counts on neither line.
  EXPECT_EQ(measure("Hello world", whole - 1, DT_WORDBREAK), std::make_pair(std::max(hello, world), 2));
  // A word longer than the line runs on, unless the edit control's rule breaks it.
  EXPECT_EQ(measure("Helloworld", hello, DT_WORDBREAK), std::make_pair(s.Extent("Helloworld").cx, 1));
  const auto broken = measure("Helloworld", hello, DT_WORDBREAK | DT_EDITCONTROL);
  EXPECT_LE(broken.first, hello);
  EXPECT_GE(broken.second, 2);
  // A rectangle narrower than nothing wraps nothing; without DT_WORDBREAK nothing wraps.
  EXPECT_EQ(measure("Hello world", -5, DT_WORDBREAK | DT_EDITCONTROL), std::make_pair(whole, 1));
  EXPECT_EQ(measure("Hello world", 1, DT_EDITCONTROL), std::make_pair(whole, 1));
  // DT_SINGLELINE ignores line breaks and wrapping.
  EXPECT_EQ(measure("Hello\nworld", 1, DT_WORDBREAK | DT_SINGLELINE).second, 1);
}

TEST_F(GdiText, EmptyTextMeasuresOneLineAndDrawsNothing) {
  TextSurface s(20, 20, Font("Arial", -12));
  const LONG lh = s.Metrics().tmHeight;
  RECT r{3, 4, 50, 60};
  EXPECT_EQ(DrawTextA(s.dc(), "", -1, &r, DT_CALCRECT | DT_WORDBREAK), lh);
  EXPECT_EQ((std::vector<LONG>{r.left, r.top, r.right, r.bottom}), (std::vector<LONG>{3, 4, 3, 4}));
  r = RECT{3, 4, 50, 60};
  EXPECT_EQ(DrawTextA(s.dc(), "", 0, &r, DT_CALCRECT | DT_SINGLELINE), lh);
  EXPECT_EQ(r.bottom, 4 + lh);
  SetBkMode(s.dc(), OPAQUE);
  r = RECT{0, 0, 20, 20};
  EXPECT_EQ(DrawTextA(s.dc(), "", -1, &r, 0), 0);
  EXPECT_EQ(Count(s.Pixels(), kKey), 400);
}

TEST_F(GdiText, AmpersandsUnderlineTheNextCharacterUnlessNoPrefix) {
  TextSurface s(40, 20, Font("Arial", -12));
  RECT r{0, 0, 0, 0};
  DrawTextA(s.dc(), "&ab", -1, &r, DT_CALCRECT);
  EXPECT_EQ(r.right, s.Extent("ab").cx);
  r = RECT{0, 0, 0, 0};
  DrawTextA(s.dc(), "&ab", -1, &r, DT_CALCRECT | DT_NOPREFIX);
  EXPECT_EQ(r.right, s.Extent("&ab").cx);

  // The underline runs under 'a' alone, below the baseline where neither letter has ink.
  r = RECT{0, 0, 40, 20};
  DrawTextA(s.dc(), "&ab", -1, &r, 0);
  const LONG a = s.Extent("a").cx;
  int row = -1;
  for (int y = s.Metrics().tmAscent; y < s.Metrics().tmHeight && row < 0; ++y) {
    if (RowFilled(s, y, 0, a, kRed)) row = y;
  }
  ASSERT_GE(row, 0);
  EXPECT_EQ(GetPixel(s.dc(), a, row), kKey);
  EXPECT_TRUE(RowFilled(s, row, a, 40, kKey));
}

TEST_F(GdiText, TransparentLeavesTheCellOpaqueFillsIt) {
  TextSurface s(60, 30, Font("Arial", -12));
  const LONG lh = s.Metrics().tmHeight;
  const LONG width = s.Extent("Hello").cx;
  ASSERT_TRUE(TextOutA(s.dc(), 5, 6, "Hello", 5));
  const auto transparent = s.Pixels();
  // Glyphs are never smoothed: every pixel is the text colour or untouched.
  EXPECT_GT(Count(transparent, kRed), 20);
  EXPECT_EQ(Count(transparent, kRed) + Count(transparent, kKey), 60 * 30);

  s.Fill(kKey);
  SetBkMode(s.dc(), OPAQUE);
  SetBkColor(s.dc(), kGreen);
  ASSERT_TRUE(TextOutA(s.dc(), 5, 6, "Hello", 5));
  const auto opaque = s.Pixels();
  for (int y = 0; y < 30; ++y) {
    for (int x = 0; x < 60; ++x) {
      const bool inCell = x >= 5 && x < 5 + width && y >= 6 && y < 6 + lh;
      const COLORREF expected = transparent[y * 60 + x] == kRed ? kRed : inCell ? kGreen : kKey;
      ASSERT_EQ(opaque[y * 60 + x], expected) << x << "," << y;
    }
  }
  // The ROP2 does not reach text.
  s.Fill(kKey);
  SetBkMode(s.dc(), TRANSPARENT);
  SetROP2(s.dc(), R2_NOT);
  ASSERT_TRUE(TextOutA(s.dc(), 5, 6, "Hello", 5));
  EXPECT_EQ(s.Pixels(), transparent);
}

TEST_F(GdiText, DrawTextFillsEachLinesCellsInOpaqueMode) {
  TextSurface s(80, 40, Font("Arial", -12));
  const LONG lh = s.Metrics().tmHeight;
  SetBkMode(s.dc(), OPAQUE);
  SetBkColor(s.dc(), kGreen);
  RECT r{0, 0, 80, 40};
  DrawTextA(s.dc(), "Hello\nab", -1, &r, 0);
  EXPECT_EQ(GetPixel(s.dc(), s.Extent("Hello").cx - 1, 0), kGreen);
  EXPECT_EQ(GetPixel(s.dc(), s.Extent("Hello").cx, 0), kKey);
  EXPECT_EQ(GetPixel(s.dc(), s.Extent("ab").cx - 1, lh), kGreen);
  EXPECT_EQ(GetPixel(s.dc(), s.Extent("ab").cx, lh), kKey);
  EXPECT_EQ(GetPixel(s.dc(), 0, 2 * lh), kKey);
}

TEST_F(GdiText, MonochromeTargetsTakeTheNearerOfBlackAndWhite) {
  TextSurface s(40, 20, Font("Arial", -12), true);
  ASSERT_TRUE(TextOutA(s.dc(), 0, 0, "Hello", 5));  // red is nearer black
  auto pixels = s.Pixels();
  EXPECT_GT(Count(pixels, kBlack), 20);
  EXPECT_EQ(Count(pixels, kBlack) + Count(pixels, kWhite), 40 * 20);
  s.Fill(kWhite);
  SetTextColor(s.dc(), RGB(250, 250, 200));  // nearer white: invisible on white
  SetBkMode(s.dc(), OPAQUE);
  SetBkColor(s.dc(), RGB(10, 10, 60));
  ASSERT_TRUE(TextOutA(s.dc(), 0, 0, "Hello", 5));
  pixels = s.Pixels();
  const std::vector<std::string> cell = Ink(pixels, 40, kBlack);
  ASSERT_EQ(cell.size(), static_cast<std::size_t>(s.Metrics().tmHeight));
  EXPECT_EQ(static_cast<LONG>(cell[0].size()), s.Extent("Hello").cx);
}

TEST_F(GdiText, MultibyteTextIsReadInTheCharacterSetsCodePage) {
  const struct {
    const char* face;
    BYTE charset;
    const char* bytes;
    const char* utf8;
  } cases[] = {
      {"굴림체", HANGEUL_CHARSET, "\xC7\xD1\xB1\xDB", "한글"},
      {"宋体", GB2312_CHARSET, "\xD6\xD0\xCE\xC4", "中文"},
      {"Arial", HANGEUL_CHARSET, "A\xB0\xA1", "A가"},
  };
  for (const auto& c : cases) {
    TextSurface native(60, 24, Font(c.face, -16, FW_NORMAL, c.charset));
    TextSurface utf8(60, 24, Font(c.face, -16));
    ASSERT_TRUE(TextOutA(native.dc(), 1, 1, c.bytes, static_cast<int>(std::strlen(c.bytes))));
    ASSERT_TRUE(TextOutA(utf8.dc(), 1, 1, c.utf8, static_cast<int>(std::strlen(c.utf8))));
    EXPECT_GT(Count(native.Pixels(), kRed), 30) << c.face;
    EXPECT_EQ(native.Pixels(), utf8.Pixels()) << c.face;
  }
}

TEST_F(GdiText, CharactersAFaceLacksComeFromTheLanguagesFace) {
  // Hangul in an Arial text is drawn by the Korean default face, not as boxes.
  TextSurface arial(40, 30, Font("Arial", -16));
  TextSurface korean(40, 30, Font("굴림체", -16, FW_NORMAL, HANGEUL_CHARSET));
  ASSERT_TRUE(TextOutW(arial.dc(), 2, 2, u"한", 1));
  ASSERT_TRUE(TextOutW(korean.dc(), 2, 2, u"한", 1));
  const auto ink = Ink(arial.Pixels(), 40, kRed);
  EXPECT_GT(ink.size(), 8u);
  EXPECT_EQ(ink, Ink(korean.Pixels(), 40, kRed));
  // The line keeps the font's own cell.
  SIZE size{};
  ASSERT_TRUE(GetTextExtentPoint32W(arial.dc(), u"한", 1, &size));
  EXPECT_EQ(size.cy, arial.Metrics().tmHeight);
}

TEST_F(GdiText, BoldIsWiderAndDecorationsAreLines) {
  TextSurface regular(80, 24, Font("Arial", -16));
  TextSurface bold(80, 24, Font("Arial", -16, FW_BOLD));
  EXPECT_GT(bold.Extent("Hello").cx, regular.Extent("Hello").cx);

  TextSurface underlined(80, 24, Font("Arial", -16, FW_NORMAL, ANSI_CHARSET, false, true));
  TextSurface struck(80, 24, Font("Arial", -16, FW_NORMAL, ANSI_CHARSET, false, false, true));
  const LONG width = regular.Extent("ace").cx;  // no ascenders or descenders
  const LONG ascent = regular.Metrics().tmAscent;
  for (TextSurface* s : {&regular, &underlined, &struck}) ASSERT_TRUE(TextOutA(s->dc(), 3, 2, "ace", 3));
  const auto lineRows = [&](const TextSurface& s) {
    std::vector<int> rows;
    for (int y = 0; y < 24; ++y) {
      if (RowFilled(s, y, 3, 3 + width, kRed)) rows.push_back(y - 2 - ascent);
    }
    return rows;
  };
  EXPECT_TRUE(lineRows(regular).empty());
  ASSERT_FALSE(lineRows(underlined).empty());
  EXPECT_GE(lineRows(underlined).front(), 0);  // below the baseline
  ASSERT_FALSE(lineRows(struck).empty());
  EXPECT_LT(lineRows(struck).front(), -2);  // through the letters
  EXPECT_EQ(GetPixel(underlined.dc(), 3 + width, 2 + ascent + lineRows(underlined).front()), kKey);
}

TEST_F(GdiText, ItalicSlantsTheGlyphs) {
  TextSurface upright(30, 30, Font("Arial", -20));
  TextSurface italic(30, 30, Font("Arial", -20, FW_NORMAL, ANSI_CHARSET, true));
  TextOutA(upright.dc(), 5, 2, "l", 1);
  TextOutA(italic.dc(), 5, 2, "l", 1);
  const auto straight = Ink(upright.Pixels(), 30, kRed);
  const auto slanted = Ink(italic.Pixels(), 30, kRed);
  ASSERT_FALSE(slanted.empty());
  EXPECT_EQ(straight.front(), straight.back());
  // The top row's ink lies right of the bottom row's.
  EXPECT_GT(slanted.front().find('#'), slanted.back().find('#'));
}

TEST_F(GdiText, FontObjectsFollowTheObjectRules) {
  const LOGFONTA description = Font("Arial", -12, FW_BOLD, HANGEUL_CHARSET, true);
  HFONT font = CreateFontIndirectA(&description);
  ASSERT_NE(font, nullptr);
  EXPECT_EQ(platform::LiveGdiObjects().fonts, before_.fonts + 1);
  LOGFONTA out{};
  EXPECT_EQ(GetObjectA(font, sizeof out, &out), static_cast<int>(sizeof out));
  EXPECT_EQ(std::memcmp(&out, &description, sizeof out), 0);
  EXPECT_EQ(GetObjectA(font, sizeof out - 1, &out), 0);
  EXPECT_EQ(GetObjectType(font), static_cast<DWORD>(OBJ_FONT));

  // Deleting a selected font fails and leaves it drawing.
  MemSurface s(40, 20);
  HGDIOBJ old = SelectObject(s.dc(), font);
  EXPECT_FALSE(DeleteObject(font));
  EXPECT_TRUE(TextOutA(s.dc(), 0, 0, "ab", 2));
  SelectObject(s.dc(), old);
  EXPECT_TRUE(DeleteObject(font));
  EXPECT_EQ(SelectObject(s.dc(), font), nullptr);
  EXPECT_EQ(CreateFontIndirectA(nullptr), nullptr);
}

TEST_F(GdiText, StockFontsDraw) {
  MemSurface s(60, 24);
  s.Fill(kWhite);
  // A fresh memory DC holds SYSTEM_FONT: a bold 16-pixel cell.
  TEXTMETRICA tm{};
  ASSERT_TRUE(GetTextMetricsA(s.dc(), &tm));
  EXPECT_EQ(tm.tmHeight, 16);
  EXPECT_EQ(tm.tmWeight, FW_BOLD);
  ASSERT_TRUE(TextOutA(s.dc(), 0, 0, "Hi", 2));
  EXPECT_EQ(GetPixel(s.dc(), 2, 8), kBlack);  // the H's stem

  HGDIOBJ old = SelectObject(s.dc(), GetStockObject(DEFAULT_GUI_FONT));
  ASSERT_TRUE(GetTextMetricsA(s.dc(), &tm));
  EXPECT_EQ(tm.tmHeight - tm.tmInternalLeading, 11);
  SIZE size{};
  EXPECT_TRUE(GetTextExtentPoint32A(s.dc(), "Hi", 2, &size));
  EXPECT_GT(size.cx, 0);
  SelectObject(s.dc(), old);
  LOGFONTA stock{};
  EXPECT_EQ(GetObjectA(GetStockObject(SYSTEM_FONT), sizeof stock, &stock), static_cast<int>(sizeof stock));
  EXPECT_EQ(stock.lfWeight, FW_BOLD);
}

TEST_F(GdiText, WindowDcsDrawThroughTheirOriginAndClip) {
  // A window DC at (5, 3) that may touch (5, 3) to (25, 13) of the frame draws what
  // a memory DC draws at (5, 3), cut to that rectangle.
  TextSurface frame(40, 20, Font("Arial", -14));
  TextSurface reference(40, 20, Font("Arial", -14));
  HDC window = platform::CreateWindowDC(frame.bitmap(), 5, 3, RECT{5, 3, 25, 13});
  ASSERT_NE(window, nullptr);
  HGDIOBJ old = SelectObject(window, frame.font());
  SetTextColor(window, kRed);
  SetBkMode(window, TRANSPARENT);
  ASSERT_TRUE(TextOutA(window, 0, 0, "Hello", 5));
  ASSERT_TRUE(TextOutA(reference.dc(), 5, 3, "Hello", 5));
  std::vector<COLORREF> expected = reference.Pixels();
  for (int i = 0; i < 40 * 20; ++i) {
    if (i % 40 < 5 || i % 40 >= 25 || i / 40 < 3 || i / 40 >= 13) expected[i] = kKey;
  }
  EXPECT_EQ(frame.Pixels(), expected);
  EXPECT_GT(Count(expected, kRed), 10);
  SelectObject(window, old);
  DeleteDC(window);

  // A DC without a raster measures but cannot draw.
  HDC screen = platform::CreateScreenDC();
  RECT r{0, 0, 0, 0};
  EXPECT_GT(DrawTextA(screen, "ab", -1, &r, DT_CALCRECT), 0);
  EXPECT_GT(r.right, 0);
  r = RECT{0, 0, 50, 50};
  EXPECT_EQ(DrawTextA(screen, "ab", -1, &r, 0), 0);
  EXPECT_FALSE(TextOutA(screen, 0, 0, "ab", 2));
  DeleteDC(screen);
}

TEST_F(GdiText, DrawTextClipsToItsRectangleUnlessNoClip) {
  TextSurface s(80, 20, Font("Arial", -12));
  RECT r{0, 0, 12, 20};
  DrawTextA(s.dc(), "Hello", -1, &r, 0);
  const auto pixels = s.Pixels();
  for (int i = 0; i < 80 * 20; ++i) ASSERT_TRUE(i % 80 < 12 || pixels[i] == kKey) << i;
  s.Fill(kKey);
  DrawTextA(s.dc(), "Hello", -1, &r, DT_NOCLIP);
  EXPECT_GT(static_cast<int>(Ink(s.Pixels(), 80, kRed)[0].size()), 12);
}

TEST_F(GdiText, TheEditControlRuleHidesAPartlyVisibleLastLine) {
  TextSurface s(40, 80, Font("Arial", -12));
  const LONG lh = s.Metrics().tmHeight;
  const auto inkRows = [&] {
    const auto pixels = s.Pixels();
    int last = -1;
    for (int i = 0; i < static_cast<int>(pixels.size()); ++i) {
      if (pixels[i] == kRed) last = i / 40;
    }
    return last;
  };
  const auto draw = [&](LONG bottom, UINT format) {
    s.Fill(kKey);
    RECT r{0, 0, 40, bottom};
    return DrawTextA(s.dc(), "A\nB\nC", -1, &r, format);
  };
  EXPECT_EQ(draw(lh + lh / 2, DT_EDITCONTROL), lh);
  EXPECT_LT(inkRows(), lh);
  // Without the rule, drawing stops after the line that crosses the bottom.
  EXPECT_EQ(draw(lh + lh / 2, 0), 2 * lh);
  EXPECT_GE(inkRows(), lh);
  EXPECT_LT(inkRows(), lh + lh / 2);
  EXPECT_EQ(draw(lh + lh / 2, DT_NOCLIP | DT_EDITCONTROL), 3 * lh);
  EXPECT_GE(inkRows(), 2 * lh);
  // A line whose last row lies one pixel below the rectangle still counts as shown.
  EXPECT_EQ(draw(2 * lh - 1, DT_EDITCONTROL), 2 * lh);
  EXPECT_EQ(draw(2 * lh - 2, DT_EDITCONTROL), lh);
  // The first line is drawn however little of it shows.
  EXPECT_EQ(draw(3, DT_EDITCONTROL), lh);
}

TEST_F(GdiText, LinesAlignLeftCentreOrRight) {
  TextSurface s(100, 20, Font("Arial", -12));
  const LONG width = s.Extent("ab").cx;
  const auto left = [&](UINT format) {
    s.Fill(kKey);
    RECT r{10, 0, 90, 20};
    DrawTextA(s.dc(), "ab", -1, &r, format);
    const auto pixels = s.Pixels();
    int x = 100;
    for (int i = 0; i < static_cast<int>(pixels.size()); ++i) {
      if (pixels[i] == kRed) x = std::min(x, i % 100);
    }
    return x;
  };
  const int atLeft = left(DT_LEFT);
  EXPECT_EQ(left(DT_CENTER), atLeft + (80 - width) / 2);
  EXPECT_EQ(left(DT_RIGHT), atLeft + 80 - width);
}

TEST_F(GdiText, HostileArgumentsFailOrAreBounded) {
  TextSurface s(40, 20, Font("Arial", -12));
  const LONG lh = s.Metrics().tmHeight;
  RECT r{0, 0, 40, 20};
  SIZE size{};
  TEXTMETRICA tm{};
  EXPECT_EQ(DrawTextA(nullptr, "a", -1, &r, 0), 0);
  EXPECT_EQ(DrawTextA(s.dc(), nullptr, -1, &r, 0), 0);
  EXPECT_EQ(DrawTextA(s.dc(), "a", -1, nullptr, 0), 0);
  EXPECT_EQ(DrawTextW(s.dc(), nullptr, 3, &r, 0), 0);
  EXPECT_EQ(DrawTextA(s.dc(), "a", -2, &r, 0), 0);
  EXPECT_FALSE(TextOutA(s.dc(), 0, 0, "a", -1));
  EXPECT_FALSE(TextOutW(s.dc(), 0, 0, nullptr, 2));
  EXPECT_TRUE(TextOutA(s.dc(), 0, 0, nullptr, 0));
  EXPECT_FALSE(GetTextExtentPoint32A(s.dc(), "a", 1, nullptr));
  EXPECT_FALSE(GetTextExtentPoint32W(s.dc(), u"a", -1, &size));
  EXPECT_FALSE(GetTextMetricsA(s.dc(), nullptr));
  EXPECT_FALSE(GetTextMetricsA(reinterpret_cast<HDC>(0x1234), &tm));
  EXPECT_EQ(Count(s.Pixels(), kKey), 40 * 20);

  // Lengths past the text stop at its terminator.
  RECT a{0, 0, 0, 0}, b{0, 0, 0, 0};
  DrawTextA(s.dc(), "Hi", 500, &a, DT_CALCRECT);
  DrawTextA(s.dc(), "Hi", -1, &b, DT_CALCRECT);
  EXPECT_EQ(a.right, b.right);
  // Malformed multibyte text draws replacement characters, one per bad byte.
  SIZE bad{}, replacement{};
  ASSERT_TRUE(GetTextExtentPoint32A(s.dc(), "\xFF\xC0", 2, &bad));
  ASSERT_TRUE(GetTextExtentPoint32W(s.dc(), u"\uFFFD\uFFFD", 2, &replacement));
  EXPECT_EQ(bad.cx, replacement.cx);
  EXPECT_GT(bad.cx, 0);
  ASSERT_TRUE(GetTextExtentPoint32W(s.dc(), u"\xD800x", 2, &bad));  // a lone surrogate
  ASSERT_TRUE(GetTextExtentPoint32W(s.dc(), u"\uFFFDx", 2, &replacement));
  EXPECT_EQ(bad.cx, replacement.cx);

  // Extreme rectangles: results saturate instead of wrapping around.
  RECT far{INT_MAX - 5, INT_MAX - 5, INT_MAX, INT_MAX};
  EXPECT_EQ(DrawTextA(s.dc(), "Hello\nworld", -1, &far, DT_CALCRECT), 2 * lh);
  EXPECT_EQ(far.right, INT_MAX);
  EXPECT_EQ(far.bottom, INT_MAX);
  RECT wide{INT_MIN, INT_MIN, INT_MAX, INT_MAX};
  EXPECT_EQ(
      DrawTextA(s.dc(), "Hello world", -1, &wide, DT_WORDBREAK | DT_CENTER | DT_VCENTER | DT_SINGLELINE),
      INT_MAX);
  RECT inverted{30, 30, -30, -30};
  EXPECT_EQ(DrawTextA(s.dc(), "Hello world", -1, &inverted, DT_WORDBREAK | DT_EDITCONTROL), lh);
  EXPECT_TRUE(TextOutA(s.dc(), INT_MIN, INT_MAX, "Hello", 5));
}

}  // namespace
