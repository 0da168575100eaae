// Calls that replace what a drag works on end the drag at once: the mouse and the
// cursor are let go, the auto-scroll timer stops, and the moves and the release that
// follow reach nothing. Each call still does what it does without a drag.
#include <functional>
#include <string>

#include "test_support.h"

namespace {

constexpr COLORREF kWhite = 0xFFFFFF;

class DragEndingTest : public HostedTest {
 protected:
  // A picture larger than the window, so that a drag near the edge scrolls.
  DragEndingTest() { live_.Show(200, 160, kWhite); }

  CImageEditWnd& editor() { return *live_.editor; }
  bool Dragging() { return editor().m_stroke.buttonDown || editor().m_noToolDrags.Active(); }
  bool Ended() { return GetCapture() == nullptr && !Dragging() && editor().m_stroke.autoScrollTimerId == 0; }
  // Whether the drawing layer has anything but its key colour in that surface row.
  bool RowDrawn(int y) {
    HDC layer = editor().m_surfaces.drawingLayer.dc();
    for (int x = 0; x < editor().m_surfaces.drawingLayer.width(); ++x)
      if (GetPixel(layer, x, y) != kDrawingLayerKeyColor) return true;
    return false;
  }

  LiveEditor live_{100, 80};
};

struct Interruption {
  const char* call;
  std::function<void(CImageEditWnd&, const std::string& picture)> run;
  // What the call does whatever the drag: the history it leaves.
  int historyCount;
};

// A rectangle dragged towards the right edge (its preview on the layer, the view
// auto-scrolling), then interrupted: later moves draw no preview and scroll nothing.
TEST_F(DragEndingTest, EachCallEndsARectangleDragAndLeavesNoPreviewBehind) {
  const std::string picture =
      live_.files.Write("again.bmp", BitmapFile(200, 160, std::vector<COLORREF>(200 * 160, kWhite)));
  const Interruption cases[] = {
      {"Clear 1", [](CImageEditWnd& e, const std::string&) { e.Clear(1); }, 0},
      {"Clear 0", [](CImageEditWnd& e, const std::string&) { e.Clear(0); }, 0},
      {"SetImage", [](CImageEditWnd& e, const std::string& p) { e.SetImage(p.c_str()); }, 3},
      {"SetImageWidth", [](CImageEditWnd& e, const std::string&) { e.SetImageWidth(-100); }, 2},
      {"SetPen", [](CImageEditWnd& e, const std::string&) { e.SetPen(2); }, 2},
  };
  for (const Interruption& c : cases) {
    editor().Clear(1);
    editor().SetImage(picture.c_str());
    editor().SetShape(3);
    live_.Mouse(WM_LBUTTONDOWN, 20, 20);
    live_.Mouse(WM_MOUSEMOVE, 60, 30);
    live_.Mouse(WM_MOUSEMOVE, 95, 30);  // near the right edge: auto-scroll armed
    ASSERT_NE(editor().m_stroke.autoScrollTimerId, 0u) << c.call;
    c.run(editor(), picture);
    EXPECT_TRUE(Ended()) << c.call;
    const POINT scroll{editor().m_view.hScrollPos(), editor().m_view.vScrollPos()};
    platform::AdvanceClock(200);
    live_.Mouse(WM_MOUSEMOVE, 50, 70);
    live_.Mouse(WM_LBUTTONUP, 50, 70);
    EXPECT_EQ(editor().m_view.hScrollPos(), scroll.x) << c.call;
    EXPECT_EQ(editor().m_view.vScrollPos(), scroll.y) << c.call;
    // The moves after the call would have drawn the rectangle's lower edge here.
    EXPECT_FALSE(RowDrawn(scroll.y + 69)) << c.call;
    EXPECT_EQ(editor().m_history.count(), c.historyCount) << c.call;
  }
}

// Clear in the middle of a rectangle selection: the band goes with the drag, and
// nothing is captured by the release that follows.
TEST_F(DragEndingTest, ClearInARectangleSelectionLeavesNoBandAndCapturesNothing) {
  editor().SelectRectangle();
  live_.Mouse(WM_LBUTTONDOWN, 10, 10);
  live_.Mouse(WM_MOUSEMOVE, 40, 30);
  ASSERT_TRUE(RowDrawn(10));
  editor().Clear(1);
  EXPECT_TRUE(Ended());
  live_.Mouse(WM_MOUSEMOVE, 60, 50);
  live_.Mouse(WM_LBUTTONUP, 60, 50);
  for (int y : {10, 30, 50}) EXPECT_FALSE(RowDrawn(y)) << y;
  EXPECT_EQ(editor().m_tools.mode, ToolMode::RectangleSelection);
}

// A pan with no tool keeps scaling allowed, so ScaleImage runs in its middle: it
// scales and the pan ends.
TEST_F(DragEndingTest, ScaleImageEndsAPan) {
  editor().SetNothing();
  live_.Mouse(WM_LBUTTONDOWN, 50, 40);
  live_.Mouse(WM_MOUSEMOVE, 40, 30);
  ASSERT_TRUE(Dragging());
  EXPECT_TRUE(editor().ScaleImage(50));
  EXPECT_TRUE(Ended());
  const POINT scroll{editor().m_view.hScrollPos(), editor().m_view.vScrollPos()};
  live_.Mouse(WM_MOUSEMOVE, 10, 10);
  live_.Mouse(WM_LBUTTONUP, 10, 10);
  EXPECT_EQ(editor().m_view.hScrollPos(), scroll.x);
  EXPECT_EQ(editor().m_view.vScrollPos(), scroll.y);
  EXPECT_LT(editor().m_view.displayedWidth(), 200);
}

}  // namespace
