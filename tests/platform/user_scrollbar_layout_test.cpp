#include <gtest/gtest.h>

#include <climits>

#include "platform/scroll_bar.h"

namespace {

using platform::scroll::Layout;
using platform::scroll::Part;
using platform::scroll::PartAt;
using platform::scroll::Parts;
using platform::scroll::PositionAt;
using platform::window::ScrollBarState;

void ExpectRect(const RECT& actual, const RECT& expected) {
  EXPECT_EQ(actual.left, expected.left);
  EXPECT_EQ(actual.top, expected.top);
  EXPECT_EQ(actual.right, expected.right);
  EXPECT_EQ(actual.bottom, expected.bottom);
}

bool IsEmpty(const RECT& r) { return r.right <= r.left || r.bottom <= r.top; }

// A 100 px horizontal bar: 17 px arrows, a 66 px track.
constexpr RECT kHorizontal{0, 0, 100, 17};

TEST(ScrollBarLayout, ArrowsTrackAndAThumbSizedByThePageAndPlacedByThePosition) {
  ScrollBarState state{0, 99, 10, 0, 0, false};
  Parts parts = Layout(kHorizontal, false, state, 0);
  ExpectRect(parts.backArrow, RECT{0, 0, 17, 17});
  ExpectRect(parts.forwardArrow, RECT{83, 0, 100, 17});
  ExpectRect(parts.track, RECT{17, 0, 83, 17});
  // 66 * 10 / 100 rounds to 7, below the 8 px minimum; 58 px are left for 90 positions.
  ExpectRect(parts.thumb, RECT{17, 0, 25, 17});
  ExpectRect(Layout(kHorizontal, false, state, 45).thumb, RECT{46, 0, 54, 17});
  ExpectRect(Layout(kHorizontal, false, state, 90).thumb, RECT{75, 0, 83, 17});
  // Positions beyond those a page allows are drawn at the ends.
  ExpectRect(Layout(kHorizontal, false, state, 99).thumb, RECT{75, 0, 83, 17});
  ExpectRect(Layout(kHorizontal, false, state, -5).thumb, RECT{17, 0, 25, 17});
}

TEST(ScrollBarLayout, VerticalBarWithAnOffsetRangeRoundsHalfUp) {
  // Range 10..109 with a page of 50: a 166 px track, an 83 px thumb, 83 px for 50 positions.
  ScrollBarState state{10, 109, 50, 0, 0, false};
  Parts parts = Layout(RECT{5, 0, 22, 200}, true, state, 35);
  ExpectRect(parts.backArrow, RECT{5, 0, 22, 17});
  ExpectRect(parts.forwardArrow, RECT{5, 183, 22, 200});
  ExpectRect(parts.track, RECT{5, 17, 22, 183});
  // 83 * 25 / 50 = 41.5 rounds to 42.
  ExpectRect(parts.thumb, RECT{5, 59, 22, 142});
  EXPECT_EQ(PositionAt(parts, true, state, 42), 35);
  EXPECT_EQ(PositionAt(parts, true, state, 41), 35);  // 41 * 50 / 83 = 24.7
  EXPECT_EQ(PositionAt(parts, true, state, 83), 60);
}

TEST(ScrollBarLayout, WithoutAPageTheThumbIsSquareAndReachesMax) {
  ScrollBarState state{0, 9, 0, 0, 0, false};
  // 66 - 17 = 49 px for 9 positions.
  ExpectRect(Layout(kHorizontal, false, state, 9).thumb, RECT{66, 0, 83, 17});
  ExpectRect(Layout(kHorizontal, false, state, 3).thumb, RECT{33, 0, 50, 17});
  EXPECT_EQ(PositionAt(Layout(kHorizontal, false, state, 3), false, state, 16), 3);
  EXPECT_EQ(PositionAt(Layout(kHorizontal, false, state, 3), false, state, 49), 9);
}

TEST(ScrollBarLayout, NoThumbWhenTheRangeFitsOrTheTrackIsTooShort) {
  ScrollBarState fits{0, 9, 10, 0, 0, false};
  EXPECT_TRUE(IsEmpty(Layout(kHorizontal, false, fits, 0).thumb));
  EXPECT_FALSE(platform::scroll::CanScroll(fits));
  ScrollBarState single{5, 5, 0, 5, 0, false};
  EXPECT_FALSE(platform::scroll::CanScroll(single));
  // 40 px: a 6 px track has no room for the square thumb of a page-less bar.
  ScrollBarState noPage{0, 9, 0, 0, 0, false};
  EXPECT_TRUE(IsEmpty(Layout(RECT{0, 0, 40, 17}, false, noPage, 0).thumb));
  // 30 px: the arrows share the length and the track is empty.
  Parts squeezed = Layout(RECT{0, 0, 30, 17}, false, noPage, 0);
  ExpectRect(squeezed.backArrow, RECT{0, 0, 15, 17});
  ExpectRect(squeezed.forwardArrow, RECT{15, 0, 30, 17});
  EXPECT_TRUE(IsEmpty(squeezed.track));
  EXPECT_EQ(PositionAt(squeezed, false, noPage, 3), 0);
}

TEST(ScrollBarLayout, TheWholeIntRangeStaysInsideTheTrack) {
  ScrollBarState state{INT_MIN, INT_MAX, 0, 0, 0, false};
  ExpectRect(Layout(kHorizontal, false, state, INT_MAX).thumb, RECT{66, 0, 83, 17});
  ExpectRect(Layout(kHorizontal, false, state, INT_MIN).thumb, RECT{17, 0, 34, 17});
  state.page = 0x80000000u;  // half the range
  ExpectRect(Layout(kHorizontal, false, state, INT_MAX).thumb, RECT{50, 0, 83, 17});
  // INT_MIN + half the range.
  EXPECT_EQ(PositionAt(Layout(kHorizontal, false, state, 0), false, state, 33), 0);
}

TEST(ScrollBarLayout, PartsUnderPoints) {
  ScrollBarState state{0, 99, 10, 45, 0, false};
  Parts parts = Layout(kHorizontal, false, state, 45);  // thumb 46..54
  EXPECT_EQ(PartAt(parts, false, POINT{0, 8}), Part::BackArrow);
  EXPECT_EQ(PartAt(parts, false, POINT{16, 16}), Part::BackArrow);
  EXPECT_EQ(PartAt(parts, false, POINT{17, 8}), Part::TrackBack);
  EXPECT_EQ(PartAt(parts, false, POINT{45, 8}), Part::TrackBack);
  EXPECT_EQ(PartAt(parts, false, POINT{46, 8}), Part::Thumb);
  EXPECT_EQ(PartAt(parts, false, POINT{53, 8}), Part::Thumb);
  EXPECT_EQ(PartAt(parts, false, POINT{54, 8}), Part::TrackForward);
  EXPECT_EQ(PartAt(parts, false, POINT{83, 8}), Part::ForwardArrow);
  EXPECT_EQ(PartAt(parts, false, POINT{100, 8}), Part::None);
  EXPECT_EQ(PartAt(parts, false, POINT{50, 17}), Part::None);
  // A disabled bar's track is inert; its arrows are still found (the caller decides).
  ScrollBarState fits{0, 9, 10, 0, 0, false};
  EXPECT_EQ(PartAt(Layout(kHorizontal, false, fits, 0), false, POINT{50, 8}), Part::None);
}

}  // namespace
