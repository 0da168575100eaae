#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using user_test::HostFixture;
using user_test::LoggingWnd;

class ScrollBars : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    ASSERT_TRUE(wnd_.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{0, 0, 80, 60}, hostWindow_, 1));
    log_.clear();
  }
  void TearDown() override {
    wnd_.DestroyWindow();
    HostFixture::TearDown();
  }
  RECT Client() {
    RECT client{};
    GetClientRect(wnd_.m_hWnd, &client);
    return client;
  }
  std::vector<std::string> log_;
  LoggingWnd wnd_{"w", &log_};
};

TEST_F(ScrollBars, ShownBarsTakeClientAreaAndSendTheNewSize) {
  EXPECT_TRUE(ShowScrollBar(wnd_.m_hWnd, SB_HORZ, TRUE));
  EXPECT_EQ(Client().bottom, 60 - SCROLLBAR_THICKNESS);
  EXPECT_EQ(Client().right, 80);
  EXPECT_TRUE(ShowScrollBar(wnd_.m_hWnd, SB_VERT, TRUE));
  EXPECT_EQ(Client().right, 80 - SCROLLBAR_THICKNESS);
  ShowScrollBar(wnd_.m_hWnd, SB_VERT, TRUE);  // already shown: no size change
  ShowScrollBar(wnd_.m_hWnd, SB_BOTH, FALSE);
  EXPECT_EQ(log_, (std::vector<std::string>{"w size:80,43", "w size:63,43", "w size:80,60"}));
  EXPECT_FALSE(ShowScrollBar(wnd_.m_hWnd, 7, TRUE));
}

TEST_F(ScrollBars, PositionIsClampedSoThatAWholePageFits) {
  SCROLLINFO info{
      sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL, 0, 105, 5, 200, 0};
  // max - (page - 1) = 101
  EXPECT_EQ(SetScrollInfo(wnd_.m_hWnd, SB_HORZ, &info, TRUE), 101);
  EXPECT_EQ(GetScrollPos(wnd_.m_hWnd, SB_HORZ), 101);
  EXPECT_EQ(SetScrollPos(wnd_.m_hWnd, SB_HORZ, -4, TRUE), 101);  // returns the previous position
  EXPECT_EQ(GetScrollPos(wnd_.m_hWnd, SB_HORZ), 0);
  SetScrollPos(wnd_.m_hWnd, SB_HORZ, 50, TRUE);
  SCROLLINFO read{sizeof(SCROLLINFO), SIF_ALL};
  ASSERT_TRUE(GetScrollInfo(wnd_.m_hWnd, SB_HORZ, &read));
  EXPECT_EQ(read.nMax, 105);
  EXPECT_EQ(read.nPage, 5u);
  EXPECT_EQ(read.nPos, 50);
  // A page of 0 lets the position reach max; a page larger than the range is cut to it.
  SCROLLINFO page{sizeof(SCROLLINFO), SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL, 0, 0, 0, 500, 0};
  EXPECT_EQ(SetScrollInfo(wnd_.m_hWnd, SB_HORZ, &page, TRUE), 105);
  page.nPage = 1000;
  EXPECT_EQ(SetScrollInfo(wnd_.m_hWnd, SB_HORZ, &page, TRUE), 0);
  read.fMask = SIF_PAGE;
  GetScrollInfo(wnd_.m_hWnd, SB_HORZ, &read);
  EXPECT_EQ(read.nPage, 106u);
  // The vertical bar keeps its own state.
  EXPECT_EQ(GetScrollPos(wnd_.m_hWnd, SB_VERT), 0);
}

TEST_F(ScrollBars, ARangeThatNeedsABarShowsItAndOneThatDoesNotHidesIt) {
  SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE, 0, 99, 10, 0, 0};
  SetScrollInfo(wnd_.m_hWnd, SB_VERT, &info, TRUE);
  EXPECT_EQ(Client().right, 80 - SCROLLBAR_THICKNESS);
  info.nPage = 100;
  SetScrollInfo(wnd_.m_hWnd, SB_VERT, &info, TRUE);
  EXPECT_EQ(Client().right, 80);
  // Asked to stay, the bar remains though it is not needed.
  ShowScrollBar(wnd_.m_hWnd, SB_VERT, TRUE);
  info.fMask |= SIF_DISABLENOSCROLL;
  SetScrollInfo(wnd_.m_hWnd, SB_VERT, &info, TRUE);
  EXPECT_EQ(Client().right, 80 - SCROLLBAR_THICKNESS);
}

}  // namespace
