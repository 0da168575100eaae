#include "pixels/line_patterns.h"

#include <algorithm>
#include <array>

namespace {

using Table = std::array<BYTE, 256>;

// The byte transform v -> trunc(v * scale + lift), as a table.
Table Transform(double scale, double lift) {
  Table table{};
  for (int v = 0; v < 256; ++v)
    table[static_cast<std::size_t>(v)] =
        static_cast<BYTE>(std::clamp(static_cast<int>(v * scale + lift), 0, 255));
  return table;
}

// The rows the lines touch, counted as the rules count buffer rows: row r is the
// surface's r-th row from the bottom, pixel x the x-th from the image rectangle's left
// edge.
template <int Bpp>
struct Area {
  const PixelRows& rows;
  int top() const { return rows.height() - 1; }  // the image rectangle's top row
  BYTE* At(int x, int r) const { return rows.out[static_cast<std::size_t>(r)] + x * Bpp; }
};

void Apply(const Table& table, BYTE* pixel) {
  pixel[0] = table[pixel[0]];
  pixel[1] = table[pixel[1]];
  pixel[2] = table[pixel[2]];
}

// Row r's pixels from column `from` up to `to` (exclusive).
template <int Bpp>
void ApplyRun(const Table& table, const Area<Bpp>& area, int r, int from, int to) {
  BYTE* bytes = area.At(from, r);
  if constexpr (Bpp == 3) {
    for (int i = 0; i < (to - from) * 3; ++i) bytes[i] = table[bytes[i]];
  } else {
    for (int x = from; x < to; ++x, bytes += Bpp) Apply(table, bytes);
  }
}

// Row r's pixels from the left edge to `right`, except every `spacing`th from the
// left edge on.
template <int Bpp>
void ApplyRunsBetween(const Table& table, const Area<Bpp>& area, int r, int right, int spacing) {
  for (int start = 0; start < right; start += spacing)
    ApplyRun(table, area, r, start + 1, std::min(start + spacing, right));
}

template <int Bpp>
void CheckLines(const Area<Bpp>& at, int width) {
  static const Table line = Transform(0.8, 51.0);
  for (int r = at.top() - 10; r >= 0; r -= 10) ApplyRunsBetween(line, at, r, width, 10);
  // Row by row rather than line by line: the same pixels, read in memory order.
  for (int r = at.top(); r >= 0; --r) {
    for (int x = 10; x < width; x += 10) Apply(line, at.At(x, r));
  }
}

template <int Bpp>
void BlockGrooves(const Area<Bpp>& at, int width, int bottom) {
  static const Table light = Transform(0.7, 60.0);
  static const Table middle = Transform(0.9, 20.0);
  for (int r = at.top() - 30; r >= 0; r -= 30) {
    ApplyRunsBetween(light, at, r, width, 30);
    ApplyRunsBetween(light, at, r + 2, width, 30);
    ApplyRun(middle, at, r + 1, 0, width);
  }
  for (int r = at.top(); r >= 0; --r) {
    const bool outerLines = (r - bottom + 1) % 30 != 0;
    for (int x = 30; x < width; x += 30) {
      if (outerLines) {
        Apply(light, at.At(x, r));
        Apply(light, at.At(x - 2, r));
      }
      Apply(middle, at.At(x - 1, r));
    }
  }
}

// The rows of a whole buffer that the lines can touch: columns L .. R - 1 and buffer
// rows 0 .. Hs - T - 1, the image rectangle kept inside the surface.
PixelRows AreaOf(const PixelRect& surface, const RECT& image) {
  if (surface.empty()) return PixelRows();
  const int left = std::clamp(static_cast<int>(image.left), 0, surface.width());
  const int right = std::clamp(static_cast<int>(image.right), left, surface.width());
  const int top = std::clamp(static_cast<int>(image.top), 0, surface.height());
  return RowsOf(PixelRect{surface.buffer, surface.x0 + left, surface.y0, surface.x0 + right,
                          surface.y0 + surface.height() - top, surface.stride});
}

}  // namespace

void DrawCheckLines(const PixelRect& surface, const RECT& image) { DrawCheckLines(AreaOf(surface, image)); }

void DrawCheckLines(const PixelRows& area) {
  if (area.empty()) return;
  if (area.bytesPerPixel == 4) {
    CheckLines(Area<4>{area}, area.width);
  } else {
    CheckLines(Area<3>{area}, area.width);
  }
}

void DrawBlockGrooves(const PixelRect& surface, const RECT& image) {
  DrawBlockGrooves(AreaOf(surface, image), image);
}

void DrawBlockGrooves(const PixelRows& area, const RECT& image) {
  if (area.empty()) return;
  // The area's rows end at the surface's bottom and start at row T.
  const int top = std::max(static_cast<int>(image.top), 0);
  const int surfaceHeight = top + area.height();
  const int bottom = std::clamp(static_cast<int>(image.bottom), top, surfaceHeight);
  if (area.bytesPerPixel == 4) {
    BlockGrooves(Area<4>{area}, area.width, bottom);
  } else {
    BlockGrooves(Area<3>{area}, area.width, bottom);
  }
}
