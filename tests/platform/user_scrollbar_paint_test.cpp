#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using user_test::HostFixture;

constexpr std::uint32_t kFace = 0xF0F0F0;
constexpr std::uint32_t kLight = 0xE3E3E3;
constexpr std::uint32_t kHighlight = 0xFFFFFF;
constexpr std::uint32_t kShadow = 0xA0A0A0;
constexpr std::uint32_t kDarkShadow = 0x696969;
constexpr std::uint32_t kTrack = 0xE8E8E8;
constexpr std::uint32_t kGlyph = 0x202020;
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kRed = 0xFF0000;

// Paints its client area red.
class RedWnd : public CWnd {
 public:
  void OnPaint() override {
    PAINTSTRUCT paint{};
    HDC dc = BeginPaint(m_hWnd, &paint);
    RECT client{};
    GetClientRect(&client);
    HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
    FillRect(dc, &client, red);
    DeleteObject(red);
    EndPaint(m_hWnd, &paint);
  }
};

// A child at (10, 5) of 80 x 70 with both bars: a 63 x 53 client area, the vertical
// bar at x 73..90 and y 5..58 of the host, the horizontal one at x 10..73, y 58..75.
class ScrollBarPaint : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    ASSERT_TRUE(wnd_.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{10, 5, 90, 75}, hostWindow_, 1));
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS, 0, 99, 10, 90, 0};
    SetScrollInfo(wnd_.m_hWnd, SB_VERT, &info, TRUE);
    SetScrollInfo(wnd_.m_hWnd, SB_HORZ, &info, TRUE);
    platform::FlushPaint(hostWindow_);
  }
  void TearDown() override {
    wnd_.DestroyWindow();
    HostFixture::TearDown();
  }
  RedWnd wnd_;
};

TEST_F(ScrollBarPaint, ThumbSitsWhereThePositionPutsItAndFollowsSetScrollPos) {
  // Vertical: a 19 px track (y 22..41), an 8 px thumb, 11 px for 90 positions; pos 90
  // puts the thumb at y 33..41.
  EXPECT_EQ(FramePixel(81, 30), kTrack);
  EXPECT_EQ(FramePixel(73, 33), kLight);
  EXPECT_EQ(FramePixel(81, 36), kFace);
  EXPECT_EQ(FramePixel(81, 40), kDarkShadow);
  // Horizontal: a 29 px track (x 27..56), thumb x 48..56.
  EXPECT_EQ(FramePixel(40, 66), kTrack);
  EXPECT_EQ(FramePixel(48, 58), kLight);
  EXPECT_EQ(FramePixel(51, 66), kFace);
  // Redrawn at once, without a paint pass.
  SetScrollPos(wnd_.m_hWnd, SB_VERT, 0, TRUE);
  EXPECT_EQ(FramePixel(81, 36), kTrack);
  EXPECT_EQ(FramePixel(73, 22), kLight);
  EXPECT_EQ(FramePixel(81, 26), kFace);
  // Without redraw the frame keeps the old thumb until the window is painted.
  SetScrollPos(wnd_.m_hWnd, SB_HORZ, 0, FALSE);
  EXPECT_EQ(FramePixel(51, 66), kFace);
  EXPECT_EQ(FramePixel(30, 66), kTrack);
  InvalidateRect(wnd_.m_hWnd, nullptr, TRUE);
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(FramePixel(51, 66), kTrack);
  EXPECT_EQ(FramePixel(30, 66), kFace);
}

TEST_F(ScrollBarPaint, CornerIsFaceColouredAndNothingOutsideTheWindowIsTouched) {
  for (POINT p : {POINT{73, 58}, POINT{89, 74}, POINT{80, 66}}) EXPECT_EQ(FramePixel(p.x, p.y), kFace);
  EXPECT_EQ(FramePixel(90, 40), kWhite);
  EXPECT_EQ(FramePixel(50, 75), kWhite);
  EXPECT_EQ(FramePixel(9, 66), kWhite);
  EXPECT_EQ(FramePixel(72, 57), kRed);
}

TEST_F(ScrollBarPaint, BarsComeBackAfterTheParentPaintsOverThem) {
  InvalidateRect(hostWindow_, nullptr, TRUE);
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(FramePixel(81, 36), kFace);
  EXPECT_EQ(FramePixel(81, 30), kTrack);
  EXPECT_EQ(FramePixel(80, 66), kFace);
}

TEST_F(ScrollBarPaint, AHiddenBarGivesItsStripBackToTheClientArea) {
  SCROLLINFO fits{sizeof(SCROLLINFO), SIF_PAGE, 0, 0, 100, 0, 0};
  SetScrollInfo(wnd_.m_hWnd, SB_VERT, &fits, TRUE);
  RECT client{};
  GetClientRect(wnd_.m_hWnd, &client);
  EXPECT_EQ(client.right, 80);
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(FramePixel(81, 30), kRed);
  EXPECT_EQ(FramePixel(89, 50), kRed);
  // The horizontal bar now runs under the whole width, its right arrow at x 73..90.
  EXPECT_EQ(FramePixel(60, 66), kTrack);
  EXPECT_EQ(FramePixel(73, 58), kLight);
  EXPECT_EQ(FramePixel(89, 66), kDarkShadow);
}

}  // namespace
