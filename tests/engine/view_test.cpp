// The display scale and how strokes follow the view. Scaling, scrolling and the bars
// as a host sees them are scenarios: tests/cli/view_*.ies.
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

class ViewTest : public HostedTest {};

TEST_F(ViewTest, StrokesAreStretchedWithTheImage) {
  LiveEditor live(100, 80);
  live.Show(40, 20, 0x0000FF);
  SetPixel(live->m_surfaces.drawingLayer.dc(), 30, 30, 0x00FF00);  // the image's top-left pixel
  live->SetImageWidth(-200);
  ASSERT_EQ(live->m_view.imageRect().left, 10);
  ASSERT_EQ(live->m_view.imageRect().top, 20);
  // One pixel became two by two.
  const std::vector<COLORREF> layer = SurfaceColors(live->m_surfaces.drawingLayer.dc(), 100, 80);
  for (const auto& [x, y, color] : {std::tuple{10, 20, 0x00FF00u},
                                    {11, 21, 0x00FF00u},
                                    {12, 21, kDrawingLayerKeyColor},
                                    {11, 22, kDrawingLayerKeyColor}}) {
    EXPECT_EQ(layer[static_cast<std::size_t>(y * 100 + x)], color) << x << "," << y;
  }
}

TEST_F(ViewTest, PaintShowsStrokesAtTheScrollOffset) {
  LiveEditor live(50, 40);
  live.Show(100, 10, 0x0000FF);
  SetPixel(live->m_surfaces.drawingLayer.dc(), 5, 20, 0x00FF00);
  live->SendMessage(WM_HSCROLL, MAKELPARAM(SB_THUMBPOSITION, 4), 0);

  int width = 0, height = 0;
  const std::uint32_t* frame = platform::BitmapPixels(platform::HostFrame(live.hostWindow), &width, &height);
  ASSERT_NE(frame, nullptr);
  const auto at = [&](int x, int y) { return frame[y * width + x] & 0xFFFFFF; };
  // Frames hold 0x00RRGGBB: the stroke at surface x 5 shows at window x 1, beside the
  // white below the image (10 pixels high, centred at top 6 in the 23 the bar leaves).
  EXPECT_EQ(at(1, 20), 0x00FF00u);
  EXPECT_EQ(at(2, 20), 0xFFFFFFu);
  EXPECT_EQ(at(1, 15), 0xFF0000u);
}

}  // namespace
