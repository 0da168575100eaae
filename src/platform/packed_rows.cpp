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
  Finish();
}

void PackedRows::BeginRow() {
  rowStarts_.push_back(static_cast<std::uint32_t>(words_.size()));
  lastRepeat_ = -1;
  lastLiteral_ = -1;
}

void PackedRows::AddRepeat(std::uint32_t pixel, int count) {
  if (lastRepeat_ >= 0 && words_[static_cast<std::size_t>(lastRepeat_) + 1] == pixel) {
    words_[static_cast<std::size_t>(lastRepeat_)] += static_cast<std::uint32_t>(count);
    return;
  }
  if (count < kShortestRepeat) {
    const std::uint32_t pixels[kShortestRepeat] = {pixel, pixel, pixel};
    AddLiterals(pixels, count);
    return;
  }
  allZero_ = allZero_ && pixel == 0;
  lastLiteral_ = -1;
  lastRepeat_ = static_cast<std::ptrdiff_t>(words_.size());
  words_.push_back(kRepeated | static_cast<std::uint32_t>(count));
  words_.push_back(pixel);
}

void PackedRows::AddLiterals(const std::uint32_t* pixels, int count) {
  if (lastLiteral_ < 0) {
    lastRepeat_ = -1;
    lastLiteral_ = static_cast<std::ptrdiff_t>(words_.size());
    words_.push_back(0);
  }
  words_[static_cast<std::size_t>(lastLiteral_)] += static_cast<std::uint32_t>(count);
  words_.insert(words_.end(), pixels, pixels + count);
  allZero_ = allZero_ && std::all_of(pixels, pixels + count, [](std::uint32_t pixel) { return pixel == 0; });
}

void PackedRows::AddPixels(const std::uint32_t* pixels, int count) {
  int x = 0;
  while (x < count) {
    const int repeat = RepeatLength(pixels + x, count - x);
    if (repeat >= kShortestRepeat) {
      AddRepeat(pixels[x], repeat);
      x += repeat;
      continue;
    }
    // Literal pixels up to where a repeat worth its own piece begins: the first
    // place where three pixels in a row are equal.
    static_assert(kShortestRepeat == 3);
    const int start = x;
    x += repeat;
    while (x + 2 < count && !(pixels[x] == pixels[x + 1] && pixels[x] == pixels[x + 2])) ++x;
    if (x + 2 >= count) x = count;
    AddLiterals(pixels + start, x - start);
  }
}

void PackedRows::Finish() {
  words_.shrink_to_fit();
  // Charged once their size is known; rows that do not fit are let go at once.
  charge_.AddOrThrow(bytes());
  counted_ = bytes();
  CountPixelStorage(static_cast<std::ptrdiff_t>(counted_));
}

std::shared_ptr<const PackedRows> PackedRows::Xor(const PackedRows& a, const PackedRows& b) {
  std::shared_ptr<PackedRows> result(new PackedRows(a.width_, a.rows_));
  result->rowStarts_.reserve(static_cast<std::size_t>(a.rows_));
  // A place in a row's pieces: the piece's pixels and how many of them are left.
  struct Cursor {
    const std::uint32_t* word;
    int left = 0;
    bool repeated = false;
    const std::uint32_t* pixels = nullptr;
    void Next() {
      const std::uint32_t header = *word++;
      left = static_cast<int>(header & ~kRepeated);
      repeated = (header & kRepeated) != 0;
      pixels = word;
      word += repeated ? 1 : left;
    }
    void Skip(int n) {
      left -= n;
      if (!repeated) pixels += n;
    }
  };
  // Stretches where either side is literal are gathered and packed like pixels, so
  // that equal pixels of two literal stretches become runs of 0.
  std::vector<std::uint32_t> gathered(static_cast<std::size_t>(a.width_));
  for (int r = 0; r < a.rows_; ++r) {
    result->BeginRow();
    Cursor first{a.words_.data() + a.rowStarts_[static_cast<std::size_t>(r)]};
    Cursor second{b.words_.data() + b.rowStarts_[static_cast<std::size_t>(r)]};
    int pending = 0;
    for (int x = 0; x < a.width_;) {
      if (first.left == 0) first.Next();
      if (second.left == 0) second.Next();
      const int n = std::min(first.left, second.left);
      if (first.repeated && second.repeated) {
        result->AddPixels(gathered.data(), pending);
        pending = 0;
        result->AddRepeat(*first.pixels ^ *second.pixels, n);
      } else {
        std::uint32_t* out = gathered.data() + pending;
        const std::uint32_t* p = first.pixels;
        const std::uint32_t* q = second.pixels;
        if (first.repeated) {
          for (int i = 0; i < n; ++i) out[i] = *p ^ q[i];
        } else if (second.repeated) {
          for (int i = 0; i < n; ++i) out[i] = p[i] ^ *q;
        } else {
          for (int i = 0; i < n; ++i) out[i] = p[i] ^ q[i];
        }
        pending += n;
      }
      first.Skip(n);
      second.Skip(n);
      x += n;
    }
    result->AddPixels(gathered.data(), pending);
  }
  result->Finish();
  return result;
}

bool PackedRows::OneValue(std::uint32_t* pixel) const {
  if (words_.size() < 2) return false;
  const std::uint32_t first = words_[1];
  bool one = true;
  for (int r = 0; r < rows_ && one; ++r) {
    ForEachPiece(r, [&](int, int count, const std::uint32_t* pixels, bool repeated) {
      one = one && (repeated ? *pixels == first : std::all_of(pixels, pixels + count, [&](std::uint32_t p) {
              return p == first;
            }));
    });
  }
  if (one) *pixel = first;
  return one;
}

PackedRows::~PackedRows() { CountPixelStorage(-static_cast<std::ptrdiff_t>(counted_)); }

void PackedRows::PackRow(const std::uint32_t* row) {
  BeginRow();
  AddPixels(row, width_);
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

}  // namespace platform::raster
