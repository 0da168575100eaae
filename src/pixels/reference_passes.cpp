#include "pixels/reference_passes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "pixels/adjust_colors.h"
#include "pixels/working_copy.h"

namespace reference {
namespace {

BYTE ClampByte(int value) { return static_cast<BYTE>(std::clamp(value, 0, 255)); }

template <typename NewByte>
void RunNeighbourhoodFilter(const PixelRect& rect, int steps, NewByte&& newByte,
                            void (*beforeRefill)(const PixelRect&) = nullptr) {
  if (rect.empty()) return;
  WorkingCopy copy(rect);
  if (!copy.valid()) return;
  for (int step = 0; step < steps; ++step) {
    if (beforeRefill) beforeRefill(rect);
    copy.Refill();
    ForEachPixel(rect, [&](BYTE* pixel, int x, int y) {
      const BYTE* source = copy.Around(x, y);
      for (int i = 0; i < 3; ++i) pixel[i] = newByte(source + i, copy.rowBytes());
    });
  }
}

// trunc(v * scale + lift) for each byte of a pixel.
void Lighten(BYTE* pixel, double scale, double lift) {
  for (int i = 0; i < 3; ++i) pixel[i] = ClampByte(static_cast<int>(pixel[i] * scale + lift));
}

// The image rectangle's edges kept inside the surface.
struct Edges {
  int left, top, right, bottom;
};
Edges EdgesOf(const PixelRect& surface, const RECT& image) {
  const int left = std::clamp(static_cast<int>(image.left), 0, surface.width());
  const int top = std::clamp(static_cast<int>(image.top), 0, surface.height());
  return Edges{left, top, std::clamp(static_cast<int>(image.right), left, surface.width()),
               std::clamp(static_cast<int>(image.bottom), top, surface.height())};
}

void LiftTowardsWhite(const PixelRect& rect) {
  ForEachPixel(rect, [](BYTE* pixel, int, int) {
    for (int i = 0; i < 3; ++i)
      pixel[i] = static_cast<BYTE>(255 - ((255 - pixel[i]) * (255 - pixel[i])) / 255);
  });
}

}  // namespace

void AdjustColors(const PixelRect& rect, const AdjustmentSettings& settings) {
  for (const ByteTables& step : ColorTableSteps(settings)) {
    ForEachPixel(rect, [&](BYTE* pixel, int, int) {
      for (int k = 0; k < 3; ++k) pixel[k] = step.byte[k][pixel[k]];
    });
  }
  const std::optional<ColorMatrix> m = ColorMatrixStep(settings);
  if (!m) return;
  ForEachPixel(rect, [&](BYTE* pixel, int, int) {
    const double c0 = pixel[0];
    const double c1 = pixel[1];
    const double c2 = pixel[2];
    for (int j = 0; j < 3; ++j) {
      const double v = ((c2 * (*m)[2][j] + c1 * (*m)[1][j]) + c0 * (*m)[0][j]) + (*m)[3][j];
      pixel[j] = v < 0 ? 0 : v > 255 ? 255 : static_cast<BYTE>(v);
    }
  });
}

void WhitenPixels(const PixelRect& rect, int steps) {
  RunNeighbourhoodFilter(
      rect, steps,
      [](const BYTE* c, std::ptrdiff_t row) {
        const int blurred = (c[-row - 3] + 2 * c[-row] + c[-row + 3] + 2 * c[-3] + 4 * c[0] + 2 * c[3] +
                             c[row - 3] + 2 * c[row] + c[row + 3]) >>
                            4;
        return ClampByte(static_cast<int>(blurred * 0.9 + 25.5));
      },
      LiftTowardsWhite);
}

void SharpenPixels(const PixelRect& rect, int steps) {
  RunNeighbourhoodFilter(rect, steps, [](const BYTE* c, std::ptrdiff_t row) {
    return ClampByte((36 * c[0] - c[-row] - c[row] - c[-3] - c[3]) / 32);
  });
}

void SmoothPixels(const PixelRect& rect, int steps) {
  RunNeighbourhoodFilter(rect, steps, [](const BYTE* c, std::ptrdiff_t row) {
    int sum = 0;
    for (std::ptrdiff_t dy : {-row, std::ptrdiff_t{0}, row}) sum += c[dy - 3] + c[dy] + c[dy + 3];
    return static_cast<BYTE>(sum / 9);
  });
}

void AdjustPixels(const PixelRect& rect, const AdjustmentSettings& s) {
  reference::AdjustColors(rect, s);
  WhitenPixels(rect, s.whitenSteps);
  SharpenPixels(rect, s.sharpenSteps);
  SmoothPixels(rect, s.smoothSteps);
  ForEachPixel(rect, [&](BYTE* p, int, int) {
    if (s.invert) {
      for (int k = 0; k < 3; ++k) p[k] = static_cast<BYTE>(255 - p[k]);
    }
    if (s.gray) p[0] = p[1] = p[2] = static_cast<BYTE>((p[2] * 0.299 + p[0] * 0.114) + p[1] * 0.587);
  });
}

void MirrorRows(const PixelRect& rect) {
  ForEachPixel(rect, [&](BYTE* pixel, int x, int y) {
    if (2 * x + 1 >= rect.width()) return;
    BYTE* other = rect.At(rect.width() - 1 - x, y);
    for (int i = 0; i < 3; ++i) std::swap(pixel[i], other[i]);
  });
}

void FlipRows(const PixelRect& rect) {
  if (!rect.buffer) return;
  for (int k = 0; k < rect.height() / 2; ++k) {
    BYTE* low = rect.buffer + static_cast<std::ptrdiff_t>(rect.y0 + k) * rect.stride;
    BYTE* high = rect.buffer + static_cast<std::ptrdiff_t>(rect.y1 - 1 - k) * rect.stride;
    for (int i = 0; i < rect.stride; ++i) std::swap(low[i], high[i]);
  }
}

void RotateQuarter(const PixelRect& source, int angle, const PixelRect& destination) {
  const int w = source.width();
  const int h = source.height();
  if (destination.empty() || destination.width() != h || destination.height() != w) return;
  ForEachPixel(source, [&](BYTE* pixel, int x, int y) {
    BYTE* to = angle == 90 ? destination.At(h - 1 - y, x) : destination.At(y, w - 1 - x);
    for (int i = 0; i < 3; ++i) to[i] = pixel[i];
  });
}

void ConvolvePixels(const PixelRect& rect, std::span<const int> kernel, int n, int divisor, int offset) {
  if (n < 1 || n % 2 == 0 || kernel.size() != static_cast<std::size_t>(n * n) || divisor == 0) return;
  WorkingCopy copy(rect, n / 2);
  if (!copy.valid()) return;
  copy.Refill();
  ForEachPixel(rect, [&](BYTE* pixel, int x, int y) {
    for (int i = 0; i < 3; ++i) {
      long long sum = 0;
      for (int j = 0; j < n; ++j) {
        for (int k = 0; k < n; ++k) {
          const BYTE* neighbour = copy.Around(x + k - n / 2, y + j - n / 2);
          sum += static_cast<long long>(kernel[static_cast<std::size_t>(j * n + k)]) * neighbour[i];
        }
      }
      pixel[i] = static_cast<BYTE>(std::clamp(sum / divisor + offset, 0LL, 255LL));
    }
  });
}

void EqualizePixels(const PixelRect& rect) {
  std::array<std::uint32_t, 256> counts[3] = {};
  ForEachPixel(rect, [&](BYTE* pixel, int, int) {
    for (int i = 0; i < 3; ++i) ++counts[i][pixel[i]];
  });
  const double f = 255.0 / (rect.width() * rect.height());
  std::array<BYTE, 256> table[3];
  for (int i = 0; i < 3; ++i) {
    double sum = 0;
    for (int v = 0; v < 256; ++v) {
      sum += counts[i][static_cast<std::size_t>(v)];
      table[i][static_cast<std::size_t>(v)] = ClampByte(static_cast<int>(sum * f));
    }
  }
  ForEachPixel(rect, [&](BYTE* pixel, int, int) {
    for (int i = 0; i < 3; ++i) pixel[i] = table[i][pixel[i]];
  });
}

void DrawCheckLines(const PixelRect& surface, const RECT& image) {
  if (surface.empty()) return;
  const Edges e = EdgesOf(surface, image);
  const int hs = surface.height();
  for (int r = hs - e.top - 11; r >= 0; r -= 10) {
    for (int x = e.left; x < e.right; ++x) {
      if ((x - e.left) % 10 != 0) Lighten(surface.At(x, r), 0.8, 51.0);
    }
  }
  for (int x = e.left + 10; x < e.right; x += 10) {
    for (int r = hs - e.top - 1; r >= 0; --r) Lighten(surface.At(x, r), 0.8, 51.0);
  }
}

void DrawBlockGrooves(const PixelRect& surface, const RECT& image) {
  if (surface.empty()) return;
  const Edges e = EdgesOf(surface, image);
  const int hs = surface.height();
  for (int r = hs - e.top - 31; r >= 0; r -= 30) {
    for (int x = e.left; x < e.right; ++x) {
      if ((x - e.left) % 30 != 0) {
        Lighten(surface.At(x, r), 0.7, 60.0);
        Lighten(surface.At(x, r + 2), 0.7, 60.0);
      }
      Lighten(surface.At(x, r + 1), 0.9, 20.0);
    }
  }
  for (int x = e.left + 30; x < e.right; x += 30) {
    for (int r = hs - e.top - 1; r >= 0; --r) {
      if ((r - e.bottom + 1) % 30 != 0) {
        Lighten(surface.At(x, r), 0.7, 60.0);
        Lighten(surface.At(x - 2, r), 0.7, 60.0);
      }
      Lighten(surface.At(x - 1, r), 0.9, 20.0);
    }
  }
}

}  // namespace reference
