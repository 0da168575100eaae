// The tools through the editor: the pens and brushes the setters leave selected in
// the drawing layer, the cursor of every tool, the mouse frame of a tool action
// (capture, the cursor kept over the image) and the text box of the text tool.
#include <algorithm>
#include <functional>
#include <string>

#include "platform/gdi_draw.h"
#include "test_support.h"

namespace {

constexpr COLORREF kColor = RGB(0x12, 0x34, 0x56);

class ToolsTest : public HostedTest {
 protected:
  // An editor whose whole client area shows the image.
  ToolsTest() { live_->m_view.imageRect = RECT{0, 0, 100, 80}; }

  HDC Layer() { return live_->m_surfaces.drawingLayer.dc(); }
  EXTLOGPEN SelectedPen() {
    EXTLOGPEN pen{};
    GetObjectA(GetCurrentObject(Layer(), OBJ_PEN), sizeof pen, &pen);
    return pen;
  }
  void Mouse(UINT message, int x, int y) { platform::MouseInput(live_.hostWindow, message, x, y); }
  void Click(int x, int y) { Drag(x, y, x, y); }
  void Drag(int x0, int y0, int x1, int y1) {
    Mouse(WM_LBUTTONDOWN, x0, y0);
    Mouse(WM_MOUSEMOVE, x1, y1);
    Mouse(WM_LBUTTONUP, x1, y1);
  }

  LiveEditor live_{100, 80};
};

using Setter = std::function<void(CImageEditWnd&)>;

// SetPen's size decides the pen: 1 is cosmetic, 2 and more round-ended, 0 and below
// square-ended; a brush is the pen of the negated size, and the eraser paints the
// drawing layer's key colour. Replaced pens are deleted.
TEST_F(ToolsTest, PenSettersSelectThePenTheSizeCallsFor) {
  struct Case {
    const char* call;
    Setter set;
    ToolMode mode;
    DWORD style;
    DWORD width;
    COLORREF color;
    int penSize;
  };
  constexpr DWORD kSquare = PS_GEOMETRIC | PS_ENDCAP_SQUARE;
  constexpr DWORD kRound = PS_GEOMETRIC | PS_ENDCAP_ROUND | PS_JOIN_ROUND;
  const Case cases[] = {
      {"SetPen(1)", [](CImageEditWnd& e) { e.SetPen(1); }, ToolMode::Pen, PS_COSMETIC | PS_SOLID, 1, kColor,
       1},
      {"SetPen(0)", [](CImageEditWnd& e) { e.SetPen(0); }, ToolMode::Pen, kSquare, 0, kColor, 0},
      {"SetPen(-3)", [](CImageEditWnd& e) { e.SetPen(-3); }, ToolMode::Pen, kSquare, 3, kColor, -3},
      {"SetPen(2)", [](CImageEditWnd& e) { e.SetPen(2); }, ToolMode::Pen, kRound, 2, kColor, 2},
      {"SetBrush(5)", [](CImageEditWnd& e) { e.SetBrush(5); }, ToolMode::Brush, kSquare, 5, kColor, -5},
      {"SetBrush(-4)", [](CImageEditWnd& e) { e.SetBrush(-4); }, ToolMode::Brush, kRound, 4, kColor, 4},
      {"SetEraser(-8)", [](CImageEditWnd& e) { e.SetEraser(-8); }, ToolMode::Eraser, kSquare, 8,
       kDrawingLayerKeyColor, 4},
  };
  live_->SetColor("123456");
  const int pensBefore = platform::LiveGdiObjects().pens;
  for (const Case& c : cases) {
    c.set(*live_.editor);
    const EXTLOGPEN pen = SelectedPen();
    EXPECT_EQ(pen.elpPenStyle, c.style) << c.call;
    EXPECT_EQ(pen.elpWidth, c.width) << c.call;
    EXPECT_EQ(pen.elpColor, c.color) << c.call;
    EXPECT_EQ(live_->m_tools.mode, c.mode) << c.call;
    EXPECT_EQ(live_->m_tools.penSize, c.penSize) << c.call;
    EXPECT_EQ(live_->m_tools.toolWidth, static_cast<int>(c.width)) << c.call;
    EXPECT_EQ(platform::LiveGdiObjects().pens, pensBefore + 1) << c.call;
  }
}

// Styles 1 to 6 are kept and anything else draws lines; only the filled shapes have a
// brush of their own. A new colour in shape mode reaches both outline and fill.
TEST_F(ToolsTest, SetShapeKeepsStylesOneToSixAndFillsOnlyTheFilledShapes) {
  live_->SetColor("00FF00");
  live_->SetPen(2);
  struct Case {
    int argument;
    ShapeStyle style;
    bool filled;
  };
  for (const Case& c : {Case{0, ShapeStyle::Line, false}, Case{2, ShapeStyle::Curve, false},
                        Case{5, ShapeStyle::FilledRectangle, true}, Case{4, ShapeStyle::Ellipse, false},
                        Case{6, ShapeStyle::FilledEllipse, true}, Case{7, ShapeStyle::Line, false},
                        Case{-1, ShapeStyle::Line, false}, Case{3, ShapeStyle::Rectangle, false}}) {
    live_->SetShape(c.argument);
    EXPECT_EQ(live_->m_tools.shapeStyle, c.style) << c.argument;
    EXPECT_EQ(live_->m_tools.mode, ToolMode::Shape) << c.argument;
    HGDIOBJ brush = GetCurrentObject(Layer(), OBJ_BRUSH);
    if (c.filled) {
      LOGBRUSH fill{};
      GetObjectA(brush, sizeof fill, &fill);
      EXPECT_EQ(fill.lbColor, 0x00FF00u) << c.argument;
    } else {
      EXPECT_EQ(brush, GetStockObject(NULL_BRUSH)) << c.argument;
    }
  }
  live_->SetShape(5);
  EXPECT_EQ(live_->SetColor("0000ff"), "0000FF");
  LOGBRUSH fill{};
  GetObjectA(GetCurrentObject(Layer(), OBJ_BRUSH), sizeof fill, &fill);
  EXPECT_EQ(fill.lbColor, 0xFF0000u);
  EXPECT_EQ(SelectedPen().elpColor, 0xFF0000u);
  EXPECT_EQ(SelectedPen().elpWidth, 2u);
  EXPECT_EQ(live_->m_tools.mode, ToolMode::Shape);
}

// A spray tries r * r * 3.14 (truncated) over the density times, four dots a try; a
// radius of 0 sprays nothing, a negative one as its magnitude, and a huge one is
// capped so that a press cannot stall the editor.
TEST(AirbrushTest, TriesOfOneSpray) {
  struct Case {
    int radius, density;
    long long tries;
  };
  for (const Case& c :
       {Case{10, 64, 4}, Case{10, 32, 9}, Case{10, 1, 314}, Case{-10, 1, 314}, Case{0, 1, 0}, Case{1, 1, 3},
        Case{1, 4, 0}, Case{300, 1, 282600}, Case{1 << 30, 64, kMaxSprayTries}}) {
    EXPECT_EQ(SprayTries(c.radius, c.density), std::min(c.tries, kMaxSprayTries))
        << c.radius << "/" << c.density;
  }
}

// The cursor follows the tool; with no tool it shows what a drag would do there.
TEST_F(ToolsTest, EveryToolShowsItsCursor) {
  struct Case {
    const char* tool;
    Setter set;
    int cursor;
  };
  const auto mode = [](ToolMode m) { return [m](CImageEditWnd& e) { e.m_tools.mode = m; }; };
  const auto shape = [](int style) { return [style](CImageEditWnd& e) { e.SetShape(style); }; };
  const Case cases[] = {
      {"no tool", [](CImageEditWnd& e) { e.SetNothing(); }, 0},
      {"no tool, a picture that scrolls", [](CImageEditWnd& e) { e.m_view.vScrollShown = true; }, 215},
      {"no tool, over the selection box", [](CImageEditWnd& e) { e.SetSelectionBox(40, 40); }, 217},
      {"colour pick", [](CImageEditWnd& e) { e.SelectColor(); }, 214},
      {"fill", [](CImageEditWnd& e) { e.FillWithSelectedColor(); }, 205},
      {"eraser", [](CImageEditWnd& e) { e.SetEraser(4); }, 203},
      {"pen", [](CImageEditWnd& e) { e.SetPen(4); }, 201},
      {"brush", [](CImageEditWnd& e) { e.SetBrush(4); }, 202},
      {"airbrush", [](CImageEditWnd& e) { e.SetAirBrush(4); }, 211},
      {"bitmap brush", mode(ToolMode::BitmapBrush), 210},
      {"line", shape(1), 206},
      {"curve", shape(2), 207},
      {"rectangle", shape(3), 208},
      {"ellipse", shape(4), 209},
      {"filled rectangle", shape(5), 208},
      {"filled ellipse", shape(6), 209},
      {"text", [](CImageEditWnd& e) { e.EnterText(); }, 213},
      {"rectangle selection", [](CImageEditWnd& e) { e.SelectRectangle(); }, 212},
      {"held selection", mode(ToolMode::RectangleSelectionHeld), 212},
      {"irregular selection", [](CImageEditWnd& e) { e.SelectIrregular(); }, 204},
      {"cut", [](CImageEditWnd& e) { e.CutImage(); }, 220},
      {"mosaic", [](CImageEditWnd& e) { e.MosaicImage(); }, 220},
      {"frame", mode(ToolMode::Frame), 0},
  };
  SetCursor(nullptr);
  for (const Case& c : cases) {
    c.set(*live_.editor);
    // The cursor is chosen before each move reaches the window, from what the move
    // before found under the pointer.
    Mouse(WM_MOUSEMOVE, 50, 40);
    Mouse(WM_MOUSEMOVE, 50, 40);
    ASSERT_FALSE(host_.cursors.empty());
    EXPECT_EQ(host_.cursors.back(), c.cursor) << c.tool;
  }
}

// A press on the image captures the mouse and keeps the cursor over the visible part
// of the image until the release; a press beside the image does nothing.
TEST_F(ToolsTest, AToolActionKeepsTheCursorOverTheImage) {
  live_->m_view.imageRect = RECT{20, 10, 80, 50};
  live_->SetPen(1);
  Mouse(WM_LBUTTONDOWN, 10, 10);
  EXPECT_FALSE(live_->m_tools.stroke.buttonDown);
  EXPECT_EQ(GetCapture(), nullptr);
  Mouse(WM_LBUTTONUP, 10, 10);

  Mouse(WM_LBUTTONDOWN, 30, 20);
  EXPECT_EQ(GetCapture(), live_->m_hWnd);
  RECT clip{};
  GetClipCursor(&clip);
  POINT origin{0, 0};
  ClientToScreen(live_->m_hWnd, &origin);
  EXPECT_EQ(clip.left, origin.x + 20);
  EXPECT_EQ(clip.top, origin.y + 10);
  EXPECT_EQ(clip.right, origin.x + 80);
  EXPECT_EQ(clip.bottom, origin.y + 50);
  Mouse(WM_MOUSEMOVE, 95, 20);  // confined: the stroke ends at the image's edge
  Mouse(WM_LBUTTONUP, 95, 20);
  EXPECT_EQ(GetPixel(Layer(), 78, 20), 0u);
  EXPECT_EQ(GetPixel(Layer(), 85, 20), kDrawingLayerKeyColor);
  EXPECT_EQ(GetCapture(), nullptr);
  RECT freed{};
  GetClipCursor(&freed);
  EXPECT_NE(freed.right - freed.left, 60);
}

// The text tool's drag opens a box of at least 30 x 15 with the keyboard focus; with
// a box open, a small drag only closes it and a larger one opens a new one.
TEST_F(ToolsTest, TheTextToolOpensABoxWhereItWasDragged) {
  live_->EnterText();
  const auto boxAt = [&](RECT expected) {
    ASSERT_TRUE(live_->m_textEdit.IsShown());
    RECT shown{};
    GetWindowRect(live_->m_textEdit.m_hWnd, &shown);
    POINT origin{0, 0};
    ClientToScreen(live_->m_hWnd, &origin);
    EXPECT_EQ(shown.left - origin.x, expected.left);
    EXPECT_EQ(shown.top - origin.y, expected.top);
    EXPECT_EQ(shown.right - shown.left, expected.right);
    EXPECT_EQ(shown.bottom - shown.top, expected.bottom);
    EXPECT_EQ(GetFocus(), live_->m_textEdit.m_hWnd);
  };
  Click(10, 10);
  boxAt(RECT{10, 10, 30, 15});
  Drag(60, 50, 30, 20);  // 30 x 30: too narrow to open another
  EXPECT_FALSE(live_->m_textEdit.IsShown());
  Drag(60, 50, 29, 20);
  boxAt(RECT{29, 20, 31, 30});
  live_->SetNothing();  // leaves the box open
  EXPECT_TRUE(live_->m_textEdit.IsShown());
  live_->SetPen(2);
  EXPECT_FALSE(live_->m_textEdit.IsShown());
}

}  // namespace
