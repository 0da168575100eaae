// Windows with a sizing frame: where the client area lies, how the mouse and the
// coordinate calls see the frame, and how the frame is painted.
#include <gtest/gtest.h>

#include <utility>

#include "user_test_support.h"

namespace {

using namespace user_test;

constexpr std::uint32_t kFrameEdge = 0xA0A0A0, kFrameFace = 0xF0F0F0;

// Logs where the mouse meets it and when its frame is painted; its client area is
// painted in one colour.
class FramedWnd : public SolidWnd {
 public:
  explicit FramedWnd(Log* log) : log_(log) {}
  void OnNcPaint() override {
    log_->push_back("ncpaint");
    CWnd::OnNcPaint();
  }
  void OnLButtonDown(UINT, POINT p) override {
    log_->push_back("ldown " + std::to_string(p.x) + "," + std::to_string(p.y));
  }
  BOOL OnSetCursor(HWND, UINT hitTest, UINT) override {
    log_->push_back("hit " + std::to_string(hitTest));
    return TRUE;
  }
  void OnSize(UINT, int cx, int cy) override {
    log_->push_back("size " + std::to_string(cx) + "," + std::to_string(cy));
  }

 private:
  Log* log_;
};

class Frames : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    // A framed red window at (10,20) 50 x 30 on the host: its client area is 42 x 22
    // from (14,24).
    framed_.color = RGB(255, 0, 0);
    ASSERT_TRUE(framed_.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE | WS_THICKFRAME,
                                       RECT{10, 20, 60, 50}, hostWindow_, 1));
  }
  Log log_;
  FramedWnd framed_{&log_};
};

TEST_F(Frames, TheClientAreaLiesInsideTheFrameAndTheWindowRectCoversIt) {
  EXPECT_EQ(log_, (Log{"size 42,22"}));
  EXPECT_EQ(Text(ClientRectOf(framed_.m_hWnd)), "0,0,42,22");
  RECT window{};
  ASSERT_TRUE(GetWindowRect(framed_.m_hWnd, &window));
  EXPECT_EQ(Text(window), "10,20,60,50");
  POINT p{10, 20};
  ScreenToClient(framed_.m_hWnd, &p);
  EXPECT_EQ(std::make_pair(p.x, p.y), std::make_pair(-4, -4));

  // A child's place and a scroll bar's strip count from inside the frame.
  CWnd child;
  ASSERT_TRUE(child.Create(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{2, 3, 12, 13}, &framed_, 2));
  ASSERT_TRUE(GetWindowRect(child.m_hWnd, &window));
  EXPECT_EQ(Text(window), "16,27,26,37");
  log_.clear();
  ShowScrollBar(framed_.m_hWnd, SB_VERT, TRUE);
  EXPECT_EQ(log_, (Log{"size 25,22"}));
  MoveWindow(framed_.m_hWnd, 0, 0, 6, 6, FALSE);  // smaller than two frames
  EXPECT_EQ(Text(ClientRectOf(framed_.m_hWnd)), "0,0,0,0");
}

TEST_F(Frames, TheMouseOnTheFrameNeverReachesTheClientArea) {
  log_.clear();
  platform::MouseInput(hostWindow_, WM_LBUTTONDOWN, 14, 24);  // the client area's corner
  EXPECT_EQ(log_, (Log{"hit " + std::to_string(HTCLIENT), "ldown 0,0"}));
  const struct {
    int x, y;
    UINT code;
  } onFrame[] = {{10, 20, HTTOPLEFT}, {30, 23, HTTOP},        {59, 20, HTTOPRIGHT}, {10, 35, HTLEFT},
                 {56, 35, HTRIGHT},   {13, 46, HTBOTTOMLEFT}, {30, 49, HTBOTTOM},   {59, 49, HTBOTTOMRIGHT}};
  for (const auto& [x, y, code] : onFrame) {
    log_.clear();
    platform::MouseInput(hostWindow_, WM_LBUTTONDOWN, x, y);
    platform::MouseInput(hostWindow_, WM_LBUTTONUP, x, y);
    EXPECT_EQ(log_, (Log{"hit " + std::to_string(code), "hit " + std::to_string(code)})) << x << "," << y;
  }
}

TEST_F(Frames, TheFrameIsPaintedWheneverTheWindowIsAndByDefaultAsAPlainBand) {
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(log_, (Log{"size 42,22", "ncpaint"}));
  ExpectFramePixels({{9, 19, kWhite},
                     {10, 20, kFrameEdge},
                     {59, 49, kFrameEdge},
                     {11, 21, kFrameFace},
                     {13, 23, kFrameFace},
                     {58, 48, kFrameFace},
                     {14, 24, kRed},
                     {55, 45, kRed},
                     {60, 50, kWhite}});

  // The parent painting over it, or showing it again, paints the frame again even
  // with no client area to paint.
  log_.clear();
  InvalidateRect(hostWindow_, nullptr, TRUE);
  platform::FlushPaint(hostWindow_);
  framed_.ShowWindow(SW_HIDE);
  platform::FlushPaint(hostWindow_);
  MoveWindow(framed_.m_hWnd, 10, 20, 8, 8, TRUE);
  framed_.ShowWindow(SW_SHOW);
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(log_, (Log{"ncpaint", "size 0,0", "ncpaint"}));
  ExpectFramePixels({{10, 20, kFrameEdge}, {13, 23, kFrameFace}, {17, 27, kFrameEdge}, {18, 28, kWhite}});
}

TEST_F(Frames, TheWindowDcStartsAtTheFrameAndStaysInsideTheWindowAndItsParent) {
  platform::FlushPaint(hostWindow_);
  const platform::GdiCounts before = platform::LiveGdiObjects();
  HDC dc = GetWindowDC(framed_.m_hWnd);
  ASSERT_NE(dc, nullptr);
  for (POINT p : {POINT{0, 0}, POINT{49, 29}, POINT{50, 10}, POINT{-1, 0}})
    SetPixel(dc, p.x, p.y, RGB(0, 0, 255));
  EXPECT_EQ(ReleaseDC(framed_.m_hWnd, dc), 1);
  ExpectFramePixels({{10, 20, kBlue}, {59, 49, kBlue}, {60, 30, kWhite}, {9, 20, kWhite}});
  EXPECT_EQ(platform::LiveGdiObjects().total(), before.total());

  // A framed child is cut off where its parent's client area ends.
  Log childLog;
  FramedWnd child(&childLog);
  ASSERT_TRUE(
      child.Create(nullptr, "", WS_CHILD | WS_VISIBLE | WS_THICKFRAME, RECT{30, 10, 60, 40}, &framed_, 2));
  dc = GetWindowDC(child.m_hWnd);
  ASSERT_NE(dc, nullptr);
  SetPixel(dc, 0, 0, RGB(0, 255, 0));   // host (44,34): inside the parent's client area
  SetPixel(dc, 12, 0, RGB(0, 255, 0));  // host (56,34): on the parent's frame
  ReleaseDC(child.m_hWnd, dc);
  ExpectFramePixels({{44, 34, kGreen}, {56, 34, kFrameFace}});
}

}  // namespace
