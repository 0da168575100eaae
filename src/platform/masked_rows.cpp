#include "platform/masked_rows.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace platform::raster {

namespace {

constexpr int kMaskBits = 64;

}  // namespace

std::size_t MaskedRows::MaskBytes(int width, int count) {
  return (static_cast<std::size_t>(width) + kMaskBits - 1) / kMaskBits * static_cast<std::size_t>(count) *
         sizeof(std::uint64_t);
}

bool MaskedRows::BeatsRuns(const std::uint32_t* rows, std::size_t step, int width, int count) {
  std::size_t changes = 0;
  for (int r = 0; r < count; ++r) {
    const std::uint32_t* row = rows + static_cast<std::size_t>(r) * step;
    for (int x = 1; x < width; ++x) changes += row[x] != row[x - 1];
  }
  return changes * 2 * sizeof(std::uint32_t) > MaskBytes(width, count);
}

std::uint32_t MaskedRows::MostPixels(const std::uint32_t* pixels, int count) {
  // Boyer and Moore's majority vote.
  std::uint32_t candidate = pixels[0];
  int votes = 0;
  for (int i = 0; i < count; ++i) {
    if (votes == 0) candidate = pixels[i];
    votes += pixels[i] == candidate ? 1 : -1;
  }
  return candidate;
}

MaskedRows::MaskedRows(int width, int count, std::uint32_t background)
    : width_(width),
      rows_(count),
      background_(background),
      wordsPerRow_((static_cast<std::size_t>(width) + kMaskBits - 1) / kMaskBits),
      mask_(wordsPerRow_ * static_cast<std::size_t>(count), 0) {}

MaskedRows::MaskedRows(const std::uint32_t* rows, std::size_t step, int width, int count,
                       std::uint32_t background)
    : MaskedRows(width, count, background) {
  // Every pixel is stored once and counted only when it is not the background, so the
  // loop has no branch on the pixels. The values start unset: zeroing a band's worth
  // would cost as much as the loop.
  const std::unique_ptr<std::uint32_t[]> values(
      new std::uint32_t[static_cast<std::size_t>(width) * static_cast<std::size_t>(count)]);
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
  Finish(values.get(), found);
}

MaskedRows::MaskedRows(const PackedRows& rows) : MaskedRows(rows.width(), rows.rows(), 0) {
  std::vector<std::uint32_t> values;
  std::uint64_t* word = mask_.data();
  for (int r = 0; r < rows_; ++r, word += wordsPerRow_) {
    rows.ForEachPiece(r, [&](int x, int count, const std::uint32_t* pixels, bool repeated) {
      if (repeated && *pixels == 0) return;
      for (int i = 0; i < count; ++i) {
        const std::uint32_t pixel = repeated ? *pixels : pixels[i];
        if (pixel == 0) continue;
        word[(x + i) / kMaskBits] |= std::uint64_t{1} << ((x + i) % kMaskBits);
        values.push_back(pixel);
      }
    });
  }
  Finish(values.data(), values.size());
}

std::shared_ptr<const MaskedRows> MaskedRows::Xor(const MaskedRows& kept, const PackedRows& change) {
  return Xor(kept, MaskedRows(change));
}

void MaskedRows::Finish(const std::uint32_t* values, std::size_t found) {
  const std::size_t maskBytes = mask_.size() * sizeof(std::uint64_t);
  charge_.AddOrThrow(maskBytes);
  if (found > 0) values_ = std::make_unique<const PackedRows>(values, found, static_cast<int>(found), 1);
  counted_ = maskBytes + (values_ ? values_->bytes() : 0);
  CountPixelStorage(static_cast<std::ptrdiff_t>(maskBytes));
}

std::vector<std::uint32_t> MaskedRows::Values() const {
  const std::size_t count = values_ ? static_cast<std::size_t>(values_->width()) : 0;
  std::vector<std::uint32_t> values(count + 1, 0);
  if (values_) values_->Unpack(values.data(), count);
  return values;
}

std::shared_ptr<const MaskedRows> MaskedRows::XorOfTwoPixels(const MaskedRows& kept, const MaskedRows& change,
                                                             std::uint32_t dot) {
  // A dot where exactly one of the two has its bit: a change over a dot clears it.
  std::vector<std::uint64_t> mask(kept.mask_.size());
  std::size_t found = 0;
  for (std::size_t w = 0; w < mask.size(); ++w) {
    mask[w] = kept.mask_[w] ^ change.mask_[w];
    found += static_cast<std::size_t>(std::popcount(mask[w]));
  }
  // Once the dots are most of the pixels, they are the background and the rest the
  // dots: the mask turns over.
  std::uint32_t background = kept.background_;
  const std::size_t pixels = static_cast<std::size_t>(kept.width_) * static_cast<std::size_t>(kept.rows_);
  if (found * 2 > pixels) {
    const int lastBits = kept.width_ % kMaskBits;
    const std::uint64_t lastWord = lastBits ? (std::uint64_t{1} << lastBits) - 1 : ~std::uint64_t{0};
    for (std::size_t w = 0; w < mask.size(); ++w)
      mask[w] = ~mask[w] & ((w + 1) % kept.wordsPerRow_ == 0 ? lastWord : ~std::uint64_t{0});
    std::swap(background, dot);
    found = pixels - found;
  }
  std::shared_ptr<MaskedRows> result(new MaskedRows(kept.width_, kept.rows_, background));
  result->mask_ = std::move(mask);
  const std::vector<std::uint32_t> values(found, dot);
  result->Finish(values.data(), found);
  return result;
}

std::shared_ptr<const MaskedRows> MaskedRows::Xor(const MaskedRows& kept, const MaskedRows& change) {
  // A layer of one colour with dots of another, as a spray of one colour leaves it.
  std::uint32_t keptValue = 0, changeValue = 0;
  if (change.values_ && change.values_->OneValue(&changeValue)) {
    const std::uint32_t dot = kept.background_ ^ changeValue;
    if (!kept.values_ || (kept.values_->OneValue(&keptValue) && keptValue == dot)) {
      return XorOfTwoPixels(kept, change, dot);
    }
  }
  std::shared_ptr<MaskedRows> result(new MaskedRows(kept.width_, kept.rows_, kept.background_));
  const std::vector<std::uint32_t> keptValues = kept.Values();
  const std::vector<std::uint32_t> changeValues = change.Values();
  std::vector<std::uint32_t> values(keptValues.size() + changeValues.size());
  const std::uint32_t* from = keptValues.data();
  const std::uint32_t* by = changeValues.data();
  std::size_t found = 0;
  const std::uint32_t background = kept.background_;
  for (std::size_t w = 0; w < kept.mask_.size(); ++w) {
    const std::uint64_t keptBits = kept.mask_[w];
    const std::uint64_t changeBits = change.mask_[w];
    if (changeBits == 0) {
      // The word's pixels stay as they are.
      const auto count = static_cast<std::size_t>(std::popcount(keptBits));
      std::copy_n(from, count, values.data() + found);
      from += count;
      found += count;
      result->mask_[w] = keptBits;
      continue;
    }
    // Without branches on the bits, which follow no pattern: each stream is read
    // whether or not the pixel has a value there (the vectors have one to spare).
    std::uint64_t resultBits = 0;
    for (std::uint64_t either = keptBits | changeBits; either != 0; either &= either - 1) {
      const int at = std::countr_zero(either);
      const auto inKept = static_cast<std::uint32_t>((keptBits >> at) & 1);
      const auto inChange = static_cast<std::uint32_t>((changeBits >> at) & 1);
      const std::uint32_t pixel = (inKept ? *from : background) ^ (*by & (0u - inChange));
      from += inKept;
      by += inChange;
      const auto set = static_cast<std::uint64_t>(pixel != background);
      resultBits |= set << at;
      values[found] = pixel;
      found += set;
    }
    result->mask_[w] = resultBits;
  }
  result->Finish(values.data(), found);
  return result->MostlyBackground() ? result : result->Rebased();
}

bool MaskedRows::MostlyBackground() const {
  const std::size_t pixels = static_cast<std::size_t>(width_) * static_cast<std::size_t>(rows_);
  return !values_ || static_cast<std::size_t>(values_->width()) * 2 <= pixels;
}

std::shared_ptr<const MaskedRows> MaskedRows::Rebased() const {
  const std::size_t pixels = static_cast<std::size_t>(width_) * static_cast<std::size_t>(rows_);
  std::vector<std::uint32_t> rows(pixels);
  const auto step = static_cast<std::size_t>(width_);
  Unpack(rows.data(), step);
  // Told from every pixel, not the first row: that row may be as unlike the rest.
  return std::make_shared<const MaskedRows>(rows.data(), step, width_, rows_,
                                            MostPixels(rows.data(), static_cast<int>(pixels)));
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
