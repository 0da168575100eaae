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

void Apply(const Table& table, BYTE* pixel) {
  pixel[0] = table[pixel[0]];
  pixel[1] = table[pixel[1]];
  pixel[2] = table[pixel[2]];
}

// Row r's pixels from column `from` up to `to` (exclusive).
void ApplyRun(const Table& table, const PixelRect& surface, int r, int from, int to) {
  BYTE* bytes = surface.At(from, r);
  for (int i = 0; i < (to - from) * 3; ++i) bytes[i] = table[bytes[i]];
}

// Row r's pixels from `left` to `right`, except every `spacing`th from `left` on.
void ApplyRunsBetween(const Table& table, const PixelRect& surface, int r, int left, int right, int spacing) {
  for (int start = left; start < right; start += spacing)
    ApplyRun(table, surface, r, start + 1, std::min(start + spacing, right));
}

// The image rectangle kept inside the surface, and where its rows lie in the buffer.
struct Layout {
  int left, right;  // columns L .. R - 1
  int top;          // buffer row Hs - T - 1 of the rectangle's top row
  int bottom;       // the rectangle's bottom edge B in surface coordinates
  bool empty() const { return left >= right || top < 0; }
};

Layout LayoutOf(const PixelRect& surface, const RECT& image) {
  const int width = surface.buffer ? surface.width() : 0;
  const int height = surface.buffer ? surface.height() : 0;
  const int left = std::clamp(static_cast<int>(image.left), 0, width);
  const int right = std::clamp(static_cast<int>(image.right), left, width);
  const int top = std::clamp(static_cast<int>(image.top), 0, height);
  const int bottom = std::clamp(static_cast<int>(image.bottom), top, height);
  return Layout{left, right, height - top - 1, bottom};
}

}  // namespace

void DrawCheckLines(const PixelRect& surface, const RECT& image) {
  const Layout at = LayoutOf(surface, image);
  if (at.empty()) return;
  static const Table line = Transform(0.8, 51.0);
  for (int r = at.top - 10; r >= 0; r -= 10) ApplyRunsBetween(line, surface, r, at.left, at.right, 10);
  // Row by row rather than line by line: the same pixels, read in memory order.
  for (int r = at.top; r >= 0; --r) {
    for (int x = at.left + 10; x < at.right; x += 10) Apply(line, surface.At(x, r));
  }
}

void DrawBlockGrooves(const PixelRect& surface, const RECT& image) {
  const Layout at = LayoutOf(surface, image);
  if (at.empty()) return;
  static const Table light = Transform(0.7, 60.0);
  static const Table middle = Transform(0.9, 20.0);
  for (int r = at.top - 30; r >= 0; r -= 30) {
    ApplyRunsBetween(light, surface, r, at.left, at.right, 30);
    ApplyRunsBetween(light, surface, r + 2, at.left, at.right, 30);
    ApplyRun(middle, surface, r + 1, at.left, at.right);
  }
  for (int r = at.top; r >= 0; --r) {
    const bool outerLines = (r - at.bottom + 1) % 30 != 0;
    for (int x = at.left + 30; x < at.right; x += 30) {
      if (outerLines) {
        Apply(light, surface.At(x, r));
        Apply(light, surface.At(x - 2, r));
      }
      Apply(middle, surface.At(x - 1, r));
    }
  }
}
