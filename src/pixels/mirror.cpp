#include "pixels/mirror.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include "pixels/pixel_buffer.h"

namespace {

// Four pixels (12 bytes) as one 64-bit and one 32-bit word, which the compiler keeps
// in registers, where three single-byte exchanges a pixel would go through memory.
struct FourPixels {
  std::uint64_t low;
  std::uint32_t high;

  static FourPixels Load(const BYTE* from) {
    FourPixels p;
    std::memcpy(&p.low, from, 8);
    std::memcpy(&p.high, from + 8, 4);
    return p;
  }
  void Store(BYTE* to) const {
    std::memcpy(to, &low, 8);
    std::memcpy(to + 8, &high, 4);
  }
  // The same four pixels in reverse order.
  FourPixels Reversed() const {
    const std::uint64_t a = low & 0xFFFFFF;
    const std::uint64_t b = (low >> 24) & 0xFFFFFF;
    const std::uint64_t c = (low >> 48) | (static_cast<std::uint64_t>(high & 0xFF) << 16);
    const std::uint64_t d = high >> 8;
    return FourPixels{d | (c << 24) | (b << 48), static_cast<std::uint32_t>((b >> 16) | (a << 8))};
  }
};

void SwapPixels(BYTE* a, BYTE* b) {
  std::swap(a[0], b[0]);
  std::swap(a[1], b[1]);
  std::swap(a[2], b[2]);
}

}  // namespace

void MirrorRows(const PixelRect& rect) {
  if (rect.empty()) return;
  for (int y = 0; y < rect.height(); ++y) {
    BYTE* left = rect.At(0, y);
    BYTE* right = rect.At(rect.width(), y);  // just past the row
    // Four pixels from each end at a time while the two blocks do not meet.
    while (right - left >= 24) {
      const FourPixels first = FourPixels::Load(left);
      const FourPixels last = FourPixels::Load(right - 12);
      last.Reversed().Store(left);
      first.Reversed().Store(right - 12);
      left += 12;
      right -= 12;
    }
    for (right -= 3; left < right; left += 3, right -= 3) SwapPixels(left, right);
  }
}

void FlipRows(const PixelRect& rect, const OutOfMemoryHandler& outOfMemory) {
  if (!rect.buffer || rect.stride <= 0) return;
  const auto rowBytes = static_cast<std::size_t>(rect.stride);
  const std::unique_ptr<BYTE[]> row = AllocatePixels(rowBytes);
  if (!row) {
    if (outOfMemory) outOfMemory();
    return;
  }
  const auto rowAt = [&](int y) { return rect.buffer + static_cast<std::ptrdiff_t>(y) * rect.stride; };
  for (int k = 0; k < rect.height() / 2; ++k) {
    BYTE* low = rowAt(rect.y0 + k);
    BYTE* high = rowAt(rect.y1 - 1 - k);
    std::memcpy(row.get(), low, rowBytes);
    std::memcpy(low, high, rowBytes);
    std::memcpy(high, row.get(), rowBytes);
  }
}
