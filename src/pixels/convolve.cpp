#include "pixels/convolve.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include "pixels/pixel_buffer.h"

namespace {

// The n rows of the working copy that one output row reads, in a ring: the row
// `border` below it comes first. Each kept row is the rectangle's row with its edge
// pixels repeated `border` times on either side.
class RowRing {
 public:
  RowRing(const PixelRect& rect, int n)
      : rect_(rect),
        n_(n),
        border_(n / 2),
        rowBytes_(static_cast<std::size_t>(rect.width() + 2 * border_) * 3) {
    const std::size_t whole = rowBytes_ * static_cast<std::size_t>(rect.height() + 2 * border_);
    if (WithinPixelLimit(whole)) memory_ = AllocatePixels(rowBytes_ * static_cast<std::size_t>(n));
  }
  bool valid() const { return memory_ != nullptr; }

  // Keeps rectangle row j (rows beyond the rectangle repeat its first or last one) in
  // the slot of the row n rows below it, which no output row needs any more.
  void Load(int j) {
    BYTE* row = Slot(j);
    const std::size_t inside = static_cast<std::size_t>(border_) * 3;
    const std::size_t pixels = static_cast<std::size_t>(rect_.width()) * 3;
    std::memcpy(row + inside, rect_.At(0, std::clamp(j, 0, rect_.height() - 1)), pixels);
    for (int b = 0; b < border_; ++b) {
      std::memcpy(row + static_cast<std::size_t>(b) * 3, row + inside, 3);
      std::memcpy(row + inside + pixels + static_cast<std::size_t>(b) * 3, row + inside + pixels - 3, 3);
    }
  }
  // Row j as kept, from its first border pixel.
  const BYTE* Row(int j) const { return Slot(j); }

 private:
  BYTE* Slot(int j) const {
    const int slot = ((j + border_) % n_ + n_) % n_;
    return memory_.get() + static_cast<std::size_t>(slot) * rowBytes_;
  }

  PixelRect rect_;
  int n_;
  int border_;
  std::size_t rowBytes_;
  std::unique_ptr<BYTE[]> memory_;
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

template <typename Kernel>
void ConvolveRowSmall(const Kernel& k, const BYTE* below, const BYTE* level, const BYTE* above, BYTE* out,
                      int count) {
  for (int i = 0; i < count; ++i) {
    const auto sum = static_cast<std::int16_t>(
        k.weight[0] * below[i] + k.weight[1] * below[i + 3] + k.weight[2] * below[i + 6] +
        k.weight[3] * level[i] + k.weight[4] * level[i + 3] + k.weight[5] * level[i + 6] +
        k.weight[6] * above[i] + k.weight[7] * above[i + 3] + k.weight[8] * above[i + 6] + k.offset);
    out[i] = static_cast<BYTE>(std::clamp<std::int16_t>(sum, 0, 255));
  }
}

// Any kernel: 64-bit sums, so that no weight can overflow them.
void ConvolveRowAny(std::span<const int> kernel, int n, int divisor, int offset, const RowRing& rows, int y,
                    BYTE* out, int count) {
  const int border = n / 2;
  for (int i = 0; i < count; ++i) {
    long long sum = 0;
    for (int j = 0; j < n; ++j) {
      const BYTE* row = rows.Row(y - border + j) + i;
      for (int k = 0; k < n; ++k)
        sum += static_cast<long long>(kernel[static_cast<std::size_t>(j * n + k)]) * row[3 * k];
    }
    out[i] = static_cast<BYTE>(std::clamp<long long>(sum / divisor + offset, 0, 255));
  }
}

}  // namespace

void ConvolvePixels(const PixelRect& rect, std::span<const int> kernel, int n, int divisor, int offset,
                    const OutOfMemoryHandler& outOfMemory) {
  if (rect.empty() || n < 1 || n % 2 == 0 || kernel.size() != static_cast<std::size_t>(n) * n || divisor == 0)
    return;
  RowRing rows(rect, n);
  if (!rows.valid()) {
    if (outOfMemory) outOfMemory();
    return;
  }
  const int border = n / 2;
  const int count = rect.width() * 3;
  const bool emboss = IsEmboss(kernel, n, divisor, offset);
  const bool small = FitsSmallKernel(kernel, n, divisor, offset);
  SmallKernel smallKernel{};
  if (small) {
    for (std::size_t i = 0; i < 9; ++i) smallKernel.weight[i] = static_cast<std::int16_t>(kernel[i]);
    smallKernel.offset = static_cast<std::int16_t>(offset);
  }
  // Row y is written once the row `border` above it is kept: every row an output row
  // reads is kept before it is overwritten.
  for (int j = -border; j < border; ++j) rows.Load(j);
  for (int y = 0; y < rect.height(); ++y) {
    rows.Load(y + border);
    BYTE* out = rect.At(0, y);
    if (emboss) {
      ConvolveRowSmall(EmbossKernel{}, rows.Row(y - 1), rows.Row(y), rows.Row(y + 1), out, count);
    } else if (small) {
      ConvolveRowSmall(smallKernel, rows.Row(y - 1), rows.Row(y), rows.Row(y + 1), out, count);
    } else {
      ConvolveRowAny(kernel, n, divisor, offset, rows, y, out, count);
    }
  }
}

void EmbossPixels(const PixelRect& rect, const OutOfMemoryHandler& outOfMemory) {
  ConvolvePixels(rect, kEmbossKernel, 3, 1, kEmbossOffset, outOfMemory);
}
