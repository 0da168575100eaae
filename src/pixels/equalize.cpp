#include "pixels/equalize.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

using Histogram = std::array<std::uint32_t, 256>;
using Table = std::array<BYTE, 256>;

// The counts of the three byte positions. Even and odd pixels count into separate
// histograms, added up at the end: a run of equal bytes then does not make every
// increment wait for the one before it.
struct Histograms {
  Histogram position[3];

  explicit Histograms(const PixelRect& rect) {
    Histogram even[3] = {};
    Histogram odd[3] = {};
    const int w = rect.width();
    for (int y = 0; y < rect.height(); ++y) {
      const BYTE* p = rect.At(0, y);
      int x = 0;
      for (; x + 1 < w; x += 2, p += 6) {
        ++even[0][p[0]];
        ++even[1][p[1]];
        ++even[2][p[2]];
        ++odd[0][p[3]];
        ++odd[1][p[4]];
        ++odd[2][p[5]];
      }
      if (x < w) {
        ++even[0][p[0]];
        ++even[1][p[1]];
        ++even[2][p[2]];
      }
    }
    for (int c = 0; c < 3; ++c) {
      for (int i = 0; i < 256; ++i) position[c][static_cast<std::size_t>(i)] = even[c][i] + odd[c][i];
    }
  }
};

Table EqualizingTable(const Histogram& counts, double f) {
  Table table{};
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < 256; ++i) {
    sum += counts[i];
    table[i] =
        static_cast<BYTE>(std::clamp(static_cast<long long>(static_cast<double>(sum) * f), 0LL, 255LL));
  }
  return table;
}

}  // namespace

void EqualizePixels(const PixelRect& rect) {
  if (rect.empty()) return;
  const Histograms counts(rect);
  const double f = 255.0 / (static_cast<double>(rect.width()) * rect.height());
  const Table table[3] = {EqualizingTable(counts.position[0], f), EqualizingTable(counts.position[1], f),
                          EqualizingTable(counts.position[2], f)};
  for (int y = 0; y < rect.height(); ++y) {
    BYTE* p = rect.At(0, y);
    for (int x = 0; x < rect.width(); ++x, p += 3) {
      p[0] = table[0][p[0]];
      p[1] = table[1][p[1]];
      p[2] = table[2][p[2]];
    }
  }
}
