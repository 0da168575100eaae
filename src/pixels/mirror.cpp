#include "pixels/mirror.h"

#include <utility>

void MirrorRows(const PixelRect& rect) {
  if (rect.empty()) return;
  const int width = rect.width();
  for (int y = 0; y < rect.height(); ++y) {
    for (int x = 0; x < width / 2; ++x) {
      BYTE* left = rect.At(x, y);
      BYTE* right = rect.At(width - 1 - x, y);
      std::swap(left[0], right[0]);
      std::swap(left[1], right[1]);
      std::swap(left[2], right[2]);
    }
  }
}
