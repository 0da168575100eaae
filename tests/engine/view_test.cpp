// The display scale. Scaling, scrolling and the bars as a host sees them are
// scenarios (tests/cli/view_*.ies); strokes stretched with the picture and shown at
// the scroll offset are pinned by tools_interrupted.ies and the random sessions of
// history_sequence_test.cpp.
#include <random>

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

// A repaint composes only what the buffer lacks: the strip a scroll uncovers, or
// nothing when nothing changed. Whatever was written since into the image surface, the
// drawing layer or the buffer itself is composed again, rows given up after a repaint
// too, and objects are always drawn afresh. Through a random session the window shows
// what a twin that composes everything at every repaint shows.
TEST_F(ViewMemoryTest, WhatARepaintKeepsIsWhatComposingAfreshGives) {
  std::vector<COLORREF> colors;
  std::mt19937 random(5);
  for (int i = 0; i < 300 * 200; ++i) colors.push_back(RGB(i % 256, (i / 300) % 256, random() % 256));
  LiveEditor kept(90, 70), afresh(90, 70);
  for (LiveEditor* live : {&kept, &afresh}) live->Show(300, 200, colors);
  const std::string icon =
      kept.files.Write("icon.bmp", BitmapFile(4, 3, std::vector<COLORREF>(12, 0xFF00FF)));
  RECT client{};
  GetClientRect(kept->m_hWnd, &client);
  const auto shownPixels = [&](LiveEditor& live) {
    const RECT shown = live->m_view.ToSurface(client);
    std::vector<COLORREF> pixels;
    for (int y = shown.top; y < shown.bottom; ++y) {
      for (int x = shown.left; x < shown.right; ++x)
        pixels.push_back(GetPixel(live->m_surfaces.composition.dc(), x, y));
    }
    return pixels;
  };
  // The whole buffer composed (as saving does), the rows out of sight given up at the
  // next repaint, then scrolled into sight.
  kept->ComposeView();
  kept->RedrawWindow();
  kept->SendMessage(WM_VSCROLL, MAKELPARAM(SB_THUMBPOSITION, 150), 0);
  afresh->SendMessage(WM_VSCROLL, MAKELPARAM(SB_THUMBPOSITION, 150), 0);
  ASSERT_EQ(shownPixels(kept), shownPixels(afresh));

  for (int step = 0; step < 150; ++step) {
    const int x = static_cast<int>(random() % 300);
    const int y = static_cast<int>(random() % 200);
    const unsigned what = random() % 8;
    const unsigned how = random() % 300;
    for (LiveEditor* live : {&kept, &afresh}) {
      switch (what) {
        case 0:
          (*live)->SendMessage(WM_HSCROLL, MAKELPARAM(SB_THUMBPOSITION, how), 0);
          break;
        case 1:
          (*live)->SendMessage(WM_VSCROLL, MAKELPARAM(how % 2 ? SB_LINEDOWN : SB_THUMBPOSITION, how % 200),
                               0);
          break;
        case 2:
          SetPixel((*live)->m_surfaces.drawingLayer.dc(), x, y, 0x00FF00);
          break;
        case 3:
          SetPixel((*live)->m_surfaces.imageSurface.dc(), x, y, 0xFF0000);
          break;
        case 4:
          SetPixel((*live)->m_surfaces.composition.dc(), x, y, 0x123456);
          break;
        case 5:
          (*live)->BrightenImage(static_cast<int>(how % 200));
          break;
        case 6:
          (*live)->ComposeView();
          break;
        default:
          if ((*live)->m_objects.count() == 0 && how % 3 == 0) {
            (*live)->InsertIcon(x % 90, y % 70, icon.c_str());
          } else if ((*live)->m_objects.count() > 0) {
            (*live)->Clear(1);
          }
          break;
      }
    }
    afresh->m_composed.Forget();
    for (LiveEditor* live : {&kept, &afresh}) (*live)->RedrawWindow();
    ASSERT_EQ(shownPixels(kept), shownPixels(afresh)) << "step " << step;
    // Without objects the repaint left the whole view composed, for the next one.
    if (kept->m_objects.count() == 0) {
      EXPECT_TRUE(
          kept->m_composed.ToCompose(kept->m_view.ToSurface(client), kept->ComposedSources()).empty());
    }
  }
}

}  // namespace
