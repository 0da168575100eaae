// Builds bitmap files byte by byte for the reader's tests and fuzz seeds, so that
// every header field can be set to a value a real writer would never produce.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace imageio_test {

struct BmpLayout {
  std::uint32_t infoSize = 40;
  std::int32_t width = 1;
  std::int32_t height = 1;
  std::uint16_t bitCount = 24;
  std::uint32_t compression = 0;
  std::uint32_t colorsUsed = 0;
  std::vector<std::uint32_t> masks;    // written after the 40-byte header (BI_BITFIELDS)
  std::vector<std::uint32_t> palette;  // 0x00RRGGBB entries
  std::vector<std::uint8_t> pixels;    // the rows exactly as they go into the file
  std::int64_t pixelOffsetOverride = -1;
};

inline void Put16(std::vector<std::uint8_t>& out, std::size_t at, std::uint32_t v) {
  out[at] = static_cast<std::uint8_t>(v);
  out[at + 1] = static_cast<std::uint8_t>(v >> 8);
}
inline void Put32(std::vector<std::uint8_t>& out, std::size_t at, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) out[at + i] = static_cast<std::uint8_t>(v >> (8 * i));
}

inline std::vector<std::uint8_t> BuildBmp(const BmpLayout& layout) {
  const bool core = layout.infoSize == 12;
  const std::size_t entrySize = core ? 3 : 4;
  // Fields are written into a header of at least 40 bytes, then cut to the size
  // announced, so that short unknown header sizes can be built too.
  std::vector<std::uint8_t> out(14 + std::max<std::uint32_t>(layout.infoSize, 40), 0);
  out[0] = 'B';
  out[1] = 'M';
  Put32(out, 14, layout.infoSize);
  if (core) {
    Put16(out, 18, static_cast<std::uint32_t>(layout.width));
    Put16(out, 20, static_cast<std::uint32_t>(layout.height));
    Put16(out, 22, 1);
    Put16(out, 24, layout.bitCount);
  } else {
    Put32(out, 18, static_cast<std::uint32_t>(layout.width));
    Put32(out, 22, static_cast<std::uint32_t>(layout.height));
    Put16(out, 26, 1);
    Put16(out, 28, layout.bitCount);
    Put32(out, 30, layout.compression);
    Put32(out, 46, layout.colorsUsed);
  }
  out.resize(14 + layout.infoSize);
  for (std::size_t i = 0; i < layout.masks.size(); ++i) {
    if (14 + 40 + 4 * i + 4 > out.size()) out.resize(14 + 40 + 4 * i + 4);
    Put32(out, 14 + 40 + 4 * i, layout.masks[i]);
  }
  for (std::uint32_t color : layout.palette) {
    out.push_back(static_cast<std::uint8_t>(color));
    out.push_back(static_cast<std::uint8_t>(color >> 8));
    out.push_back(static_cast<std::uint8_t>(color >> 16));
    if (entrySize == 4) out.push_back(0);
  }
  const std::size_t offset =
      layout.pixelOffsetOverride >= 0 ? static_cast<std::size_t>(layout.pixelOffsetOverride) : out.size();
  Put32(out, 10, static_cast<std::uint32_t>(offset));
  out.insert(out.end(), layout.pixels.begin(), layout.pixels.end());
  Put32(out, 2, static_cast<std::uint32_t>(out.size()));
  return out;
}

// A 24-bit bitmap file (54-byte headers, no table) whose pixel (x, y), counted from
// the top, is rgb(x, y) as 0x00RRGGBB.
template <typename RgbAt>
std::vector<std::uint8_t> BuildTrueColourBmp(int width, int height, RgbAt rgb) {
  BmpLayout layout;
  layout.width = width;
  layout.height = height;
  const std::size_t stride = (static_cast<std::size_t>(width) * 3 + 3) & ~std::size_t{3};
  layout.pixels.assign(stride * height, 0);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const std::uint32_t c = rgb(x, y);
      std::uint8_t* p = layout.pixels.data() + (height - 1 - y) * stride + x * 3;
      p[0] = static_cast<std::uint8_t>(c);
      p[1] = static_cast<std::uint8_t>(c >> 8);
      p[2] = static_cast<std::uint8_t>(c >> 16);
    }
  }
  return BuildBmp(layout);
}

}  // namespace imageio_test
