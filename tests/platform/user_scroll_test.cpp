// Scroll bars: the state a window keeps for each bar, where a bar's parts lie, and
// how the bars are drawn into the window (their input: user_scrollbar_input_test).
#include <gtest/gtest.h>

#include <climits>

#include "platform/scroll_bar.h"
#include "user_test_support.h"

namespace {

using platform::scroll::Layout;
using platform::scroll::Part;
using platform::scroll::PositionAt;
using platform::window::ScrollBarState;
using user_test::ClientRectOf;
using user_test::HostFixture;
using user_test::Log;
using user_test::Text;

class ScrollBars : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    ASSERT_TRUE(wnd_.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{0, 0, 80, 60}, hostWindow_, 1));
    log_.clear();
  }
  Log log_;
  user_test::LoggingWnd wnd_{"w", &log_};
};

TEST_F(ScrollBars, ShownBarsTakeClientAreaAndSendTheNewSize) {
  EXPECT_TRUE(ShowScrollBar(wnd_.m_hWnd, SB_HORZ, TRUE));
  EXPECT_TRUE(ShowScrollBar(wnd_.m_hWnd, SB_VERT, TRUE));
  EXPECT_EQ(Text(ClientRectOf(wnd_.m_hWnd)), "0,0,63,43");
  ShowScrollBar(wnd_.m_hWnd, SB_VERT, TRUE);  // already shown: no size change
  ShowScrollBar(wnd_.m_hWnd, SB_BOTH, FALSE);
  EXPECT_EQ(log_, (Log{"w size:80,43", "w size:63,43", "w size:80,60"}));
  EXPECT_FALSE(ShowScrollBar(wnd_.m_hWnd, 7, TRUE));

  // Asked to stay, a bar remains though its range fits a page.
  ShowScrollBar(wnd_.m_hWnd, SB_VERT, TRUE);
  SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL, 0, 99, 100, 0, 0};
  SetScrollInfo(wnd_.m_hWnd, SB_VERT, &info, TRUE);
  EXPECT_EQ(ClientRectOf(wnd_.m_hWnd).right, 80 - SCROLLBAR_THICKNESS);
}

TEST_F(ScrollBars, PositionIsClampedSoThatAWholePageFits) {
  SCROLLINFO info{
      sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL, 0, 105, 5, 200, 0};
  // max - (page - 1) = 101
  EXPECT_EQ(SetScrollInfo(wnd_.m_hWnd, SB_HORZ, &info, TRUE), 101);
  EXPECT_EQ(SetScrollPos(wnd_.m_hWnd, SB_HORZ, -4, TRUE), 101);  // returns the previous position
  EXPECT_EQ(GetScrollPos(wnd_.m_hWnd, SB_HORZ), 0);
  // A page of 0 lets the position reach max.
  SCROLLINFO page{sizeof(SCROLLINFO), SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL, 0, 0, 0, 500, 0};
  EXPECT_EQ(SetScrollInfo(wnd_.m_hWnd, SB_HORZ, &page, TRUE), 105);
}

// A 100 px horizontal bar: 17 px arrows, a 66 px track.
constexpr RECT kHorizontal{0, 0, 100, 17};
constexpr RECT kVertical{5, 0, 22, 200};

std::string ThumbText(const RECT& bar, bool vertical, const ScrollBarState& state, int pos) {
  const RECT thumb = Layout(bar, vertical, state, pos).thumb;
  return thumb.right <= thumb.left || thumb.bottom <= thumb.top ? "none" : Text(thumb);
}

TEST(ScrollBarLayout, ThumbSizedByThePageAndPlacedByThePosition) {
  struct Case {
    const char* what;
    RECT bar;
    ScrollBarState state;
    int pos;
    const char* thumb;
  };
  const Case cases[] = {
      // 66 * 10 / 100 rounds to 7, below the 8 px minimum; 58 px are left for 90 positions.
      {"minimum length", kHorizontal, {0, 99, 10}, 0, "17,0,25,17"},
      // Range 10..109 with a page of 50: a 166 px track, an 83 px thumb, 83 px for 50
      // positions; 83 * 25 / 50 = 41.5 rounds up.
      {"vertical, offset range", kVertical, {10, 109, 50}, 35, "5,59,22,142"},
      // Without a page the thumb is square: 66 - 17 = 49 px for 9 positions.
      {"no page, at max", kHorizontal, {0, 9, 0}, 9, "66,0,83,17"},
      {"the range fits a page", kHorizontal, {0, 9, 10}, 0, "none"},
      {"a 6 px track has no room", RECT{0, 0, 40, 17}, {0, 9, 0}, 0, "none"},
      {"the whole int range, at max", kHorizontal, {INT_MIN, INT_MAX, 0}, INT_MAX, "66,0,83,17"},
      {"the whole int range, at min", kHorizontal, {INT_MIN, INT_MAX, 0}, INT_MIN, "17,0,34,17"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ThumbText(c.bar, c.bar.left == kVertical.left, c.state, c.pos), c.thumb) << c.what;
  }
}

TEST(ScrollBarLayout, SqueezedArrowsPositionsFromThumbPlacesAndTheThumbsEdges) {
  // 30 px: the arrows share the length and the track is empty.
  const platform::scroll::Parts squeezed = Layout(RECT{0, 0, 30, 17}, false, {0, 9, 0}, 0);
  EXPECT_EQ(Text(squeezed.backArrow) + " " + Text(squeezed.forwardArrow) + " " + Text(squeezed.track),
            "0,0,15,17 15,0,30,17 15,0,15,17");
  // Positions from thumb places: 41 * 50 / 83 = 24.7 rounds up; INT_MIN + half the range.
  struct Position {
    RECT bar;
    ScrollBarState state;
    int thumbStart, pos;
  };
  for (const Position& c :
       {Position{kVertical, {10, 109, 50}, 41, 35}, Position{kVertical, {10, 109, 50}, 83, 60},
        Position{kHorizontal, {0, 9, 0}, 49, 9}, Position{RECT{0, 0, 30, 17}, {0, 9, 0}, 3, 0},
        Position{kHorizontal, {INT_MIN, INT_MAX, 0x80000000u}, 33, 0}}) {
    const bool vertical = c.bar.left == kVertical.left;
    EXPECT_EQ(PositionAt(Layout(c.bar, vertical, c.state, 0), vertical, c.state, c.thumbStart), c.pos)
        << c.thumbStart;
  }

  // Parts under points: the thumb's edges.
  const platform::scroll::Parts parts45 = Layout(kHorizontal, false, {0, 99, 10, 45}, 45);  // thumb 46..54
  for (const auto& [x, part] :
       {std::pair{45, Part::TrackBack}, {46, Part::Thumb}, {53, Part::Thumb}, {54, Part::TrackForward}}) {
    EXPECT_EQ(platform::scroll::PartAt(parts45, false, POINT{x, 8}), part) << x;
  }
}

constexpr std::uint32_t kFace = 0xF0F0F0;
constexpr std::uint32_t kTrack = 0xE8E8E8;
using user_test::kRed;
using user_test::kWhite;

// A child at (10, 5) of 80 x 70 with both bars at position 90 of 0..99 (page 10): a
// 63 x 53 client area, the vertical bar at x 73..90 and y 5..58 of the host, the
// horizontal one at x 10..73, y 58..75. The vertical track is y 22..41 with an 8 px
// thumb at y 33..41; the horizontal track x 27..56 with the thumb at x 48..56.
class ScrollBarPaint : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    wnd_.color = RGB(255, 0, 0);
    ASSERT_TRUE(wnd_.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{10, 5, 90, 75}, hostWindow_, 1));
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS, 0, 99, 10, 90, 0};
    SetScrollInfo(wnd_.m_hWnd, SB_VERT, &info, TRUE);
    SetScrollInfo(wnd_.m_hWnd, SB_HORZ, &info, TRUE);
    platform::FlushPaint(hostWindow_);
  }
  user_test::SolidWnd wnd_;
};

// The thumbs (track and face), the corner and nothing outside the window, after the
// parent painted over it all; SetScrollPos redraws at once.
TEST_F(ScrollBarPaint, BarsSurviveTheParentsPaintAndFollowSetScrollPos) {
  InvalidateRect(hostWindow_, nullptr, TRUE);
  platform::FlushPaint(hostWindow_);
  ExpectFramePixels({{81, 30, kTrack}, {81, 36, kFace}, {40, 66, kTrack}, {51, 66, kFace}});  // thumbs
  ExpectFramePixels({{73, 58, kFace}, {89, 74, kFace}, {80, 66, kFace}});                     // corner
  ExpectFramePixels({{90, 40, kWhite}, {50, 75, kWhite}, {9, 66, kWhite}, {72, 57, kRed}});   // outside
  SetScrollPos(wnd_.m_hWnd, SB_VERT, 0, TRUE);
  ExpectFramePixels({{81, 36, kTrack}, {81, 26, kFace}});
}

}  // namespace
