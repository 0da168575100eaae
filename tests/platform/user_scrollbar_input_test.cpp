#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using user_test::HostFixture;
using user_test::Log;

// Records scroll requests as "h code pos" / "v code pos" and client mouse messages as
// "client"; like the editor, it answers each request by setting the position.
class ScrollRecorder : public CWnd {
 public:
  void OnHScroll(UINT code, UINT pos, HWND bar) override { Record("h", SB_HORZ, code, pos, bar); }
  void OnVScroll(UINT code, UINT pos, HWND bar) override { Record("v", SB_VERT, code, pos, bar); }
  void OnLButtonDown(UINT, POINT) override { log.push_back("client"); }
  void OnLButtonUp(UINT, POINT) override { log.push_back("client"); }
  void OnMouseMove(UINT, POINT) override { log.push_back("client"); }

  std::vector<std::string> log;
  bool follow = true;

 private:
  void Record(const std::string& name, int bar, UINT code, UINT pos, HWND control) {
    log.push_back(name + " " + std::to_string(code) + " " + std::to_string(pos));
    EXPECT_EQ(control, nullptr);
    if (!follow) return;
    int current = GetScrollPos(m_hWnd, bar);
    int steps[] = {-1, 1, -10, 10};
    if (code <= SB_PAGEDOWN) SetScrollPos(m_hWnd, bar, current + steps[code], TRUE);
    if (code == SB_THUMBPOSITION || code == SB_THUMBTRACK)
      SetScrollPos(m_hWnd, bar, static_cast<int>(pos), TRUE);
  }
};

// The child covers the 100 x 80 host; range 0..99 with a page of 10. The horizontal
// bar lies at y 63..80: arrows x 0..17 and 83..100, an 8 px thumb on a 58 px run for
// 90 positions (at x 17..25 for pos 0).
class ScrollBarInput : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    ASSERT_TRUE(wnd_.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{0, 0, 100, 80}, hostWindow_, 1));
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS, 0, 99, 10, 0, 0};
    SetScrollInfo(wnd_.m_hWnd, SB_HORZ, &info, TRUE);
    platform::FlushPaint(hostWindow_);
    timersBefore_ = platform::LiveWindowObjects().timers;
  }
  void TearDown() override {
    EXPECT_EQ(platform::LiveWindowObjects().timers, timersBefore_);
    wnd_.DestroyWindow();
    HostFixture::TearDown();
  }
  void Click(int x, int y) {
    Press(x, y);
    Release(x, y);
  }
  void Press(int x, int y) { platform::MouseInput(hostWindow_, WM_LBUTTONDOWN, x, y); }
  void Move(int x, int y) { platform::MouseInput(hostWindow_, WM_MOUSEMOVE, x, y); }
  void Release(int x, int y) { platform::MouseInput(hostWindow_, WM_LBUTTONUP, x, y); }
  int Pos(int bar = SB_HORZ) { return GetScrollPos(wnd_.m_hWnd, bar); }

  ScrollRecorder wnd_;
  int timersBefore_ = 0;
};

// Lines, pages, repeats and drags on the horizontal bar are a scenario through the
// control (tests/cli/view_scroll_bars.ies); here the messages themselves.
TEST_F(ScrollBarInput, TheVerticalBarSendsVScrollAndTheCornerAndADisabledBarNothing) {
  SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE, 0, 49, 20, 0, 0};
  SetScrollInfo(wnd_.m_hWnd, SB_VERT, &info, TRUE);
  // The vertical bar at x 83..100, y 0..63: its down arrow at y 46..63.
  Click(90, 50);
  Click(90, 5);
  Click(90, 70);  // the corner
  EXPECT_EQ(wnd_.log, (Log{"v 1 0", "v 8 0", "v 0 0", "v 8 0"}));
  wnd_.log.clear();
  info.fMask = SIF_PAGE | SIF_DISABLENOSCROLL;
  info.nPage = 50;
  SetScrollInfo(wnd_.m_hWnd, SB_VERT, &info, TRUE);
  Click(90, 50);
  Click(90, 30);
  EXPECT_TRUE(wnd_.log.empty()) << "a disabled bar does nothing";
}

// The bar only asks; a window that does not answer keeps its position, and the
// released thumb goes back to it.
TEST_F(ScrollBarInput, TheBarDoesNotMoveItselfAndTheClientHearsNothingOfTheGesture) {
  wnd_.follow = false;
  Press(90, 70);
  Move(95, 75);
  Move(40, 20);
  Release(40, 20);
  EXPECT_EQ(wnd_.log, (Log{"h 1 0", "h 8 0"}));
  EXPECT_EQ(Pos(), 0);
  Click(40, 20);  // once released, the client area has the mouse again
  EXPECT_EQ(wnd_.log.back(), "client");

  wnd_.log.clear();
  Press(20, 70);
  Move(49, 70);
  ExpectFramePixels({{50, 72, 0xF0F0F0}});  // drawn at the tracked position (x 46..54)
  Release(49, 70);
  EXPECT_EQ(wnd_.log, (Log{"h 5 45", "h 4 45", "h 8 0"}));
  EXPECT_EQ(Pos(), 0);
  ExpectFramePixels({{50, 72, 0xE8E8E8}, {21, 72, 0xF0F0F0}});
}

TEST_F(ScrollBarInput, AHeldArrowRepeatsOnlyWhileTheCursorStaysOnIt) {
  Press(90, 70);
  platform::AdvanceClock(450);  // the first repeat at 350, then 400 and 450
  Move(50, 70);
  platform::AdvanceClock(100);
  Move(90, 70);
  platform::AdvanceClock(50);
  Release(90, 70);
  EXPECT_EQ(wnd_.log, (Log{"h 1 0", "h 1 0", "h 1 0", "h 1 0", "h 1 0", "h 8 0"}));
  EXPECT_EQ(Pos(), 5);
  platform::AdvanceClock(1000);
  EXPECT_EQ(wnd_.log.size(), 6u);
}

TEST_F(ScrollBarInput, AWindowDestroyedMidGestureEndsIt) {
  Press(90, 70);
  wnd_.DestroyWindow();
  platform::AdvanceClock(1000);
  Release(90, 70);
  EXPECT_EQ(wnd_.log, (Log{"h 1 0"}));
  EXPECT_EQ(platform::LiveWindowObjects().timers, timersBefore_);
}

}  // namespace
