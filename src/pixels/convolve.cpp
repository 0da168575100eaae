#include "pixels/convolve.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include "pixels/pixel_buffer.h"

#ifdef __wasm_simd128__
#include <wasm_simd128.h>
#endif

namespace {

// The n rows of the working copy that one output row reads, in a ring: the row
// `border` below it comes first. Each kept row is the rectangle's row with its edge
// pixels repeated `border` times on either side.
class RowRing {
 public:
  RowRing(const PixelRows& rows, int n)
      : rows_(rows),
        n_(n),
        border_(n / 2),
        pixelBytes_(static_cast<std::size_t>(rows.bytesPerPixel)),
        rowBytes_(static_cast<std::size_t>(rows.width + 2 * border_) * pixelBytes_) {
    const std::size_t whole = static_cast<std::size_t>(rows.width + 2 * border_) * 3 *
                              static_cast<std::size_t>(rows.height() + 2 * border_);
    if (WithinPixelLimit(whole)) memory_ = AllocatePixels(rowBytes_ * static_cast<std::size_t>(n));
  }
  bool valid() const { return static_cast<bool>(memory_); }

  // Keeps row j (rows beyond the rectangle repeat its first or last one) in the slot
  // of the row n rows below it, which no output row needs any more.
  void Load(int j) {
    BYTE* row = Slot(j);
    const std::size_t inside = static_cast<std::size_t>(border_) * pixelBytes_;
    const std::size_t pixels = static_cast<std::size_t>(rows_.width) * pixelBytes_;
    std::memcpy(row + inside, rows_.out[static_cast<std::size_t>(std::clamp(j, 0, rows_.height() - 1))],
                pixels);
    for (int b = 0; b < border_; ++b) {
      std::memcpy(row + static_cast<std::size_t>(b) * pixelBytes_, row + inside, pixelBytes_);
      std::memcpy(row + inside + pixels + static_cast<std::size_t>(b) * pixelBytes_,
                  row + inside + pixels - pixelBytes_, pixelBytes_);
    }
  }
  // Row j as kept, from its first border pixel.
  const BYTE* Row(int j) const { return Slot(j); }

 private:
  BYTE* Slot(int j) const {
    const int slot = ((j + border_) % n_ + n_) % n_;
    return memory_.get() + static_cast<std::size_t>(slot) * rowBytes_;
  }

  const PixelRows& rows_;
  int n_;
  int border_;
  std::size_t pixelBytes_;
  std::size_t rowBytes_;
  platform::GraphicsBytes memory_;
};

// A 3 x 3 kernel whose sums stay within 16 bits and needs no division, as the emboss's
// does: the compiler computes sixteen bytes at once in 16-bit lanes, with no branch.
struct SmallKernel {
  std::int16_t weight[9];
  std::int16_t offset;
};

// The emboss's own, known when compiled: its zero weights cost nothing and its others
// are additions and subtractions.
struct EmbossKernel {
  static constexpr std::int16_t weight[9] = {1, 1, 0, 1, 0, -1, 0, -1, -1};
  static constexpr std::int16_t offset = kEmbossOffset;
};
static_assert(std::equal(std::begin(EmbossKernel::weight), std::end(EmbossKernel::weight),
                         std::begin(kEmbossKernel)));

bool FitsSmallKernel(std::span<const int> kernel, int n, int divisor, int offset) {
  if (n != 3 || divisor != 1) return false;
  long long reach = std::llabs(offset);
  for (const int w : kernel) reach += 255LL * std::llabs(w);
  return reach <= INT16_MAX;
}

bool IsEmboss(std::span<const int> kernel, int n, int divisor, int offset) {
  return n == 3 && divisor == 1 && offset == kEmbossOffset &&
         std::equal(kernel.begin(), kernel.end(), std::begin(kEmbossKernel));
}

template <int Bpp, typename Kernel>
void ConvolveRowSmall(const Kernel& k, const BYTE* below, const BYTE* level, const BYTE* above, BYTE* out,
                      int count) {
  int i = 0;
#ifdef __wasm_simd128__
  // Sixteen bytes at a time in 16-bit lanes, which the WebAssembly compiler does not
  // find by itself; narrowing with saturation clamps as the plain loop does.
  const BYTE* rows[3] = {below, level, above};
  for (; i + 16 <= count; i += 16) {
    v128_t low = wasm_i16x8_splat(k.offset);
    v128_t high = low;
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c) {
        const std::int16_t weight = k.weight[3 * r + c];
        if (weight == 0) continue;
        const v128_t bytes = wasm_v128_load(rows[r] + i + c * Bpp);
        const v128_t w = wasm_i16x8_splat(weight);
        low = wasm_i16x8_add(low, wasm_i16x8_mul(wasm_u16x8_extend_low_u8x16(bytes), w));
        high = wasm_i16x8_add(high, wasm_i16x8_mul(wasm_u16x8_extend_high_u8x16(bytes), w));
      }
    }
    wasm_v128_store(out + i, wasm_u8x16_narrow_i16x8(low, high));
  }
#endif
  for (; i < count; ++i) {
    const auto sum = static_cast<std::int16_t>(
        k.weight[0] * below[i] + k.weight[1] * below[i + Bpp] + k.weight[2] * below[i + 2 * Bpp] +
        k.weight[3] * level[i] + k.weight[4] * level[i + Bpp] + k.weight[5] * level[i + 2 * Bpp] +
        k.weight[6] * above[i] + k.weight[7] * above[i + Bpp] + k.weight[8] * above[i + 2 * Bpp] + k.offset);
    out[i] = static_cast<BYTE>(std::clamp<std::int16_t>(sum, 0, 255));
  }
}

// Any kernel: 64-bit sums, so that no weight can overflow them.
template <int Bpp>
void ConvolveRowAny(std::span<const int> kernel, int n, int divisor, int offset, const RowRing& rows, int y,
                    BYTE* out, int count) {
  const int border = n / 2;
  for (int i = 0; i < count; ++i) {
    long long sum = 0;
    for (int j = 0; j < n; ++j) {
      const BYTE* row = rows.Row(y - border + j) + i;
      for (int k = 0; k < n; ++k)
        sum += static_cast<long long>(kernel[static_cast<std::size_t>(j * n + k)]) * row[Bpp * k];
    }
    out[i] = static_cast<BYTE>(std::clamp<long long>(sum / divisor + offset, 0, 255));
  }
}

// Every byte of a row is computed, the fourth of a 32-bit pixel too (the rule makes
// it the offset), and then put back to 0: the loop stays one plain run of bytes that
// the compiler turns into vector code.
template <int Bpp>
void Convolve(const PixelRows& rows, std::span<const int> kernel, int n, int divisor, int offset,
              RowRing& ring) {
  const int border = n / 2;
  const int count = rows.width * Bpp;
  const bool emboss = IsEmboss(kernel, n, divisor, offset);
  const bool small = FitsSmallKernel(kernel, n, divisor, offset);
  SmallKernel smallKernel{};
  if (small) {
    for (std::size_t i = 0; i < 9; ++i) smallKernel.weight[i] = static_cast<std::int16_t>(kernel[i]);
    smallKernel.offset = static_cast<std::int16_t>(offset);
  }
  // Row y is written once the row `border` above it is kept: every row an output row
  // reads is kept before it is overwritten.
  for (int j = -border; j < border; ++j) ring.Load(j);
  for (int y = 0; y < rows.height(); ++y) {
    ring.Load(y + border);
    BYTE* out = rows.out[static_cast<std::size_t>(y)];
    if (emboss) {
      ConvolveRowSmall<Bpp>(EmbossKernel{}, ring.Row(y - 1), ring.Row(y), ring.Row(y + 1), out, count);
    } else if (small) {
      ConvolveRowSmall<Bpp>(smallKernel, ring.Row(y - 1), ring.Row(y), ring.Row(y + 1), out, count);
    } else {
      ConvolveRowAny<Bpp>(kernel, n, divisor, offset, ring, y, out, count);
    }
    if constexpr (Bpp == 4) ClearFourthBytes(out, rows.width);
  }
}

}  // namespace

void ConvolvePixels(const PixelRect& rect, std::span<const int> kernel, int n, int divisor, int offset,
                    const OutOfMemoryHandler& outOfMemory) {
  ConvolvePixels(RowsOf(rect), kernel, n, divisor, offset, outOfMemory);
}

void ConvolvePixels(const PixelRows& rows, std::span<const int> kernel, int n, int divisor, int offset,
                    const OutOfMemoryHandler& outOfMemory) {
  if (rows.empty() || n < 1 || n % 2 == 0 || kernel.size() != static_cast<std::size_t>(n) * n || divisor == 0)
    return;
  RowRing ring(rows, n);
  if (!ring.valid()) {
    if (outOfMemory) outOfMemory();
    return;
  }
  if (rows.bytesPerPixel == 4) {
    Convolve<4>(rows, kernel, n, divisor, offset, ring);
  } else {
    Convolve<3>(rows, kernel, n, divisor, offset, ring);
  }
}

void EmbossPixels(const PixelRect& rect, const OutOfMemoryHandler& outOfMemory) {
  ConvolvePixels(rect, kEmbossKernel, 3, 1, kEmbossOffset, outOfMemory);
}

void EmbossPixels(const PixelRows& rows, const OutOfMemoryHandler& outOfMemory) {
  ConvolvePixels(rows, kEmbossKernel, 3, 1, kEmbossOffset, outOfMemory);
}
