#include "platform/packed_rows.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace platform::raster {

namespace {

// Shorter repeats cost more as a piece of their own than inside a run of literals.
constexpr int kShortestRepeat = 3;

// How many pixels from `row` on equal row[0], at most `limit`; eight at a time, which
// compilers turn into vector compares.
int RepeatLength(const std::uint32_t* row, int limit) {
  const std::uint32_t value = row[0];
  int n = 1;
  for (; n + 8 <= limit; n += 8) {
    std::uint32_t differs = 0;
    for (int i = 0; i < 8; ++i) differs |= row[n + i] ^ value;
    if (differs) break;
  }
  while (n < limit && row[n] == value) ++n;
  return n;
}

}  // namespace

PackedRows::PackedRows(const std::uint32_t* rows, std::size_t step, int width, int count)
    : width_(width), rows_(count) {
  rowStarts_.reserve(static_cast<std::size_t>(count));
  for (int r = 0; r < count; ++r) PackRow(rows + static_cast<std::size_t>(r) * step);
  words_.shrink_to_fit();
  CountPixelStorage(static_cast<std::ptrdiff_t>(bytes()));
}

PackedRows::PackedRows(const std::uint32_t* a, const std::uint32_t* b, std::size_t step, int width,
                       int count)
    : width_(width), rows_(count) {
  std::unique_ptr<std::uint32_t[]> row(new std::uint32_t[static_cast<std::size_t>(width)]);
  rowStarts_.reserve(static_cast<std::size_t>(count));
  for (int r = 0; r < count; ++r) {
    const std::size_t offset = static_cast<std::size_t>(r) * step;
    for (int x = 0; x < width; ++x) row[x] = a[offset + x] ^ b[offset + x];
    PackRow(row.get());
  }
  words_.shrink_to_fit();
  CountPixelStorage(static_cast<std::ptrdiff_t>(bytes()));
}

PackedRows::~PackedRows() { CountPixelStorage(-static_cast<std::ptrdiff_t>(bytes())); }

void PackedRows::PackRow(const std::uint32_t* row) {
  rowStarts_.push_back(static_cast<std::uint32_t>(words_.size()));
  int x = 0;
  while (x < width_) {
    const int repeat = RepeatLength(row + x, width_ - x);
    if (repeat >= kShortestRepeat) {
      words_.push_back(kRepeated | static_cast<std::uint32_t>(repeat));
      words_.push_back(row[x]);
      x += repeat;
      continue;
    }
    // Literal pixels up to where a repeat worth its own piece begins.
    const int start = x;
    x += repeat;
    while (x < width_) {
      const int next = RepeatLength(row + x, std::min(kShortestRepeat, width_ - x));
      if (next >= kShortestRepeat) break;
      x += next;
    }
    words_.push_back(static_cast<std::uint32_t>(x - start));
    words_.insert(words_.end(), row + start, row + x);
  }
}

template <typename Visit>
void PackedRows::Decode(Visit visit) const {
  for (int r = 0; r < rows_; ++r) {
    ForEachPiece(r, [&](int x, int count, const std::uint32_t* pixels, bool repeated) {
      visit(r, x, count, pixels, repeated);
    });
  }
}

void PackedRows::Unpack(std::uint32_t* out, std::size_t step) const {
  Decode([&](int r, int x, int count, const std::uint32_t* pixels, bool repeated) {
    std::uint32_t* to = out + static_cast<std::size_t>(r) * step + x;
    if (repeated) {
      std::fill_n(to, count, *pixels);
    } else {
      std::memcpy(to, pixels, static_cast<std::size_t>(count) * sizeof(std::uint32_t));
    }
  });
}

void PackedRows::XorInto(std::uint32_t* out, std::size_t step) const {
  Decode([&](int r, int x, int count, const std::uint32_t* pixels, bool repeated) {
    std::uint32_t* to = out + static_cast<std::size_t>(r) * step + x;
    if (repeated) {
      if (*pixels == 0) return;
      for (int i = 0; i < count; ++i) to[i] ^= *pixels;
    } else {
      for (int i = 0; i < count; ++i) to[i] ^= pixels[i];
    }
  });
}

bool PackedRows::AllZero() const {
  bool zero = true;
  Decode([&](int, int, int count, const std::uint32_t* pixels, bool repeated) {
    if (!zero) return;
    for (int i = 0; i < (repeated ? 1 : count); ++i) zero = zero && pixels[i] == 0;
  });
  return zero;
}

}  // namespace platform::raster
