#include "pixels/pixel_rows.h"

#include <bit>
#include <cstring>

#include "platform/platform.h"

// A 32-bit pixel 0x00RRGGBB holds blue, green, red, 0 in memory order on a
// little-endian machine, which every target is.
static_assert(std::endian::native == std::endian::little);

void PixelRows::FillUnwritten() {
  if (inPlace) return;
  for (std::size_t y = 0; y < out.size(); ++y)
    std::memcpy(out[y], in[y], static_cast<std::size_t>(rowBytes()));
  Written();
}

PixelRows RowsOf(const PixelRect& rect) {
  PixelRows rows;
  if (rect.empty()) return rows;
  rows.width = rect.width();
  for (int y = 0; y < rect.height(); ++y) rows.out.push_back(rect.At(0, y));
  rows.in.assign(rows.out.begin(), rows.out.end());
  return rows;
}

PixelRows RowsOf(const platform::BitmapRows& bitmap) {
  PixelRows rows;
  rows.width = bitmap.width;
  rows.bytesPerPixel = 4;
  rows.inPlace = bitmap.source.empty() || bitmap.source.front() == bitmap.target.front();
  for (const std::uint32_t* row : bitmap.source) rows.in.push_back(reinterpret_cast<const BYTE*>(row));
  for (std::uint32_t* row : bitmap.target) rows.out.push_back(reinterpret_cast<BYTE*>(row));
  return rows;
}
