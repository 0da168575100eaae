#include "pixels/mosaic.h"

#include <algorithm>

namespace {

// One cell: `columns` x `rows` pixels from (x, y), counted from the rectangle's first
// pixel.
void AverageCell(const PixelRect& rect, int x, int y, int columns, int rows) {
  long long sums[3] = {0, 0, 0};
  const PixelRect cell{rect.buffer,           rect.x0 + x,        rect.y0 + y,
                       rect.x0 + x + columns, rect.y0 + y + rows, rect.stride};
  ForEachPixel(cell, [&](const BYTE* pixel, int, int) {
    for (int i = 0; i < 3; ++i) sums[i] += pixel[i];
  });
  const long long count = static_cast<long long>(columns) * rows;
  BYTE mean[3];
  for (int i = 0; i < 3; ++i) mean[i] = static_cast<BYTE>(sums[i] / count);
  ForEachPixel(cell, [&](BYTE* pixel, int, int) { std::copy(mean, mean + 3, pixel); });
}

}  // namespace

void PixelateCells(const PixelRect& rect, int cellSize) {
  if (rect.empty() || cellSize <= 0) return;
  const int height = rect.height();
  for (int top = 0; top < height; top += cellSize) {
    const int rows = std::min(cellSize, height - top);
    // Buffer rows run bottom-up: the cell from picture row `top` down starts at
    // buffer row height - top - rows.
    const int y = height - top - rows;
    for (int x = 0; x < rect.width(); x += cellSize)
      AverageCell(rect, x, y, std::min(cellSize, rect.width() - x), rows);
  }
}
