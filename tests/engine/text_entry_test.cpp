// The text settings: the font string read and given back, the font and background
// dialogs, and what each setting leaves in the editor.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>

#include "test_support.h"
#include "tools/font_string.h"

namespace {

LOGFONTA FontNamed(const char* face, LONG height, LONG weight) {
  LOGFONTA font{};
  std::strncpy(font.lfFaceName, face, LF_FACESIZE - 1);
  font.lfHeight = height;
  font.lfWeight = weight;
  return font;
}

// Every field of a read font string on one line, colours in hex.
std::string Fields(const FontString& f) {
  std::ostringstream out;
  out << f.face << (f.italic ? " italic" : "") << (f.bold ? " bold" : "") << " " << f.points
      << (f.strikeOut ? " strikeout" : "") << (f.underline ? " underline" : "") << " " << std::hex << f.color;
  if (f.charSetSelector) out << " set " << std::dec << *f.charSetSelector;
  return out.str();
}

TEST(FontStringTest, FieldsAreReadInPlaceWhateverTheirCaseOrLength) {
  const std::pair<std::string, std::string> cases[] = {
      {"Arial,,Bold,12,,,FF0000", "Arial bold 12 ff"},
      // Missing fields are empty: no colour reads as black.
      {"Arial,italic,,10", "Arial italic 10 0"},
      // Words that are not the field's own word count as absent.
      {"Courier,slanted,BOLD,x9,strikeout,UNDERLINE,00ff00,18",
       "Courier bold 0 strikeout underline ff00 set 18"},
      // A face longer than a font description holds keeps 31 bytes, and the fields
      // after an over-long one stay in their places.
      {std::string(40, 'F') + "," + std::string(50, 'i') + ",Bold,7", std::string(31, 'F') + " bold 7 0"},
      // The cut never splits a character: 30 bytes and a three-byte letter keep 30.
      {std::string(30, 'a') + "\xEA\xB5\xB4,,,5", std::string(30, 'a') + " 5 0"},
      {",,,99999999999999", " 2147483647 0"},
      {",,,-99999999999999", " -2147483648 0"}};
  for (const auto& [text, fields] : cases) EXPECT_EQ(Fields(ReadFontString(text.c_str())), fields) << text;
  EXPECT_EQ(Fields(ReadFontString(nullptr)), " 0 0");
  EXPECT_EQ(CharSetForSelector(4), GB2312_CHARSET);  // 18 is checked on the editor
  EXPECT_EQ(CharSetForSelector(-18), ANSI_CHARSET);
}

TEST(FontStringTest, FormatNamesOnlyWhatIsSet) {
  LOGFONTA font = FontNamed("Arial", -16, FW_BOLD);
  EXPECT_EQ(FormatFontString(font, 12, RGB(0xFF, 0, 0)), "Arial,,Bold,12,,,FF0000");
  font.lfWeight = 600;  // heavier than normal, yet not the bold the string names
  font.lfItalic = font.lfUnderline = font.lfStrikeOut = 1;
  EXPECT_EQ(FormatFontString(font, -3, RGB(1, 2, 3)), "Arial,Italic,,-3,StrikeOut,Underline,010203");
  // A face name that fills the description is read no further than it.
  std::memset(font.lfFaceName, 'x', LF_FACESIZE);
  EXPECT_EQ(FormatFontString(font, 0, 0).substr(0, LF_FACESIZE + 1), std::string(LF_FACESIZE, 'x') + ",");
}

class TextSettingsTest : public HostedTest {};

TEST_F(TextSettingsTest, AFontStringSetsTheFontAndComesBackNormalised) {
  LiveEditor live(200, 100);
  EXPECT_EQ(live->SetTextFont("Arial,,Bold,12,,,FF0000"), "Arial,,Bold,12,,,FF0000");
  EXPECT_EQ(live->m_textEntry.textColor, RGB(0xFF, 0, 0));
  LOGFONTA made{};  // the font made, 12 points at 96 pixels an inch
  ASSERT_EQ(GetObjectA(live->m_textEntry.font(), sizeof made, &made), static_cast<int>(sizeof made));
  EXPECT_EQ(made.lfHeight, -16);
  EXPECT_EQ(made.lfWeight, FW_BOLD);
  EXPECT_STREQ(made.lfFaceName, "Arial");

  EXPECT_EQ(live->SetTextFont("Arial,italic,,10"), "Arial,Italic,,10,,,000000");
  EXPECT_EQ(live->m_textEntry.textColor, 0u);
  EXPECT_EQ(live->m_textEntry.fontDescription().lfWeight, FW_NORMAL);

  // Making fonts again and again keeps one.
  const int fonts = platform::LiveGdiObjects().fonts;
  for (int i = 0; i < 5; ++i) live->SetTextFont("Arial,,,9");
  EXPECT_EQ(platform::LiveGdiObjects().fonts, fonts);
}

TEST_F(TextSettingsTest, TheCharacterSetComesFromTheSelectorOrTheUsersLanguage) {
  {
    LiveEditor live(100, 100);
    live->SetTextFont("Arial,,,9,,,000000,18");
    EXPECT_EQ(live->m_textEntry.fontDescription().lfCharSet, HANGEUL_CHARSET);
  }
  platform::SetUserDefaultLangID(0x0804);  // Chinese (PRC)
  LiveEditor chinese(100, 100);
  chinese->SetTextFont("Arial,,,9");
  EXPECT_EQ(chinese->m_textEntry.fontDescription().lfCharSet, GB2312_CHARSET);
  chinese->SetTextFont("Arial,,,9,,,,0");
  EXPECT_EQ(chinese->m_textEntry.fontDescription().lfCharSet, ANSI_CHARSET);
}

TEST_F(TextSettingsTest, TheFontDialogEditsTheDescriptionOrChangesNothing) {
  LiveEditor live(100, 100);
  live->SetTextFont("Arial,,,12,,,00FF00");
  const LOGFONTA before = live->m_textEntry.fontDescription();

  EXPECT_EQ(live->SetTextFont("dialog"), "");  // cancelled
  ASSERT_TRUE(host_.fontOpenedWith.has_value());
  EXPECT_STREQ(host_.fontOpenedWith->lfFaceName, "Arial");
  EXPECT_EQ(std::memcmp(&live->m_textEntry.fontDescription(), &before, sizeof before), 0);
  EXPECT_EQ(live->m_textEntry.textColor, RGB(0, 0xFF, 0));

  host_.fontAnswer = RecordingHost::FontAnswer{FontNamed("Liberation Serif", -21, FW_BOLD), RGB(0, 0, 0x80)};
  // 21 pixels are 15.75 points, rounded to the nearest.
  EXPECT_EQ(live->SetTextFont(nullptr), "Liberation Serif,,Bold,16,,,000080");
  EXPECT_EQ(live->m_textEntry.textColor, RGB(0, 0, 0x80));
  EXPECT_EQ(live->SetTextFont(""), "Liberation Serif,,Bold,16,,,000080");
}

TEST_F(TextSettingsTest, TheBackgroundIsAColourTransparentOrWhatTheDialogGives) {
  LiveEditor live(100, 100);
  EXPECT_EQ(live->SetTextBackgroundColor("FFFF00"), "");
  EXPECT_EQ(live->m_textEntry.backgroundColor(), RGB(0xFF, 0xFF, 0));
  LOGBRUSH brush{};
  ASSERT_EQ(GetObjectA(live->m_textEntry.backgroundBrush(), sizeof brush, &brush),
            static_cast<int>(sizeof brush));
  EXPECT_EQ(brush.lbColor, RGB(0xFF, 0xFF, 0));
  EXPECT_EQ(live->m_textEntry.StampKey(), RGB(0x0F, 0x0F, 0));

  EXPECT_EQ(live->SetTextBackgroundColor("transparent"), "");
  EXPECT_TRUE(live->m_textEntry.backgroundTransparent);
  EXPECT_EQ(live->m_objects.storedTransparency, 100);
  EXPECT_EQ(live->m_textEntry.backgroundColor(), RGB(0xFF, 0xFF, 0));  // the colour stays
  EXPECT_EQ(live->m_textEntry.StampKey(), RGB(0xFF, 0xFF, 0));

  // A cancelled dialog changes nothing; a colour chosen ends transparency.
  EXPECT_EQ(live->SetTextBackgroundColor("DIALOG"), "");
  EXPECT_EQ(host_.colorOpenedWith, RGB(0xFF, 0xFF, 0));
  EXPECT_TRUE(live->m_textEntry.backgroundTransparent);
  host_.colorAnswer = RGB(0x12, 0x34, 0x56);
  EXPECT_EQ(live->SetTextBackgroundColor(""), "123456");
  EXPECT_FALSE(live->m_textEntry.backgroundTransparent);
  EXPECT_EQ(live->m_textEntry.backgroundColor(), RGB(0x12, 0x34, 0x56));

  const int brushes = platform::LiveGdiObjects().brushes;
  for (int i = 0; i < 5; ++i) live->SetTextBackgroundColor("00FF00");
  EXPECT_EQ(platform::LiveGdiObjects().brushes, brushes);
}

// Typed text stamped into the drawing layer; picture and window agree in size.
class TypedTextTest : public HostedTest {
 protected:
  TypedTextTest() { live_.Show(200, 100, RGB(0x80, 0x80, 0x80)); }
  ~TypedTextTest() override { platform::SetKeyboardLayout(0x0409); }

  // Types into a box from (10, 10) to (150, 60) and closes it; the drawing layer after.
  std::vector<COLORREF> TypeAndClose(const std::u16string& text) {
    live_->EnterText();
    live_.Drag(10, 10, 150, 60);
    for (char16_t c : text) platform::CharInput(live_.hostWindow, c);
    live_->SetPen(3);
    return Layer();
  }
  std::vector<COLORREF> Layer() { return SurfaceColors(live_->m_surfaces.drawingLayer.dc(), 200, 100); }
  static int Count(const std::vector<COLORREF>& pixels, COLORREF color) {
    return static_cast<int>(std::count(pixels.begin(), pixels.end(), color));
  }

  LiveEditor live_{200, 100};
};

TEST_F(TypedTextTest, ATransparentBackgroundStampsOnlyTheGlyphs) {
  live_->SetTextFont("Arial,,Bold,12,,,FF0000");
  live_->SetTextBackgroundColor("TRANSPARENT");
  const std::vector<COLORREF> layer = TypeAndClose(u"Hi there");
  const int red = Count(layer, RGB(0xFF, 0, 0));
  EXPECT_GT(red, 40);
  // Nothing but glyphs and the untouched layer: no smoothed edge, no background.
  EXPECT_EQ(red + Count(layer, kDrawingLayerKeyColor), 200 * 100);
  EXPECT_FALSE(live_->m_textEntry.IsShown());
  EXPECT_TRUE(live_->m_textEntry.TypedText().empty());
}

TEST_F(TypedTextTest, AnOpaqueBackgroundStampsTheWholeBoxWhereItIsShown) {
  live_->SetTextFont("Arial,,,10,,,0000FF");
  live_->SetTextBackgroundColor("FFFF00");
  const RECT box = live_->m_textEntry.TypedTextRect();  // closed: nothing
  EXPECT_EQ(box.right - box.left, 0);
  live_->EnterText();
  live_.Drag(10, 10, 150, 60);
  platform::CharInput(live_.hostWindow, 'W');
  const RECT edit = live_->m_textEntry.TypedTextRect();
  POINT topLeft{edit.left, edit.top};
  ScreenToClient(live_->m_hWnd, &topLeft);
  live_->SetPen(3);
  const std::vector<COLORREF> layer = Layer();
  const RECT stamped{topLeft.x, topLeft.y, topLeft.x + edit.right - edit.left,
                     topLeft.y + edit.bottom - edit.top};
  ASSERT_GT(stamped.right, stamped.left);
  int blue = 0;
  for (int y = 0; y < 100; ++y) {
    for (int x = 0; x < 200; ++x) {
      const COLORREF pixel = layer[static_cast<std::size_t>(y * 200 + x)];
      if (!PtInRect(&stamped, POINT{x, y})) {
        ASSERT_EQ(pixel, kDrawingLayerKeyColor) << x << "," << y;
      } else {  // the whole box, glyphs or background
        ASSERT_TRUE(pixel == RGB(0xFF, 0xFF, 0) || pixel == RGB(0, 0, 0xFF)) << x << "," << y;
        blue += pixel == RGB(0, 0, 0xFF) ? 1 : 0;
      }
    }
  }
  EXPECT_GT(blue, 10);
}

// Where the boxes open is the text tool's (tools_test.cpp); here what is stamped.
TEST_F(TypedTextTest, AnEmptyBoxStampsNothingAndASmallClickStampsTheBox) {
  EXPECT_EQ(Count(TypeAndClose(u""), kDrawingLayerKeyColor), 200 * 100);

  live_->SetTextBackgroundColor("TRANSPARENT");
  live_->EnterText();
  live_.Drag(10, 10, 150, 60);
  platform::CharInput(live_.hostWindow, 'A');
  // A click while the box is open stamps it and opens nothing.
  live_.Click(100, 80);
  EXPECT_FALSE(live_->m_textEntry.IsShown());
  EXPECT_LT(Count(Layer(), kDrawingLayerKeyColor), 200 * 100);
}

TEST_F(TypedTextTest, KoreanTypedOnAKoreanKeyboardIsDrawnThroughItsCodePage) {
  const std::u16string hangul = u"\uD55C\uAE00 \uAC00";  // 한글 가
  live_->SetTextBackgroundColor("TRANSPARENT");
  // The Korean set's text arrives in code page 949; the same face draws the UTF-8
  // text of the ANSI set identically.
  platform::SetKeyboardLayout(1042);
  live_->SetTextFont("\xEA\xB5\xB4\xEB\xA6\xBC\xEC\xB2\xB4,,,14,,,000000,18");
  const std::vector<COLORREF> korean = TypeAndClose(hangul);
  EXPECT_GT(Count(korean, 0), 60);
  live_->Clear(0);
  platform::SetKeyboardLayout(0x0409);
  live_->SetTextFont("\xEA\xB5\xB4\xEB\xA6\xBC\xEC\xB2\xB4,,,14,,,000000,9");
  EXPECT_EQ(TypeAndClose(hangul), korean);
  // Code page 949 bytes read as UTF-8 are not Hangul.
  live_->Clear(0);
  platform::SetKeyboardLayout(1042);
  EXPECT_NE(TypeAndClose(hangul), korean);
}

TEST_F(TypedTextTest, AnOpenBoxMovesOverTheSelectedObjectAtTheNextPaint) {
  const std::string icon =
      live_.files.Write("icon.bmp", BitmapFile(20, 10, std::vector<COLORREF>(200, 0xFF)));
  live_->InsertIcon(40, 30, icon.c_str());
  live_.Mouse(WM_RBUTTONDOWN, 45, 35);  // selects it; the menu is dismissed
  ASSERT_EQ(live_->m_objects.selected(), 0);
  live_->EnterText();
  live_.Drag(100, 50, 180, 90);
  ASSERT_TRUE(live_->m_textEntry.IsShown());
  live_->RedrawWindow();
  RECT box{};
  GetWindowRect(live_->m_textEntry.box(), &box);
  POINT topLeft{box.left, box.top};
  ScreenToClient(live_->m_hWnd, &topLeft);
  EXPECT_EQ(topLeft.x, 39);
  EXPECT_EQ(topLeft.y, 29);
  EXPECT_EQ(box.right - box.left, 22);
  EXPECT_EQ(box.bottom - box.top, 11);
}

}  // namespace
