#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "user_test_support.h"

namespace {

using namespace user_test;

class Painting : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    // The parent is a solid red window at (10,10) 50 x 40 on the host; the child a
    // blue one at (5,5) 10 x 10 in the parent.
    parent_.color = RGB(255, 0, 0);
    ASSERT_TRUE(
        parent_.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{10, 10, 60, 50}, hostWindow_, 1));
    ASSERT_TRUE(child_.Create(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{5, 5, 15, 15}, &parent_, 2));
  }
  SolidWnd parent_;
  SolidWnd child_;
};

TEST_F(Painting, FlushComposesHostParentAndChildWithChildOnTop) {
  EXPECT_EQ(FramePixel(0, 0), 0u);  // nothing is painted before a flush
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(host_.presented, 1);
  ExpectFramePixels({{9, 9, kWhite}, {10, 10, kRed}, {59, 49, kRed}, {60, 50, kWhite}});  // the parent
  ExpectFramePixels({{15, 15, kBlue}, {24, 24, kBlue}, {25, 25, kRed}});                  // the child
  // With nothing pending a flush paints and presents nothing.
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(host_.presented, 1);
}

TEST_F(Painting, HidingAChildRepaintsTheParentBeneathAndRedrawUpdatesAtOnce) {
  platform::FlushPaint(hostWindow_);
  child_.ShowWindow(SW_HIDE);
  int childPaints = child_.paints;
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(FramePixel(15, 15), kRed);
  EXPECT_EQ(child_.paints, childPaints);
  child_.ShowWindow(SW_SHOW);
  child_.color = RGB(0, 255, 0);
  child_.RedrawWindow();  // invalidate, erase, update now
  EXPECT_EQ(FramePixel(15, 15), kGreen);
}

// A paint handler may place a child on every paint; only a real move paints again.
TEST_F(Painting, MovingAChildWhereItIsPaintsNothingAndAMovePaintsBoth) {
  platform::FlushPaint(hostWindow_);
  const int parentPaints = parent_.paints;
  const int childPaints = child_.paints;
  EXPECT_TRUE(MoveWindow(child_.m_hWnd, 5, 5, 10, 10, TRUE));
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(host_.presented, 1);
  EXPECT_EQ(parent_.paints, parentPaints);
  EXPECT_EQ(child_.paints, childPaints);
  EXPECT_TRUE(MoveWindow(child_.m_hWnd, 6, 5, 10, 10, TRUE));
  platform::FlushPaint(hostWindow_);
  EXPECT_GT(parent_.paints, parentPaints);
  EXPECT_GT(child_.paints, childPaints);
  ExpectFramePixels({{15, 15, kRed}, {16, 15, kBlue}});
}

TEST_F(Painting, WindowDcsDrawInsideTheClientAreaAndLeakNothing) {
  platform::FlushPaint(hostWindow_);
  platform::GdiCounts before = platform::LiveGdiObjects();
  HDC dc = GetDC(child_.m_hWnd);
  ASSERT_NE(dc, nullptr);
  SetPixel(dc, 1, 2, RGB(0, 255, 0));
  SetPixel(dc, 20, 2, RGB(0, 255, 0));  // outside the client area: clipped
  EXPECT_EQ(ReleaseDC(child_.m_hWnd, dc), 1);
  ExpectFramePixels({{16, 17, kGreen}, {35, 17, kRed}});
  EXPECT_EQ(platform::LiveGdiObjects().total(), before.total());
}

// A host that copies the frame looks only where it was drawn on: every pixel that
// changed must lie inside what TakeHostFrameDrawn reports.
class DrawnArea : public Painting {
 protected:
  std::vector<std::uint32_t> Frame() {
    int width = 0;
    int height = 0;
    const std::uint32_t* pixels = platform::BitmapPixels(platform::HostFrame(hostWindow_), &width, &height);
    return std::vector<std::uint32_t>(pixels, pixels + static_cast<std::ptrdiff_t>(width) * height);
  }
  // The pixels of `after` that differ from `before`, all inside `drawn`; returns how many.
  int ChangesInside(const std::vector<std::uint32_t>& before, const std::vector<std::uint32_t>& after,
                    const RECT& drawn) {
    int changes = 0;
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        if (before[static_cast<std::size_t>(y * kWidth + x)] ==
            after[static_cast<std::size_t>(y * kWidth + x)])
          continue;
        ++changes;
        EXPECT_TRUE(x >= drawn.left && x < drawn.right && y >= drawn.top && y < drawn.bottom)
            << x << "," << y << " changed outside the area drawn on";
      }
    }
    return changes;
  }
};

TEST_F(DrawnArea, ANewFrameIsDrawnWholeAndTakingEmptiesIt) {
  EXPECT_EQ(Text(platform::TakeHostFrameDrawn(hostWindow_)), "0,0,100,80");
  platform::FlushPaint(hostWindow_);
  platform::TakeHostFrameDrawn(hostWindow_);
  platform::FlushPaint(hostWindow_);  // nothing pending: nothing drawn
  const RECT none = platform::TakeHostFrameDrawn(hostWindow_);
  EXPECT_TRUE(none.left >= none.right || none.top >= none.bottom);
  ASSERT_TRUE(platform::ResizeHostWindow(hostWindow_, kWidth + 20, kHeight));
  EXPECT_EQ(Text(platform::TakeHostFrameDrawn(hostWindow_)), "0,0,120,80");
  EXPECT_EQ(platform::TakeHostFrameDrawn(nullptr).right, 0);
}

TEST_F(DrawnArea, RepaintsAndWindowDcsReportWhereTheyDrewOnTheHost) {
  platform::FlushPaint(hostWindow_);
  platform::TakeHostFrameDrawn(hostWindow_);
  std::vector<std::uint32_t> before = Frame();
  // Part of the child (at 15,15 on the host) repainted in another colour.
  child_.color = RGB(0, 255, 0);
  RECT part{2, 3, 6, 7};
  InvalidateRect(child_.m_hWnd, &part, TRUE);
  platform::FlushPaint(hostWindow_);
  RECT drawn = platform::TakeHostFrameDrawn(hostWindow_);
  EXPECT_EQ(ChangesInside(before, Frame(), drawn), 16);
  EXPECT_LE(drawn.right - drawn.left, 10);  // no more than the child's client area
  // Drawn on through a DC between two presents, and a child moved: the area grows to
  // hold both until it is taken.
  before = Frame();
  HDC dc = GetDC(parent_.m_hWnd);
  SetPixel(dc, 40, 30, RGB(0, 0, 0));
  ReleaseDC(parent_.m_hWnd, dc);
  ASSERT_TRUE(MoveWindow(child_.m_hWnd, 0, 0, 10, 10, TRUE));
  platform::FlushPaint(hostWindow_);
  drawn = platform::TakeHostFrameDrawn(hostWindow_);
  EXPECT_GT(ChangesInside(before, Frame(), drawn), 100);
  EXPECT_EQ(FramePixel(50, 40), 0u);
}

}  // namespace
