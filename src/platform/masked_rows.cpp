#include "platform/masked_rows.h"

#include <algorithm>
#include <bit>

namespace platform::raster {

namespace {

constexpr int kMaskBits = 64;

}  // namespace

std::size_t MaskedRows::MaskBytes(int width, int count) {
  return (static_cast<std::size_t>(width) + kMaskBits - 1) / kMaskBits * static_cast<std::size_t>(count) *
         sizeof(std::uint64_t);
}

std::uint32_t MaskedRows::MostPixels(const std::uint32_t* row, int width) {
  // Boyer and Moore's majority vote.
  std::uint32_t candidate = row[0];
  int votes = 0;
  for (int x = 0; x < width; ++x) {
    if (votes == 0) candidate = row[x];
    votes += row[x] == candidate ? 1 : -1;
  }
  return candidate;
}

MaskedRows::MaskedRows(const std::uint32_t* rows, std::size_t step, int width, int count,
                       std::uint32_t background)
    : width_(width),
      rows_(count),
      background_(background),
      wordsPerRow_((static_cast<std::size_t>(width) + kMaskBits - 1) / kMaskBits),
      mask_(wordsPerRow_ * static_cast<std::size_t>(count), 0) {
  // Every pixel is stored once and counted only when it is not the background, so the
  // loop has no branch on the pixels.
  std::vector<std::uint32_t> values(static_cast<std::size_t>(width) * static_cast<std::size_t>(count));
  std::size_t found = 0;
  std::uint64_t* word = mask_.data();
  for (int r = 0; r < count; ++r, word += wordsPerRow_) {
    const std::uint32_t* row = rows + static_cast<std::size_t>(r) * step;
    for (int x = 0; x < width; ++x) {
      const std::uint32_t pixel = row[x];
      const bool set = pixel != background;
      word[x / kMaskBits] |= static_cast<std::uint64_t>(set) << (x % kMaskBits);
      values[found] = pixel;
      found += set;
    }
  }
  charge_.AddOrThrow(mask_.size() * sizeof(std::uint64_t));
  if (found > 0)
    values_ = std::make_unique<const PackedRows>(values.data(), found, static_cast<int>(found), 1);
  counted_ = mask_.size() * sizeof(std::uint64_t) + (values_ ? values_->bytes() : 0);
  CountPixelStorage(static_cast<std::ptrdiff_t>(mask_.size() * sizeof(std::uint64_t)));
}

MaskedRows::~MaskedRows() {
  CountPixelStorage(-static_cast<std::ptrdiff_t>(mask_.size() * sizeof(std::uint64_t)));
}

template <typename Visit>
void MaskedRows::ForEachValue(std::uint32_t* out, std::size_t step, Visit visit) const {
  if (!values_) return;
  // The set bits in order, each the place of the next value.
  const std::uint64_t* word = mask_.data();
  std::uint64_t bits = *word;
  std::size_t wordInRow = 0;
  std::uint32_t* row = out;
  const auto next = [&]() -> std::uint32_t& {
    while (bits == 0) {
      bits = *++word;
      if (++wordInRow == wordsPerRow_) {
        wordInRow = 0;
        row += step;
      }
    }
    const int bit = std::countr_zero(bits);
    bits &= bits - 1;
    return row[wordInRow * kMaskBits + static_cast<std::size_t>(bit)];
  };
  values_->ForEachPiece(0, [&](int, int count, const std::uint32_t* pixels, bool repeated) {
    if (repeated) {
      const std::uint32_t value = *pixels;
      for (int i = 0; i < count; ++i) visit(next(), value);
    } else {
      for (int i = 0; i < count; ++i) visit(next(), pixels[i]);
    }
  });
}

void MaskedRows::Unpack(std::uint32_t* out, std::size_t step) const {
  for (int r = 0; r < rows_; ++r) std::fill_n(out + static_cast<std::size_t>(r) * step, width_, background_);
  ForEachValue(out, step, [](std::uint32_t& pixel, std::uint32_t value) { pixel = value; });
}

void MaskedRows::XorInto(std::uint32_t* out, std::size_t step) const {
  if (background_ == 0) {
    ForEachValue(out, step, [](std::uint32_t& pixel, std::uint32_t value) { pixel ^= value; });
    return;
  }
  for (int r = 0; r < rows_; ++r) {
    std::uint32_t* row = out + static_cast<std::size_t>(r) * step;
    for (int x = 0; x < width_; ++x) row[x] ^= background_;
  }
  const std::uint32_t background = background_;
  ForEachValue(out, step,
               [background](std::uint32_t& pixel, std::uint32_t value) { pixel ^= value ^ background; });
}

}  // namespace platform::raster
