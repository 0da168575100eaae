// Frame tiling: cutting the placements to an area changes nothing inside it, against
// a plain walk over every whole tile; far offsets neither wrap around nor make the
// walk longer than the area. Where pieces land on a picture: tests/engine/frame_test.cpp.
#include "pixels/frame_tiling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace {

// Each pixel as the pieces leave it: which piece, and which of its pixels, drew last.
using Canvas = std::map<std::pair<int, int>, int>;

void Paint(Canvas& canvas, const FramePlacement& p) {
  for (int y = p.target.top; y < p.target.bottom; ++y) {
    for (int x = p.target.left; x < p.target.right; ++x)
      canvas[{x, y}] =
          p.piece + 10 * (p.source.x + x - p.target.left + 100 * (p.source.y + y - p.target.top));
  }
}

// The frame drawn as written down: every tile whole, walked from the edge's start.
Canvas PaintedWhole(const FrameGeometry& g, const RECT& image) {
  Canvas canvas;
  const auto place = [&](int piece, int x, int y) {
    if (g[piece].drawn)
      Paint(canvas, FramePlacement{piece, RECT{x, y, x + g[piece].width, y + g[piece].height}, POINT{0, 0}});
  };
  const int l = image.left, t = image.top, r = image.right, b = image.bottom;
  const auto o = [&](int i) { return g[i].offset; };
  for (int y = t + o(1); g[0].drawn && y < b - o(7); y += g[0].height) place(0, r - o(0), y);
  for (int x = l + o(3); g[2].drawn && x < r - o(1); x += g[2].width) place(2, x, t + o(2) - g[2].height);
  for (int y = t + o(3); g[4].drawn && y < b - o(5); y += g[4].height) place(4, l + o(4) - g[4].width, y);
  for (int x = l + o(5); g[6].drawn && x < r - o(7); x += g[6].width) place(6, x, b - o(6));
  place(1, r - o(1), t + o(1) - g[1].height);
  place(3, l + o(3) - g[3].width, t + o(3) - g[3].height);
  place(5, l + o(5) - g[5].width, b - o(5));
  place(7, r - o(7), b - o(7));
  place(8, 0, 0);
  return canvas;
}

// Random pieces (some missing, offsets reaching in or out) around random images, cut
// to random areas: inside the area every pixel is what the whole frame leaves there,
// and nothing outside it is touched.
TEST(FrameTilingTest, CuttingToAnAreaMatchesTheWholeFrameInsideIt) {
  std::mt19937 random(20240611);
  const auto between = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int round = 0; round < 300; ++round) {
    FrameGeometry g;
    for (FramePieceGeometry& piece : g)
      piece = {between(0, 5) > 0, between(1, 12), between(1, 12), between(-15, 15)};
    const int left = between(0, 60), top = between(0, 60);
    const RECT image{left, top, left + between(0, 70), top + between(0, 70)};
    const int areaLeft = between(-40, 150), areaTop = between(-40, 150);
    const RECT area{areaLeft, areaTop, areaLeft + between(1, 40), areaTop + between(1, 40)};
    Canvas expected;
    for (const auto& [point, value] : PaintedWhole(g, image)) {
      const auto [x, y] = point;
      if (x >= area.left && x < area.right && y >= area.top && y < area.bottom) expected[point] = value;
    }
    Canvas cut;
    for (const FramePlacement& p : FramePlacements(g, image, area)) Paint(cut, p);
    ASSERT_EQ(cut, expected) << "round " << round;
  }
}

// Offsets at int's limits put edges billions of pixels long around a large picture;
// only the tiles inside the area are visited, and none wraps around.
TEST(FrameTilingTest, FarOffsetsVisitOnlyTheTilesInsideTheArea) {
  FrameGeometry g;
  g.fill(FramePieceGeometry{true, 1, 1, 0});
  g[kTopLeftCorner].offset = INT_MIN;
  g[kTopRightCorner].offset = INT_MIN;
  g[kBottomLeftCorner].offset = INT_MAX;
  g[kTopEdge].offset = 1;
  const RECT image{0, 0, 4000, 3000};
  // The top edge runs at y = 0 from far left to far right: 64 one-pixel tiles here.
  const std::vector<FramePlacement> top = FramePlacements(g, image, RECT{100, -50, 164, 50});
  ASSERT_EQ(top.size(), 64u);
  EXPECT_TRUE(top[0].piece == kTopEdge && top[0].target.left == 100 && top[0].target.top == 0);
  // The right edge starts far above the picture and runs down to its bottom.
  const std::vector<FramePlacement> right = FramePlacements(g, image, RECT{3990, -50, 4010, 50});
  EXPECT_EQ(std::count_if(right.begin(), right.end(),
                          [](const FramePlacement& p) { return p.piece == kRightEdge; }),
            100);
}

}  // namespace
