#include "platform/dib_run_length.h"

#include <algorithm>
#include <vector>

namespace platform {
namespace {

// The second byte of a code whose first byte is 0; larger values start absolute runs.
constexpr int kEndOfLine = 0;
constexpr int kEndOfPicture = 1;
constexpr int kDelta = 2;

// Pixel `k` of packed indexes: a byte each, or two a byte with the high nibble first.
std::uint8_t PackedIndex(const std::uint8_t* packed, int k, int bitsPerPixel) {
  if (bitsPerPixel == 8) return packed[k];
  const std::uint8_t pair = packed[k / 2];
  return k % 2 ? pair & 0x0F : pair >> 4;
}

}  // namespace

void PlayRunLengthCodes(const std::uint8_t* data, std::size_t size, int bitsPerPixel, int width, int height,
                        const std::function<void(const RunLengthSpan&)>& set) {
  // The line's pixels from `left` up to `x` that no code has closed yet. It grows
  // only with pixels the data really set, so a wide picture costs nothing up front.
  std::vector<std::uint8_t> open;
  int line = 0, left = 0, x = 0;
  auto close = [&] {
    if (!open.empty()) set({line, left, open.data(), static_cast<int>(open.size())});
    open.clear();
  };
  std::size_t at = 0;
  while (size - at >= 2) {
    const int count = data[at], value = data[at + 1];
    at += 2;
    if (count > 0) {
      // An encoded run repeats its byte: one index, or two alternating at 4 bits.
      const std::uint8_t repeated[2] = {data[at - 1], data[at - 1]};
      const int shown = std::min(count, width - x);
      for (int k = 0; k < shown; ++k) open.push_back(PackedIndex(repeated, k % 2, bitsPerPixel));
      x += shown;
    } else if (value > kDelta) {
      // An absolute run: `value` packed indexes, padded to a whole 16-bit word.
      const std::size_t bytes = (static_cast<std::size_t>(value) * bitsPerPixel + 7) / 8;
      if (bytes > size - at) return;
      const int shown = std::min(value, width - x);
      for (int k = 0; k < shown; ++k) open.push_back(PackedIndex(data + at, k, bitsPerPixel));
      x += shown;
      at += std::min(bytes + bytes % 2, size - at);
    } else {
      close();
      if (value == kEndOfPicture) return;
      if (value == kEndOfLine) {
        x = 0;
        ++line;
      } else {
        if (size - at < 2) return;
        x = std::min(x + data[at], width);
        line += data[at + 1];
        at += 2;
      }
      left = x;
      if (line >= height) return;
    }
  }
}

}  // namespace platform
