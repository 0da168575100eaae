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
template <int Bpp>
struct Histograms {
  Histogram position[3];

  explicit Histograms(const PixelRows& rows) {
    Histogram even[3] = {};
    Histogram odd[3] = {};
    const int w = rows.width;
    for (const BYTE* p : rows.out) {
      int x = 0;
      for (; x + 1 < w; x += 2, p += 2 * Bpp) {
        ++even[0][p[0]];
        ++even[1][p[1]];
        ++even[2][p[2]];
        ++odd[0][p[Bpp]];
        ++odd[1][p[Bpp + 1]];
        ++odd[2][p[Bpp + 2]];
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

template <int Bpp>
void Equalize(const PixelRows& rows) {
  const Histograms<Bpp> counts(rows);
  const double f = 255.0 / (static_cast<double>(rows.width) * rows.height());
  const Table table[3] = {EqualizingTable(counts.position[0], f), EqualizingTable(counts.position[1], f),
                          EqualizingTable(counts.position[2], f)};
  for (BYTE* p : rows.out) {
    for (int x = 0; x < rows.width; ++x, p += Bpp) {
      p[0] = table[0][p[0]];
      p[1] = table[1][p[1]];
      p[2] = table[2][p[2]];
    }
  }
}

}  // namespace

void EqualizePixels(const PixelRect& rect) { EqualizePixels(RowsOf(rect)); }

void EqualizePixels(const PixelRows& rows) {
  if (rows.empty()) return;
  if (rows.bytesPerPixel == 4) {
    Equalize<4>(rows);
  } else {
    Equalize<3>(rows);
  }
}
