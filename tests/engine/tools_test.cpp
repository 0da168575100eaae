// The tools through the editor: the pens and brushes the setters leave selected in
// the drawing layer, what decides the cursor and the text box of the text tool. What
// the tools draw, the mouse held over the image for a stroke and what a tool keeps
// while another is chosen are in the scenarios (tests/cli/tools_*.ies).
#include <functional>
#include <string>

#include "platform/gdi_draw.h"
#include "resources/cursor_table.h"
#include "test_support.h"

namespace {

constexpr COLORREF kColor = RGB(0x12, 0x34, 0x56);

class ToolsTest : public HostedTest {
 protected:
  // A picture that fills the whole client area.
  ToolsTest() { live_.Show(100, 80, 0xFFFFFF); }

  HDC Layer() { return live_->m_surfaces.drawingLayer.dc(); }
  EXTLOGPEN SelectedPen() {
    EXTLOGPEN pen{};
    GetObjectA(GetCurrentObject(Layer(), OBJ_PEN), sizeof pen, &pen);
    return pen;
  }
  // The cursor shown over the window now: the cursor is chosen before each move
  // reaches the window, from what the move before found under the pointer.
  int CursorAt(int x, int y) {
    live_.Mouse(WM_MOUSEMOVE, x, y);
    live_.Mouse(WM_MOUSEMOVE, x, y);
    return host_.cursors.empty() ? -2 : host_.cursors.back();
  }

  LiveEditor live_{100, 80};
};

using Setter = std::function<void(CImageEditWnd&)>;

// SetPen's size decides the pen: 1 is cosmetic, 2 and more round-ended, 0 and below
// square-ended; a brush is the pen of the negated size, and the eraser paints the
// drawing layer's key colour. Replaced pens are deleted.
TEST_F(ToolsTest, PenSettersSelectThePenTheSizeCallsFor) {
  struct Case {
    EditorCall call;
    ToolMode mode;
    DWORD style;
    DWORD width;
    COLORREF color;
    int penSize;
  };
  constexpr DWORD kSquare = PS_GEOMETRIC | PS_ENDCAP_SQUARE;
  constexpr DWORD kRound = PS_GEOMETRIC | PS_ENDCAP_ROUND | PS_JOIN_ROUND;
  const Case cases[] = {{EDITOR_CALL(SetPen(1)), ToolMode::Pen, PS_COSMETIC | PS_SOLID, 1, kColor, 1},
                        {EDITOR_CALL(SetPen(0)), ToolMode::Pen, kSquare, 0, kColor, 0},
                        {EDITOR_CALL(SetPen(-3)), ToolMode::Pen, kSquare, 3, kColor, -3},
                        {EDITOR_CALL(SetPen(2)), ToolMode::Pen, kRound, 2, kColor, 2},
                        {EDITOR_CALL(SetBrush(5)), ToolMode::Brush, kSquare, 5, kColor, -5},
                        {EDITOR_CALL(SetBrush(-4)), ToolMode::Brush, kRound, 4, kColor, 4},
                        {EDITOR_CALL(SetEraser(-8)), ToolMode::Eraser, kSquare, 8, kDrawingLayerKeyColor, 4}};
  live_->SetColor("123456");
  const int pensBefore = platform::LiveGdiObjects().pens;
  for (const Case& c : cases) {
    c.call.run(*live_.editor);
    const EXTLOGPEN pen = SelectedPen();
    EXPECT_EQ(pen.elpPenStyle, c.style) << c.call.what;
    EXPECT_EQ(pen.elpWidth, c.width) << c.call.what;
    EXPECT_EQ(pen.elpColor, c.color) << c.call.what;
    EXPECT_EQ(live_->m_tools.mode, c.mode) << c.call.what;
    EXPECT_EQ(live_->m_tools.penSize, c.penSize) << c.call.what;
    EXPECT_EQ(live_->m_tools.toolWidth, static_cast<int>(c.width)) << c.call.what;
    EXPECT_EQ(platform::LiveGdiObjects().pens, pensBefore + 1) << c.call.what;
  }
}

// A pen wider than the raster can draw is refused where it is made, so each pen
// setter takes its failure path: the tool stays what it was and a drag records
// nothing. The widest drawable pen is still taken.
TEST_F(ToolsTest, PensTooWideToDrawAreRefusedAndRecordNothing) {
  constexpr int kTooWide = (1 << 18) + 1;
  const Setter setters[] = {[](CImageEditWnd& e) { e.SetPen(kTooWide); },
                            [](CImageEditWnd& e) { e.SetBrush(-kTooWide); },
                            [](CImageEditWnd& e) { e.SetEraser(kTooWide); }};
  for (const Setter& set : setters) {
    const ToolMode mode = live_->m_tools.mode;
    const int levels = live_->m_history.count();
    set(*live_.editor);
    EXPECT_EQ(live_->m_tools.mode, mode);
    EXPECT_NE(live_->m_tools.toolWidth, kTooWide);
    live_.Drag(10, 10, 60, 50);
    EXPECT_EQ(live_->m_history.count(), levels);
  }
  live_->SetPen(1 << 18);
  EXPECT_EQ(live_->m_tools.mode, ToolMode::Pen);
  EXPECT_EQ(SelectedPen().elpWidth, 1u << 18);
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

// The cursor is the chosen tool's, and follows what changes the tool without a
// setter: the shape style, the end of a colour pick, a capture being held. With no
// tool it says what a drag would do where the pointer is.
TEST_F(ToolsTest, TheCursorFollowsTheToolAndWithNoToolWhatIsUnderThePointer) {
  live_->SetSelectionBox(40, 40);
  EXPECT_EQ(CursorAt(50, 40), kOpenHandMoveCursor);
  EXPECT_EQ(CursorAt(2, 2), kSystemArrowCursor) << "the window class's arrow";

  live_->SetShape(4);
  EXPECT_EQ(CursorAt(50, 40), kArrowEllipseCursor);
  live_->SetShape(2);
  EXPECT_EQ(CursorAt(50, 40), kArrowCurveCursor);
  live_->SelectColor();
  EXPECT_EQ(CursorAt(50, 40), kEyedropperCursor);
  live_.Click(50, 40);
  EXPECT_EQ(CursorAt(50, 40), kArrowCurveCursor) << "back to the tool the pick interrupted";

  live_->SelectRectangle();
  live_.Drag(10, 10, 30, 30);
  ASSERT_EQ(live_->m_tools.mode, ToolMode::RectangleSelectionHeld);
  EXPECT_EQ(CursorAt(50, 40), kArrowSelectionCursor);
}

// The text tool's drag opens a box of at least 30 x 15 with the keyboard focus; with
// a box open, a small drag only closes it and a larger one opens a new one.
TEST_F(ToolsTest, TheTextToolOpensABoxWhereItWasDragged) {
  live_->EnterText();
  const auto boxAt = [&](RECT expected) {
    ASSERT_TRUE(live_->m_textEntry.IsShown());
    RECT shown{};
    GetWindowRect(live_->m_textEntry.box(), &shown);
    POINT origin{0, 0};
    ClientToScreen(live_->m_hWnd, &origin);
    EXPECT_EQ(shown.left - origin.x, expected.left);
    EXPECT_EQ(shown.top - origin.y, expected.top);
    EXPECT_EQ(shown.right - shown.left, expected.right);
    EXPECT_EQ(shown.bottom - shown.top, expected.bottom);
    EXPECT_EQ(GetFocus(), live_->m_textEntry.editWindow());
  };
  live_.Click(10, 10);
  boxAt(RECT{10, 10, 30, 15});
  live_.Drag(60, 50, 30, 20);  // 30 x 30: too narrow to open another
  EXPECT_FALSE(live_->m_textEntry.IsShown());
  live_.Drag(60, 50, 29, 20);
  boxAt(RECT{29, 20, 31, 30});
  live_->SetNothing();  // leaves the box open
  EXPECT_TRUE(live_->m_textEntry.IsShown());
  live_->SetPen(2);
  EXPECT_FALSE(live_->m_textEntry.IsShown());
}

}  // namespace
