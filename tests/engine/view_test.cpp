#include "test_support.h"
#include "view/display_scale.h"

namespace {

class ViewTest : public HostedTest {
 protected:
  // Gives the editor an original of that size, as a load would, without laying it out.
  static void GiveOriginal(LiveEditor& live, int width, int height, COLORREF color = 0x0000FF) {
    live->m_surfaces.original = platform::OwnedBitmap(MakeBitmap(
        live->m_surfaces.composition.dc(), width, height, std::vector<COLORREF>(width * height, color)));
    live->m_view.originalWidth = width;
    live->m_view.originalHeight = height;
    live->m_view.scalingAllowed = true;
  }
  static SCROLLINFO ScrollInfo(HWND window, int bar) {
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 0, 0, 0, 0};
    GetScrollInfo(window, bar, &info);
    return info;
  }
};

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

TEST_F(ViewTest, ScaleImageWorksOnlyWhileAllowedAndClampsThePercentage) {
  LiveEditor live(100, 80);
  GiveOriginal(live, 40, 20);
  live->m_view.scalingAllowed = false;
  EXPECT_FALSE(live->ScaleImage(50));
  EXPECT_DOUBLE_EQ(live->m_view.scale, 1.0);

  live->m_view.scalingAllowed = true;
  EXPECT_TRUE(live->ScaleImage(250));
  EXPECT_DOUBLE_EQ(live->m_view.scale, 2.0);
  EXPECT_TRUE(live->ScaleImage(-5));
  EXPECT_DOUBLE_EQ(live->m_view.scale, 0.25);
  EXPECT_EQ(live->m_view.displayedWidth, 10);
  EXPECT_EQ(live->m_view.displayedHeight, 5);
  // Centred in the image surface, halves truncated.
  EXPECT_EQ(live->m_view.imageRect.left, 45);
  EXPECT_EQ(live->m_view.imageRect.top, 38);
  // The drawing layer now holds the scaled original on white.
  EXPECT_EQ(GetPixel(live->m_surfaces.drawingLayer.dc(), 46, 39), 0x0000FFu);
  EXPECT_EQ(GetPixel(live->m_surfaces.drawingLayer.dc(), 44, 39), 0xFFFFFFu);
}

TEST_F(ViewTest, ABarAppearsOnlyForContentWiderThanTheClientAreaAndLimitsThePosition) {
  LiveEditor live(600, 400);
  live->UpdateScrollBars(600, 400);
  EXPECT_FALSE(live->m_view.hScrollShown);
  live->UpdateScrollBars(601, 100);
  EXPECT_TRUE(live->m_view.hScrollShown);
  EXPECT_FALSE(live->m_view.vScrollShown);
  EXPECT_EQ(live->m_view.viewHeight, 400 - SCROLLBAR_THICKNESS);

  live->m_view.displayedWidth = 1000;
  live->m_view.displayedHeight = 100;
  live->UpdateScrollBars(1000, 100);
  const SCROLLINFO info = ScrollInfo(live->m_hWnd, SB_HORZ);
  EXPECT_EQ(info.nMax, 420);
  EXPECT_EQ(info.nPage, 21u);

  live->SendMessage(WM_HSCROLL, MAKELPARAM(SB_THUMBPOSITION, 500), 0);
  EXPECT_EQ(live->m_view.hScrollPos, 400);
  live->SendMessage(WM_HSCROLL, SB_PAGEDOWN, 0);
  EXPECT_EQ(live->m_view.hScrollPos, 400);
  live->SendMessage(WM_HSCROLL, MAKELPARAM(SB_THUMBTRACK, 3), 0);
  EXPECT_EQ(live->m_view.hScrollPos, 3);
  // A line step of -(1000/50) from 3 ends at 0.
  live->SendMessage(WM_HSCROLL, SB_LINEUP, 0);
  EXPECT_EQ(live->m_view.hScrollPos, 0);
  EXPECT_EQ(GetScrollPos(live->m_hWnd, SB_HORZ), 0);
}

TEST_F(ViewTest, StepSizesComeFromTheDisplayedSize) {
  LiveEditor live(20, 20);
  live->m_view.viewHeight = 0;
  live->m_view.displayedHeight = 49;
  live->SendMessage(WM_VSCROLL, SB_LINEDOWN, 0);
  EXPECT_EQ(live->m_view.vScrollPos, 0);  // 49 / 50 is no step at all
  for (int height : {40, 59}) {
    live->m_view.vScrollPos = 0;
    live->m_view.displayedHeight = height;
    live->SendMessage(WM_VSCROLL, SB_PAGEDOWN, 0);
    EXPECT_EQ(live->m_view.vScrollPos, 2) << height;
  }
  live->SendMessage(WM_VSCROLL, SB_ENDSCROLL, 0);
  EXPECT_EQ(live->m_view.vScrollPos, 2);
}

TEST_F(ViewTest, SetImageWidthZeroHidesTheBarsAndResetsTheView) {
  LiveEditor live(100, 100);
  GiveOriginal(live, 300, 50);
  live->SetImageWidth(-100);
  ASSERT_TRUE(live->m_view.hScrollShown);
  live->m_view.hScrollPos = 40;
  live->SetImageWidth(0);
  EXPECT_FALSE(live->m_view.hScrollShown);
  EXPECT_EQ(live->m_view.hScrollPos, 0);
  EXPECT_EQ(live->m_view.viewWidth, 0);
  EXPECT_EQ(live->m_view.requestedImageWidth, 0);
  RECT client{};
  GetClientRect(live->m_hWnd, &client);
  EXPECT_EQ(client.bottom, 100);
}

TEST_F(ViewTest, SetImageWidthNeverEnlargesAndCentresInTheLargerOfClientAndImage) {
  LiveEditor live(100, 80);
  GiveOriginal(live, 40, 20);
  live->SetImageWidth(400);
  EXPECT_EQ(live->m_view.requestedImageWidth, 400);
  EXPECT_DOUBLE_EQ(live->m_view.scale, 1.0);
  EXPECT_EQ(live->m_view.imageRect.left, 30);
  EXPECT_EQ(live->m_view.imageRect.top, 30);

  live->SetImageWidth(20);
  EXPECT_DOUBLE_EQ(live->m_view.scale, 0.5);
  EXPECT_EQ(live->m_view.displayedWidth, 20);
  EXPECT_EQ(live->m_view.displayedHeight, 10);
  EXPECT_EQ(live->m_surfaces.composition.width(), 100);

  live->SetImageWidth(-100);
  EXPECT_EQ(live->m_view.requestedImageWidth, 0);
  EXPECT_EQ(live->m_view.displayedWidth, 40);
  EXPECT_EQ(GetPixel(live->m_surfaces.imageSurface.dc(), 30, 30), 0x0000FFu);
  EXPECT_EQ(GetPixel(live->m_surfaces.imageSurface.dc(), 29, 30), 0xFFFFFFu);

  // A stroke is stretched with the image; a wide image gets surfaces as large as itself.
  SetPixel(live->m_surfaces.drawingLayer.dc(), 30, 30, 0x00FF00);  // the image's top-left pixel
  live->SetImageWidth(-200);
  EXPECT_EQ(live->m_view.displayedWidth, 80);
  EXPECT_EQ(live->m_view.imageRect.left, 10);
  EXPECT_EQ(live->m_view.imageRect.top, 20);
  // One pixel became two by two.
  EXPECT_EQ(GetPixel(live->m_surfaces.drawingLayer.dc(), 11, 21), 0x00FF00u);
  EXPECT_EQ(GetPixel(live->m_surfaces.drawingLayer.dc(), 12, 21), kDrawingLayerKeyColor);

  GiveOriginal(live, 300, 20);
  live->SetImageWidth(-100);
  EXPECT_EQ(live->m_surfaces.composition.width(), 300);
  EXPECT_EQ(live->m_view.imageRect.left, 0);
  EXPECT_TRUE(live->m_view.hScrollShown);
}

TEST_F(ViewTest, PaintShowsTheComposedViewAtTheScrollOffset) {
  LiveEditor live(50, 40);
  GiveOriginal(live, 100, 10, 0x0000FF);
  live->SetImageWidth(-100);
  SetPixel(live->m_surfaces.drawingLayer.dc(), 5, 20, 0x00FF00);
  live->SendMessage(WM_HSCROLL, MAKELPARAM(SB_THUMBPOSITION, 4), 0);

  int width = 0, height = 0;
  const std::uint32_t* frame = platform::BitmapPixels(platform::HostFrame(live.hostWindow), &width, &height);
  ASSERT_NE(frame, nullptr);
  const auto at = [&](int x, int y) { return frame[y * width + x] & 0xFFFFFF; };
  // The bar leaves a 23-pixel-high client area, in which the 10-pixel-high image
  // is centred at top 6. Frames hold 0x00RRGGBB: the stroke at surface x 5 shows
  // at window x 1, beside the white below the image.
  EXPECT_EQ(at(1, 20), 0x00FF00u);
  EXPECT_EQ(at(2, 20), 0xFFFFFFu);
  EXPECT_EQ(at(0, 6), 0xFF0000u);
  EXPECT_EQ(at(49, 15), 0xFF0000u);
  EXPECT_EQ(at(0, 16), 0xFFFFFFu);
}

}  // namespace
