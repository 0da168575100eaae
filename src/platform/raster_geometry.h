// Figures as pixels, the way GDI rasterises them: one-pixel lines, wide lines with
// their caps and joins, ellipse outlines, Bézier flattening. Everything works in device
// coordinates and only on the rows and columns of a clip rectangle, so a figure costs in
// proportion to the pixels it can touch, whatever its coordinates. Callers keep
// coordinates within +-2^28 and widths and ellipse sizes within kMaxFigureExtent, which
// keeps every product inside 64 bits and every outline trace short.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/raster_spans.h"

namespace platform::raster {

inline constexpr std::int64_t kMaxFigureExtent = std::int64_t{1} << 18;

struct Point64 {
  std::int64_t x = 0;
  std::int64_t y = 0;
  bool operator==(const Point64&) const = default;
};

// Rounds n / d (d > 0) up.
constexpr std::int64_t CeilDiv(std::int64_t n, std::int64_t d) {
  return n >= 0 ? (n + d - 1) / d : -((-n) / d);
}

// The pixels of a one-pixel line from `from` to `to`, `to` itself left out as GDI does.
// Along the longer axis every step is one pixel; the other coordinate is the exact one
// rounded to the nearer integer, halves rounding down. `visit(x, y, step)` sees the
// pixels inside `clip` (step counts pixels from `from`, for dash patterns); the result is
// the number of pixels of the whole line.
template <typename Visit>
std::int64_t TraceLine(Point64 from, Point64 to, const RECT& clip, Visit&& visit);

// Adds the pixels of a polygon with integer vertices, filled even-odd: pixel (x, y) is
// inside when the point (x, y), its top-left corner, is; left and top edges count, right
// and bottom edges do not.
void AddPolygon(Coverage& coverage, const Point64* points, int count);

// A filled ellipse inscribed in a width x height box, as rows of [left, right) offsets
// from the box's left edge (an empty row has left == right). Boxes two pixels thin or
// less are full rectangles.
std::vector<std::pair<std::int64_t, std::int64_t>> EllipseRows(std::int64_t width, std::int64_t height);

// The outline pixels of an ellipse whose box is at least 3 x 3, as a closed path of
// neighbouring pixels (box-relative), counter-clockwise from the right end of the
// middle row; no point repeats its predecessor.
std::vector<Point64> EllipseOutline(std::int64_t width, std::int64_t height);

// A cubic Bézier as a polyline from p[0] to p[3]: halved until each piece's control
// points lie within a pixel of its chord (at most 256 pieces).
std::vector<Point64> FlattenBezier(const Point64 p[4]);

enum class LineCap { Round, Square, Flat };

// The round cap and join of a wide pen: a filled ellipse in a width x width box whose
// top-left corner is (x - width / 2, y - width / 2), computed once per figure.
class PenNib {
 public:
  explicit PenNib(int width);
  void Stamp(Coverage& coverage, Point64 centre) const;

 private:
  int width_;
  std::vector<std::pair<std::int64_t, std::int64_t>> rows_;
};

// A wide polyline: each segment a quadrilateral of the pen's width; round joins at the
// inner vertices (at every vertex when closed) and the pen's caps at the two ends of an
// open one. Repeated points are skipped; a path that is a single point draws a dot with
// round caps or when closed, and nothing otherwise.
void AddWidePolyline(Coverage& coverage, std::vector<Point64> points, int width, LineCap cap, bool closed);

// ---- template definition ----

template <typename Visit>
std::int64_t TraceLine(Point64 from, Point64 to, const RECT& clip, Visit&& visit) {
  const std::int64_t dx = to.x - from.x;
  const std::int64_t dy = to.y - from.y;
  const bool xMajor = (dx < 0 ? -dx : dx) >= (dy < 0 ? -dy : dy);
  const std::int64_t major = xMajor ? dx : dy;
  const std::int64_t minor = xMajor ? dy : dx;
  const std::int64_t length = major < 0 ? -major : major;
  if (length == 0) return 0;
  const std::int64_t step = major < 0 ? -1 : 1;
  const std::int64_t start = xMajor ? from.x : from.y;
  const std::int64_t lo = xMajor ? clip.left : clip.top;
  const std::int64_t hi = xMajor ? clip.right : clip.bottom;
  // Steps whose major coordinate start + i * step lies in [lo, hi).
  std::int64_t first = step > 0 ? lo - start : start - hi + 1;
  std::int64_t last = step > 0 ? hi - start : start - lo + 1;
  first = first > 0 ? first : 0;
  last = last < length ? last : length;
  if (first >= last) return length;
  // The minor offset at step i is ceil((2 i minor - length) / (2 length)); keep it as a
  // quotient and a remainder so that each step costs an addition.
  const std::int64_t twoLength = 2 * length;
  const std::int64_t numerator = 2 * first * minor - length;
  std::int64_t offset = CeilDiv(numerator, twoLength);
  std::int64_t remainder = offset * twoLength - numerator;
  const std::int64_t base = xMajor ? from.y : from.x;
  const std::int64_t minorLo = xMajor ? clip.top : clip.left;
  const std::int64_t minorHi = xMajor ? clip.bottom : clip.right;
  for (std::int64_t i = first; i < last; ++i) {
    const std::int64_t m = start + i * step;
    const std::int64_t n = base + offset;
    if (n >= minorLo && n < minorHi) {
      if (xMajor) {
        visit(static_cast<int>(m), static_cast<int>(n), i);
      } else {
        visit(static_cast<int>(n), static_cast<int>(m), i);
      }
    }
    remainder -= 2 * minor;
    if (remainder < 0) {
      remainder += twoLength;
      ++offset;
    } else if (remainder >= twoLength) {
      remainder -= twoLength;
      --offset;
    }
  }
  return length;
}

}  // namespace platform::raster
