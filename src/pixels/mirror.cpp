#include "pixels/mirror.h"

#include <cstdint>
#include <cstring>
#include <memory>

#include "pixels/pixel_buffer.h"

// x86 processors with SSSE3 (every 64-bit one in use) reverse five pixels with one
// byte shuffle; the choice is made when the pass runs, so the build stays portable.
#if (defined(__x86_64__) || defined(__i386__)) && !defined(__EMSCRIPTEN__)
#include <immintrin.h>
#define IE_MIRROR_SSSE3 1
#endif

namespace {

// A row is reversed a chunk from each end at a time, through two copies: from a copy
// each pixel goes straight to its new place, where exchanging bytes in place would
// read and write every byte on its own.
constexpr int kChunk = 1024;  // pixels

#ifdef IE_MIRROR_SSSE3
// Five pixels at a time: 16 bytes loaded from the byte before them, shuffled into
// reverse order in bytes 0..14, stored as 16 bytes whose last lands on the next pixel
// to be written. At least one pixel is left for the caller, so that byte always falls
// on a pixel of `to`. Returns how many pixels were done.
__attribute__((target("ssse3"))) int ReverseFives(const BYTE* from, int count, BYTE* to) {
  const __m128i order = _mm_setr_epi8(13, 14, 15, 10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3, 0);
  const BYTE* last = from + static_cast<std::ptrdiff_t>(count - 1) * 3;
  int done = 0;
  for (; count - done > 5; done += 5) {
    const __m128i five = _mm_loadu_si128(reinterpret_cast<const __m128i*>(last - done * 3 - 13));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + done * 3), _mm_shuffle_epi8(five, order));
  }
  return done;
}

bool HasSsse3() {
  static const bool has = __builtin_cpu_supports("ssse3");
  return has;
}
#endif

// `count` pixels from `from` into `to` in reverse order, `to` getting exactly count * 3
// bytes. `from` must have one readable byte after its last pixel. Each pixel the
// shuffle leaves is moved as a 4-byte word, its fourth byte landing on the next pixel
// to be written, the last one as three bytes.
void ReverseInto(const BYTE* from, int count, BYTE* to) {
  if (count <= 0) return;
  int done = 0;
#ifdef IE_MIRROR_SSSE3
  if (HasSsse3()) done = ReverseFives(from, count, to);
#endif
  const BYTE* pixel = from + static_cast<std::ptrdiff_t>(count - 1 - done) * 3;
  to += static_cast<std::ptrdiff_t>(done) * 3;
  for (int i = done; i < count - 1; ++i, pixel -= 3, to += 3) {
    std::uint32_t word;
    std::memcpy(&word, pixel, 4);
    std::memcpy(to, &word, 4);
  }
  std::memcpy(to, pixel, 3);
}

// A copy of up to `Pixels` pixels with a spare byte after them.
template <int Pixels>
struct RowCopy {
  BYTE bytes[Pixels * 3 + 1];
  const BYTE* Take(const BYTE* from, std::size_t size) {
    std::memcpy(bytes, from, size);
    return bytes;
  }
};

void MirrorRow3(BYTE* row, int width) {
  constexpr std::ptrdiff_t kChunkBytes = kChunk * 3;
  RowCopy<kChunk> low;
  RowCopy<kChunk> high;
  BYTE* left = row;
  BYTE* right = row + static_cast<std::ptrdiff_t>(width) * 3;  // just past the row
  for (; right - left >= 2 * kChunkBytes; left += kChunkBytes, right -= kChunkBytes) {
    const BYTE* lowCopy = low.Take(left, kChunkBytes);
    const BYTE* highCopy = high.Take(right - kChunkBytes, kChunkBytes);
    // The copy made first is read first: its writes have left the processor's store
    // queue by then, so reading them back does not wait.
    ReverseInto(lowCopy, kChunk, right - kChunkBytes);
    ReverseInto(highCopy, kChunk, left);
  }
  // The middle, fewer than two chunks.
  RowCopy<2 * kChunk> middle;
  const auto rest = static_cast<std::size_t>(right - left);
  ReverseInto(middle.Take(left, rest), static_cast<int>(rest / 3), left);
}

// Four-byte pixels are words: exchanged from both ends, which the compiler does with
// whole vectors of words reversed.
void MirrorRow4(BYTE* row, int width) {
  for (int i = 0, j = width - 1; i < j; ++i, --j) {
    std::uint32_t a, b;
    std::memcpy(&a, row + 4 * i, 4);
    std::memcpy(&b, row + 4 * j, 4);
    std::memcpy(row + 4 * i, &b, 4);
    std::memcpy(row + 4 * j, &a, 4);
  }
}

// Rows in reverse order, each `bytes` long, through one row of memory.
template <typename RowAt>
void ExchangeRows(int count, std::size_t bytes, RowAt&& rowAt, const OutOfMemoryHandler& outOfMemory) {
  if (count < 2) return;
  const platform::GraphicsBytes row = AllocatePixels(bytes);
  if (!row) {
    if (outOfMemory) outOfMemory();
    return;
  }
  for (int k = 0; k < count / 2; ++k) {
    BYTE* low = rowAt(k);
    BYTE* high = rowAt(count - 1 - k);
    std::memcpy(row.get(), low, bytes);
    std::memcpy(low, high, bytes);
    std::memcpy(high, row.get(), bytes);
  }
}

}  // namespace

void MirrorRows(const PixelRect& rect) { MirrorRows(RowsOf(rect)); }

void MirrorRows(const PixelRows& rows) {
  if (rows.empty()) return;
  for (BYTE* row : rows.out) {
    if (rows.bytesPerPixel == 4) {
      MirrorRow4(row, rows.width);
    } else {
      MirrorRow3(row, rows.width);
    }
  }
}

void FlipRows(const PixelRect& rect, const OutOfMemoryHandler& outOfMemory) {
  if (!rect.buffer || rect.stride <= 0) return;
  ExchangeRows(
      rect.height(), static_cast<std::size_t>(rect.stride),
      [&](int k) { return rect.buffer + static_cast<std::ptrdiff_t>(rect.y0 + k) * rect.stride; },
      outOfMemory);
}

void FlipRows(const PixelRows& rows, const OutOfMemoryHandler& outOfMemory) {
  if (rows.empty()) return;
  ExchangeRows(
      rows.height(), static_cast<std::size_t>(rows.rowBytes()),
      [&](int k) { return rows.out[static_cast<std::size_t>(k)]; }, outOfMemory);
}
