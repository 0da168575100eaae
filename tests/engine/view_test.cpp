// The display scale. Scaling, scrolling and the bars as a host sees them are
// scenarios (tests/cli/view_*.ies); strokes stretched with the picture and shown at
// the scroll offset are pinned by tools_interrupted.ies and the random sessions of
// history_sequence_test.cpp.
#include "platform/raster.h"
#include "test_support.h"
#include "view/display_scale.h"

namespace {

// Two linear ranges meeting at 100 %; below it, a picture larger than the reference
// surface is shrunk further by the larger of its ratios, never to 0 or below.
TEST(DisplayScaleTest, PercentagesAndTheShrinkCorrection) {
  struct Case {
    int percent, originalWidth, originalHeight;
    double scale;
  };
  for (const Case& c :
       {Case{0, 10, 10, 0.25}, Case{99, 10, 10, 0.9925}, Case{100, 1000, 1000, 1.0}, Case{200, 10, 10, 2.0},
        Case{50, 100, 100, 0.625}, Case{50, 200, 300, 0.625 - 0.06}, Case{0, 10000, 10, 0.001}}) {
    const int reference = c.originalWidth == 10000 ? 10 : 100;
    EXPECT_DOUBLE_EQ(ScaleFromPercentage(c.percent, c.originalWidth, c.originalHeight, reference, reference),
                     c.scale)
        << c.percent << "% of " << c.originalWidth << "x" << c.originalHeight;
  }
}

// A window scrolled down a tall picture with strokes all over it keeps composed rows
// for what it shows, not for all it has shown: the composition buffer gives the rows
// back once they scroll out of sight, and composes them again when they return.
class ViewMemoryTest : public HostedTest {};

TEST_F(ViewMemoryTest, TheCompositionKeepsOnlyTheRowsTheWindowShows) {
  constexpr int kPictureWidth = 64;
  constexpr int kPictureHeight = 1600;
  constexpr std::size_t kSurfaceBytes = std::size_t{kPictureWidth} * kPictureHeight * 4;
  LiveEditor live(120, 100);
  live.Show(kPictureWidth, kPictureHeight, 0x0000FF);
  const int x = live->m_view.imageRect().left + 10;
  const HDC layer = live->m_surfaces.drawingLayer.dc();
  for (int y = 0; y < kPictureHeight; y += 8) SetPixel(layer, x, y, 0x00FF00);
  platform::FlushPaint(live.hostWindow);
  const std::size_t before = platform::raster::LivePixelBytes();

  for (int position = 0; position <= kPictureHeight; position += 50) {
    live->SendMessage(WM_VSCROLL, MAKELPARAM(SB_THUMBPOSITION, position), 0);
    platform::FlushPaint(live.hostWindow);
  }
  // Without the giving back, every band of the buffer would be composed and its own.
  EXPECT_LT(platform::raster::LivePixelBytes() - before, kSurfaceBytes / 4);

  // Rows that come back into sight are composed again: stroke over picture.
  live->SendMessage(WM_VSCROLL, MAKELPARAM(SB_THUMBPOSITION, 0), 0);
  platform::FlushPaint(live.hostWindow);
  RECT client{};
  GetClientRect(live->m_hWnd, &client);
  const RECT shown = live->m_view.ToSurface(client);
  EXPECT_EQ(GetPixel(live->m_surfaces.composition.dc(), x, shown.top + 8), 0x00FF00u);
  EXPECT_EQ(GetPixel(live->m_surfaces.composition.dc(), x + 1, shown.top + 8), 0x0000FFu);
}

}  // namespace
