// Pens and the drawing calls. Each call resolves its DC once, takes its points to device
// coordinates, lets raster_geometry turn the figure into pixels inside the DC's clip and
// paints them with the DC's DrawState.
#include "platform/gdi_draw.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <vector>

#include "platform/gdi_objects.h"
#include "platform/raster_geometry.h"
#include "platform/raster_spans.h"

using namespace platform::gdi;
namespace raster = platform::raster;
using raster::Point64;

namespace {

// GDI's device space: coordinates beyond it make a drawing call fail.
constexpr std::int64_t kDeviceLimit = std::int64_t{1} << 27;
// PS_DOT: runs of three pixels on and three off.
constexpr std::int64_t kDotRun = 3;

// A DC ready to draw on: its resolved state and the raster with its origin and clip.
struct Canvas {
  DcObject* dc;
  Surface surface;

  const DrawState& draw() const { return dc->draw; }
  raster::Coverage NewCoverage() const { return raster::Coverage(surface.clip); }
  bool ToDevice(std::int64_t x, std::int64_t y, Point64* out) const {
    *out = {surface.originX + x, surface.originY + y};
    return std::max(std::abs(out->x), std::abs(out->y)) <= kDeviceLimit;
  }
  void Paint(raster::Coverage& coverage, std::uint32_t pixel) const {
    raster::PaintSpans(*surface.raster, coverage.Merged(), pixel, draw().rop);
  }
};

std::optional<Canvas> CanvasOf(HDC hdc) {
  auto* dc = Lookup<DcObject>(hdc);
  if (!dc) return std::nullopt;
  auto surface = SurfaceOf(*dc);
  if (!surface) return std::nullopt;
  return Canvas{dc, *surface};
}

// One-pixel pen lines, painted pixel by pixel as they are traced: the sides of one figure
// that cross combine twice with the ROP2, as GDI draws them. The dash pattern runs on
// from line to line. Every traced pixel, dash or gap, is also recorded in `traced`.
class ThinStroke {
 public:
  ThinStroke(const Canvas& canvas, raster::Coverage& traced) : canvas_(canvas), traced_(traced) {}

  void Line(Point64 from, Point64 to) {
    const auto visit = [this](int x, int y, std::int64_t step) { Visit(x, y, done_ + step); };
    done_ += raster::TraceLine(from, to, canvas_.surface.clip, visit);
  }

  // A thin geometric pen also draws the last point of an open path whose last line
  // (from `from` to `to`) is slanted.
  void EndOpenPath(Point64 from, Point64 to) {
    const RECT& clip = canvas_.surface.clip;
    if (canvas_.draw().penEndsSlantedLines && from.x != to.x && from.y != to.y && to.x >= clip.left &&
        to.x < clip.right && to.y >= clip.top && to.y < clip.bottom) {
      Visit(static_cast<int>(to.x), static_cast<int>(to.y), done_);
    }
  }

 private:
  void Visit(int x, int y, std::int64_t step) {
    const DrawState& draw = canvas_.draw();
    traced_.Add(y, x, x + 1);
    if (!draw.penDotted || (step / kDotRun) % 2 == 0) {
      raster::PaintPixel(*canvas_.surface.raster, x, y, draw.penPixel, draw.rop);
    }
  }

  const Canvas& canvas_;
  raster::Coverage& traced_;
  std::int64_t done_ = 0;
};

// Strokes a path with the selected pen (closed: back to its first point) and returns the
// pixels the pen covers.
raster::Coverage Stroke(const Canvas& canvas, const std::vector<Point64>& path, bool closed) {
  raster::Coverage covered = canvas.NewCoverage();
  const DrawState& draw = canvas.draw();
  if (draw.pen == PenKind::Thin) {
    ThinStroke stroke(canvas, covered);
    for (std::size_t i = 0; i + 1 < path.size(); ++i) stroke.Line(path[i], path[i + 1]);
    if (closed && path.size() > 1) stroke.Line(path.back(), path.front());
    if (!closed && path.size() > 1) stroke.EndOpenPath(path[path.size() - 2], path.back());
  } else if (draw.pen == PenKind::Wide) {
    raster::AddWidePolyline(covered, path, static_cast<int>(draw.penWidth), draw.penCap, closed);
    canvas.Paint(covered, draw.penPixel);
  }
  return covered;
}

// A closed outline stroked with the pen and `inside` filled with the brush, less the
// pixels the pen covers.
void StrokeAndFill(const Canvas& canvas, const std::vector<Point64>& outline, raster::Coverage& inside) {
  raster::Coverage pen = Stroke(canvas, outline, true);
  if (!canvas.draw().brushVisible) return;
  inside.Subtract(pen);
  canvas.Paint(inside, canvas.draw().brushPixel);
}

// The two corners of a box in device coordinates, ordered; false beyond device space.
bool DeviceBox(const Canvas& canvas, int left, int top, int right, int bottom, Point64* topLeft,
               Point64* bottomRight) {
  Point64 a, b;
  if (!canvas.ToDevice(left, top, &a) || !canvas.ToDevice(right, bottom, &b)) return false;
  *topLeft = {std::min(a.x, b.x), std::min(a.y, b.y)};
  *bottomRight = {std::max(a.x, b.x), std::max(a.y, b.y)};
  return true;
}

// A box with exclusive right and bottom edges: the pen traces its outermost pixels
// counter-clockwise from the top-right one; the brush fills the box less its last column
// and row and less what the pen covers.
void DrawBox(const Canvas& canvas, Point64 topLeft, Point64 bottomRight) {
  const std::int64_t l = topLeft.x, t = topLeft.y, r = bottomRight.x - 1, b = bottomRight.y - 1;
  raster::Coverage inside = canvas.NewCoverage();
  inside.AddBox(l, t, r, b);
  StrokeAndFill(canvas, {{r, t}, {l, t}, {l, b}, {r, b}}, inside);
}

}  // namespace

HPEN ExtCreatePen(DWORD style, DWORD width, const LOGBRUSH* brush, DWORD styleCount, const DWORD* styles) {
  if (!brush || styleCount != 0 || styles != nullptr) return nullptr;
  const DWORD type = style & PS_TYPE_MASK;
  const DWORD dash = style & PS_STYLE_MASK;
  const DWORD cap = style & PS_ENDCAP_MASK;
  const bool geometric = type == PS_GEOMETRIC;
  if ((type != PS_COSMETIC && !geometric) || (style & PS_JOIN_MASK) != PS_JOIN_ROUND) return nullptr;
  if (dash != PS_SOLID && dash != PS_NULL && !(dash == PS_DOT && !geometric)) return nullptr;
  if (cap != PS_ENDCAP_ROUND && cap != PS_ENDCAP_SQUARE && cap != PS_ENDCAP_FLAT) return nullptr;
  if (!geometric && width != 1) return nullptr;
  if (brush->lbStyle != BS_SOLID && brush->lbStyle != BS_NULL) return nullptr;
  if (brush->lbStyle == BS_NULL) style = (style & ~PS_STYLE_MASK) | PS_NULL;
  const std::int64_t signedWidth = static_cast<std::int32_t>(width);
  const std::int64_t absolute = signedWidth < 0 ? -signedWidth : signedWidth;
  // A pen the raster cannot trace is refused here, where its maker can still take
  // its failure path, rather than accepted to draw nothing.
  if (absolute > raster::kMaxFigureExtent) return nullptr;
  return static_cast<HPEN>(Register(PenObject{style, absolute, brush->lbColor & raster::kColorMask}));
}

HPEN CreatePen(int style, int width, COLORREF color) {
  if (style != static_cast<int>(PS_SOLID) && style != static_cast<int>(PS_DOT) &&
      style != static_cast<int>(PS_NULL))
    return nullptr;
  const LOGBRUSH brush{BS_SOLID, color, 0};
  const std::int64_t absolute = width < 0 ? -static_cast<std::int64_t>(width) : width;
  if (absolute <= 1) return ExtCreatePen(PS_COSMETIC | static_cast<DWORD>(style), 1, &brush, 0, nullptr);
  const DWORD dash = style == static_cast<int>(PS_NULL) ? PS_NULL : PS_SOLID;
  return ExtCreatePen(PS_GEOMETRIC | dash, static_cast<DWORD>(absolute), &brush, 0, nullptr);
}

BOOL MoveToEx(HDC hdc, int x, int y, POINT* previous) {
  auto* dc = Lookup<DcObject>(hdc);
  if (!dc) return FALSE;
  if (previous) *previous = dc->position;
  dc->position = POINT{x, y};
  return TRUE;
}

BOOL GetCurrentPositionEx(HDC hdc, POINT* position) {
  const auto* dc = Lookup<DcObject>(hdc);
  if (!dc || !position) return FALSE;
  *position = dc->position;
  return TRUE;
}

BOOL LineTo(HDC hdc, int x, int y) {
  const auto canvas = CanvasOf(hdc);
  Point64 from, to;
  if (!canvas || !canvas->ToDevice(canvas->dc->position.x, canvas->dc->position.y, &from) ||
      !canvas->ToDevice(x, y, &to)) {
    return FALSE;
  }
  Stroke(*canvas, {from, to}, false);
  canvas->dc->position = POINT{x, y};
  return TRUE;
}

BOOL Rectangle(HDC hdc, int left, int top, int right, int bottom) {
  const auto canvas = CanvasOf(hdc);
  Point64 topLeft, bottomRight;
  if (!canvas || !DeviceBox(*canvas, left, top, right, bottom, &topLeft, &bottomRight)) return FALSE;
  if (topLeft.x < bottomRight.x && topLeft.y < bottomRight.y) DrawBox(*canvas, topLeft, bottomRight);
  return TRUE;
}

BOOL Ellipse(HDC hdc, int left, int top, int right, int bottom) {
  const auto canvas = CanvasOf(hdc);
  Point64 topLeft, bottomRight;
  if (!canvas || !DeviceBox(*canvas, left, top, right, bottom, &topLeft, &bottomRight)) return FALSE;
  const std::int64_t width = bottomRight.x - topLeft.x;
  const std::int64_t height = bottomRight.y - topLeft.y;
  if (width == 0 || height == 0) return TRUE;
  if (width <= 2 || height <= 2) {
    DrawBox(*canvas, topLeft, bottomRight);
    return TRUE;
  }
  if (width > raster::kMaxFigureExtent || height > raster::kMaxFigureExtent) return FALSE;
  std::vector<Point64> outline = raster::EllipseOutline(width, height);
  for (Point64& p : outline) p = {p.x + topLeft.x, p.y + topLeft.y};
  raster::Coverage inside = canvas->NewCoverage();
  const auto rows = raster::EllipseRows(width, height);
  for (std::int64_t y = inside.FirstRow(topLeft.y); y < inside.EndRow(bottomRight.y); ++y) {
    const auto& row = rows[static_cast<std::size_t>(y - topLeft.y)];
    inside.Add(y, topLeft.x + row.first, topLeft.x + row.second);
  }
  StrokeAndFill(*canvas, outline, inside);
  return TRUE;
}

BOOL PolyBezier(HDC hdc, const POINT* points, DWORD count) {
  const auto canvas = CanvasOf(hdc);
  if (!canvas || !points || count < 4 || (count - 1) % 3 != 0) return FALSE;
  std::vector<Point64> device(count);
  for (DWORD i = 0; i < count; ++i) {
    if (!canvas->ToDevice(points[i].x, points[i].y, &device[i])) return FALSE;
  }
  std::vector<Point64> path{device[0]};
  for (DWORD i = 0; i + 3 < count; i += 3) {
    const std::vector<Point64> piece = raster::FlattenBezier(&device[i]);
    path.insert(path.end(), piece.begin() + 1, piece.end());
  }
  Stroke(*canvas, path, false);
  return TRUE;
}

BOOL ExtFloodFill(HDC hdc, int x, int y, COLORREF color, UINT type) {
  const auto canvas = CanvasOf(hdc);
  Point64 start;
  if (!canvas || type != FLOODFILLSURFACE || !canvas->ToDevice(x, y, &start)) return FALSE;
  const RECT& clip = canvas->surface.clip;
  if (start.x < clip.left || start.x >= clip.right || start.y < clip.top || start.y >= clip.bottom)
    return FALSE;
  raster::Raster& pixels = *canvas->surface.raster;
  const std::uint32_t target = raster::PixelFor(color & raster::kColorMask, canvas->surface.mono());
  if (pixels.Row(static_cast<int>(start.y))[start.x] != target) return FALSE;
  const DrawState& draw = canvas->draw();
  // Every pixel of the area starts as `target` and all become the same `painted`, so
  // a pixel still of the target colour is one not yet reached: no visited set is needed.
  std::uint32_t painted = target;
  raster::ApplyRop(draw.rop, nullptr, draw.brushPixel, &painted, 1);
  if (!draw.brushVisible || painted == target) return TRUE;
  struct Seed {
    int x;
    int y;
  };
  std::vector<Seed> seeds{{static_cast<int>(start.x), static_cast<int>(start.y)}};
  while (!seeds.empty()) {
    const Seed seed = seeds.back();
    seeds.pop_back();
    if (pixels.Row(seed.y)[seed.x] != target) continue;
    std::uint32_t* row = pixels.MutableRow(seed.y);
    int left = seed.x;
    int right = seed.x + 1;
    while (left > clip.left && row[left - 1] == target) --left;
    while (right < clip.right && row[right] == target) ++right;
    std::fill(row + left, row + right, painted);
    for (int neighbour : {seed.y - 1, seed.y + 1}) {
      if (neighbour < clip.top || neighbour >= clip.bottom) continue;
      const std::uint32_t* next = pixels.Row(neighbour);
      for (int i = left; i < right; ++i) {
        if (next[i] == target && (i == left || next[i - 1] != target)) seeds.push_back({i, neighbour});
      }
    }
  }
  return TRUE;
}
