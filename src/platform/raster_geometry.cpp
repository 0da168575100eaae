#include "platform/raster_geometry.h"

#include <algorithm>
#include <cmath>

namespace platform::raster {
namespace {

std::int64_t Abs(std::int64_t v) { return v < 0 ? -v : v; }

// GDI's rounding of a non-negative distance: halves go up.
std::int64_t RoundHalfUp(double v) { return static_cast<std::int64_t>(std::floor(v + 0.5)); }

// One segment of a wide line without its round parts: the rectangle of the pen's width
// around it, lengthened by half the width at an end with a square cap. Axis-aligned
// segments are boxes; others a quadrilateral whose half-widths across the line are the
// width's projections rounded once down-biased ("narrow", on the left of the direction
// of travel) and once up-biased ("wide", on its right), so the two sides differ by at
// most a pixel as GDI draws them.
void AddSegment(Coverage& coverage, Point64 a, Point64 b, int width, bool squareStart, bool squareEnd) {
  const std::int64_t dx = b.x - a.x;
  const std::int64_t dy = b.y - a.y;
  const std::int64_t half = width / 2;
  if (dx == 0 && dy == 0) return;
  if (dy == 0 || dx == 0) {
    const bool horizontal = dy == 0;
    const std::int64_t d = horizontal ? dx : dy;
    std::int64_t lo = horizontal ? std::min(a.x, b.x) : std::min(a.y, b.y);
    std::int64_t hi = horizontal ? std::max(a.x, b.x) : std::max(a.y, b.y);
    if ((squareStart && d > 0) || (squareEnd && d < 0)) lo -= half;
    if ((squareEnd && d > 0) || (squareStart && d < 0)) hi += half;
    const std::int64_t across = (horizontal ? a.y : a.x) - half;
    if (horizontal) {
      coverage.AddBox(lo, across, hi, across + width);
    } else {
      coverage.AddBox(across, lo, across + width, hi);
    }
    return;
  }
  const double length = std::hypot(static_cast<double>(dx), static_cast<double>(dy));
  const double acrossX = width * static_cast<double>(Abs(dy)) / length;
  const double acrossY = width * static_cast<double>(Abs(dx)) / length;
  Point64 narrow{RoundHalfUp(acrossX / 2), RoundHalfUp(acrossY / 2)};
  Point64 wide{RoundHalfUp((acrossX + 1) / 2), RoundHalfUp((acrossY + 1) / 2)};
  if (dx < 0) {
    narrow.y = -narrow.y;
    wide.y = -wide.y;
  }
  if (dy < 0) {
    std::swap(narrow, wide);
    narrow.x = -narrow.x;
    wide.x = -wide.x;
  }
  Point64 corners[4] = {{a.x - narrow.x, a.y + narrow.y},
                        {a.x + wide.x, a.y - wide.y},
                        {b.x + wide.x, b.y - wide.y},
                        {b.x - narrow.x, b.y + narrow.y}};
  if (squareStart) {
    for (int i : {0, 1}) corners[i] = {corners[i].x - narrow.y, corners[i].y - narrow.x};
  }
  if (squareEnd) {
    for (int i : {2, 3}) corners[i] = {corners[i].x + wide.y, corners[i].y + wide.x};
  }
  AddPolygon(coverage, corners, 4);
}

// Walks the ellipse in a width x height box (both at least 3) quadrant by quadrant,
// from the middle rows outwards, with an integer error term: each step moves one pixel
// horizontally, vertically or both. `emit(right, lower, left, upper)` receives the four
// mirrored pixels of a step (x and y box-relative).
template <typename Emit>
void WalkEllipse(std::int64_t width, std::int64_t height, Emit&& emit) {
  const std::int64_t a = width - 1;
  const std::int64_t b = height - 1;
  const std::int64_t odd = b & 1;
  std::int64_t dx = 4 * (1 - a) * b * b;
  std::int64_t dy = 4 * (odd + 1) * a * a;
  std::int64_t err = dx + dy + odd * a * a;
  std::int64_t left = 0;
  std::int64_t right = a;
  std::int64_t lower = (b + 1) / 2;
  std::int64_t upper = lower - odd;
  const std::int64_t stepY = 8 * a * a;
  const std::int64_t stepX = 8 * b * b;
  do {
    emit(right, lower, left, upper);
    const std::int64_t e2 = 2 * err;
    if (e2 >= dx) {
      ++left;
      --right;
      dx += stepX;
      err += dx;
    }
    if (e2 <= dy) {
      ++lower;
      --upper;
      dy += stepY;
      err += dy;
    }
  } while (left <= right);
}

}  // namespace

void AddPolygon(Coverage& coverage, const Point64* points, int count) {
  if (count < 3) return;
  std::int64_t top = points[0].y;
  std::int64_t bottom = points[0].y;
  for (int i = 1; i < count; ++i) {
    top = std::min(top, points[i].y);
    bottom = std::max(bottom, points[i].y);
  }
  std::vector<std::int64_t> crossings;
  for (std::int64_t y = coverage.FirstRow(top); y < coverage.EndRow(bottom); ++y) {
    crossings.clear();
    for (int i = 0; i < count; ++i) {
      Point64 p = points[i];
      Point64 q = points[(i + 1) % count];
      if (p.y == q.y) continue;
      if (p.y > q.y) std::swap(p, q);
      if (y < p.y || y >= q.y) continue;
      crossings.push_back(p.x + CeilDiv((y - p.y) * (q.x - p.x), q.y - p.y));
    }
    std::sort(crossings.begin(), crossings.end());
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) coverage.Add(y, crossings[i], crossings[i + 1]);
  }
}

std::vector<std::pair<std::int64_t, std::int64_t>> EllipseRows(std::int64_t width, std::int64_t height) {
  std::vector<std::pair<std::int64_t, std::int64_t>> rows(
      static_cast<std::size_t>(std::max<std::int64_t>(height, 0)));
  if (width <= 2 || height <= 2) {
    for (auto& row : rows) row = {0, width};
    return rows;
  }
  for (auto& row : rows) row = {width, 0};
  WalkEllipse(width, height,
              [&](std::int64_t right, std::int64_t lower, std::int64_t left, std::int64_t upper) {
                for (std::int64_t y : {lower, upper}) {
                  auto& row = rows[static_cast<std::size_t>(y)];
                  row = {std::min(row.first, left), std::max(row.second, right + 1)};
                }
              });
  for (auto& row : rows) row.second = std::max(row.first, row.second);
  return rows;
}

std::vector<Point64> EllipseOutline(std::int64_t width, std::int64_t height) {
  std::vector<Point64> upperRight, upperLeft, lowerLeft, lowerRight;
  WalkEllipse(width, height,
              [&](std::int64_t right, std::int64_t lower, std::int64_t left, std::int64_t upper) {
                upperRight.push_back({right, upper});
                upperLeft.push_back({left, upper});
                lowerLeft.push_back({left, lower});
                lowerRight.push_back({right, lower});
              });
  std::vector<Point64> path;
  auto append = [&path](Point64 p) {
    if (path.empty() || !(path.back() == p)) path.push_back(p);
  };
  for (Point64 p : upperRight) append(p);
  for (auto it = upperLeft.rbegin(); it != upperLeft.rend(); ++it) append(*it);
  for (Point64 p : lowerLeft) append(p);
  for (auto it = lowerRight.rbegin(); it != lowerRight.rend(); ++it) append(*it);
  while (path.size() > 1 && path.back() == path.front()) path.pop_back();
  return path;
}

std::vector<Point64> FlattenBezier(const Point64 p[4]) {
  // In 1/16 pixel, so that halving keeps fractions; each piece ends on its last point,
  // rounded back to whole pixels.
  constexpr int kShift = 4;
  constexpr std::int64_t kOne = std::int64_t{1} << kShift;
  constexpr int kMaxDepth = 8;
  struct Piece {
    Point64 c[4];
    int depth;
  };
  auto isFlat = [](const Point64(&c)[4]) {
    const std::int64_t dx = c[3].x - c[0].x;
    const std::int64_t dy = c[3].y - c[0].y;
    const bool xMajor = Abs(dy) <= Abs(dx);
    for (int i : {1, 2}) {
      // A control point outside the chord's span along the major axis bends the curve back.
      const std::int64_t along = xMajor ? c[i].x : c[i].y;
      const std::int64_t from = xMajor ? c[0].x : c[0].y;
      const std::int64_t to = xMajor ? c[3].x : c[3].y;
      if (along < std::min(from, to) || along > std::max(from, to)) return false;
      const std::int64_t major = xMajor ? dx : dy;
      if (major == 0) continue;
      // Distance from the chord measured along the minor axis, in 1/16 pixel.
      const double expected =
          static_cast<double>(xMajor ? dy : dx) * static_cast<double>(along - from) / major;
      const double actual = static_cast<double>(xMajor ? c[i].y - c[0].y : c[i].x - c[0].x);
      if (std::abs(actual - expected) > kOne) return false;
    }
    return true;
  };
  auto mid = [](Point64 u, Point64 v) { return Point64{(u.x + v.x + 1) >> 1, (u.y + v.y + 1) >> 1}; };
  std::vector<Point64> out{p[0]};
  std::vector<Piece> stack{{{{p[0].x * kOne, p[0].y * kOne},
                             {p[1].x * kOne, p[1].y * kOne},
                             {p[2].x * kOne, p[2].y * kOne},
                             {p[3].x * kOne, p[3].y * kOne}},
                            0}};
  while (!stack.empty()) {
    Piece piece = stack.back();
    stack.pop_back();
    if (piece.depth >= kMaxDepth || isFlat(piece.c)) {
      out.push_back({(piece.c[3].x + kOne / 2) >> kShift, (piece.c[3].y + kOne / 2) >> kShift});
      continue;
    }
    const Point64* c = piece.c;
    const Point64 ab = mid(c[0], c[1]), bc = mid(c[1], c[2]), cd = mid(c[2], c[3]);
    const Point64 abc = mid(ab, bc), bcd = mid(bc, cd), m = mid(abc, bcd);
    // Second half first: the stack hands the first half back next.
    stack.push_back({{m, bcd, cd, c[3]}, piece.depth + 1});
    stack.push_back({{c[0], ab, abc, m}, piece.depth + 1});
  }
  out.back() = p[3];
  return out;
}

PenNib::PenNib(int width) : width_(width), rows_(EllipseRows(width, width)) {}

void PenNib::Stamp(Coverage& coverage, Point64 centre) const {
  const std::int64_t left = centre.x - width_ / 2;
  const std::int64_t top = centre.y - width_ / 2;
  const std::int64_t first = coverage.FirstRow(top);
  const std::int64_t end = coverage.EndRow(top + width_);
  for (std::int64_t y = first; y < end; ++y) {
    const auto& row = rows_[static_cast<std::size_t>(y - top)];
    coverage.Add(y, left + row.first, left + row.second);
  }
}

void AddWidePolyline(Coverage& coverage, std::vector<Point64> points, int width, LineCap cap, bool closed) {
  points.erase(std::unique(points.begin(), points.end()), points.end());
  while (closed && points.size() > 1 && points.back() == points.front()) points.pop_back();
  if (points.empty()) return;
  const PenNib nib(width);
  const std::size_t n = points.size();
  if (n == 1) {
    if (closed || cap == LineCap::Round) nib.Stamp(coverage, points[0]);
    return;
  }
  const std::size_t segments = closed ? n : n - 1;
  for (std::size_t i = 0; i < segments; ++i) {
    const bool first = !closed && i == 0;
    const bool last = !closed && i + 1 == segments;
    AddSegment(coverage, points[i], points[(i + 1) % n], width, first && cap == LineCap::Square,
               last && cap == LineCap::Square);
  }
  for (std::size_t i = 0; i < n; ++i) {
    const bool end = !closed && (i == 0 || i + 1 == n);
    if (!end || cap == LineCap::Round) nib.Stamp(coverage, points[i]);
  }
}

}  // namespace platform::raster
