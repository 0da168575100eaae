#include "platform/raster.h"

#include <new>

namespace platform::raster {

bool Allocate(Raster& raster, int width, int height, bool mono) {
  if (width <= 0 || height <= 0 || static_cast<std::int64_t>(width) * height > kMaxPixels) return false;
  try {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    raster.pixels.swap(pixels);
  } catch (const std::bad_alloc&) {
    return false;
  }
  raster.width = width;
  raster.height = height;
  raster.mono = mono;
  return true;
}

void ConvertRow(const Conversion& conversion, const std::uint32_t* in, std::uint32_t* out, int count) {
  switch (conversion.kind) {
    case Conversion::Kind::None:
      for (int i = 0; i < count; ++i) out[i] = in[i];
      break;
    case Conversion::Kind::MonoToColor:
      for (int i = 0; i < count; ++i) out[i] = in[i] ? conversion.one : conversion.zero;
      break;
    case Conversion::Kind::ColorToMono:
      for (int i = 0; i < count; ++i) out[i] = (in[i] & kColorMask) == conversion.key ? kWhite : kBlack;
      break;
  }
}

namespace {

std::uint32_t Ternary(std::uint8_t index, std::uint32_t p, std::uint32_t s, std::uint32_t d) {
  std::uint32_t result = 0;
  for (int term = 0; term < 8; ++term) {
    if ((index >> term) & 1) result |= ((term & 4) ? p : ~p) & ((term & 2) ? s : ~s) & ((term & 1) ? d : ~d);
  }
  return result & kColorMask;
}

template <typename Op>
void ForEach(std::uint32_t* dst, int count, Op op) {
  for (int i = 0; i < count; ++i) dst[i] = op(i) & kColorMask;
}

}  // namespace

void ApplyRop(std::uint8_t index, const std::uint32_t* src, std::uint32_t pattern, std::uint32_t* dst,
              int count) {
  // The operations the editor uses get plain loops; the rest go through the minterms.
  switch (index) {
    case 0x00:
      ForEach(dst, count, [](int) { return kBlack; });
      break;
    case 0xFF:
      ForEach(dst, count, [](int) { return kWhite; });
      break;
    case 0xCC:
      ForEach(dst, count, [&](int i) { return src[i]; });
      break;
    case 0x33:
      ForEach(dst, count, [&](int i) { return ~src[i]; });
      break;
    case 0x88:
      ForEach(dst, count, [&](int i) { return src[i] & dst[i]; });
      break;
    case 0xEE:
      ForEach(dst, count, [&](int i) { return src[i] | dst[i]; });
      break;
    case 0x66:
      ForEach(dst, count, [&](int i) { return src[i] ^ dst[i]; });
      break;
    case 0x55:
      ForEach(dst, count, [&](int i) { return ~dst[i]; });
      break;
    case 0xF0:
      ForEach(dst, count, [&](int) { return pattern; });
      break;
    case 0x5A:
      ForEach(dst, count, [&](int i) { return pattern ^ dst[i]; });
      break;
    case 0xA5:
      ForEach(dst, count, [&](int i) { return ~(pattern ^ dst[i]); });
      break;
    case 0xAA:
      break;
    default:
      for (int i = 0; i < count; ++i) dst[i] = Ternary(index, pattern, src ? src[i] : 0, dst[i]);
  }
}

}  // namespace platform::raster
