#include "pixels/neighbourhood.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "pixels/pixel_buffer.h"
#include "pixels/row_split.h"

#ifdef __wasm_simd128__
#include <wasm_simd128.h>
#endif

namespace {

// The rules in 16-bit integer arithmetic, which the compiler turns into vector code;
// each is checked against its plain form below, over every value it can meet.

// Lightens a byte along a parabola before the blur, 255 - (255 - v)^2 / 255, with the
// division by 255 done by shifts.
constexpr std::uint16_t LiftTowardsWhite(std::uint16_t v) {
  const auto q = static_cast<std::uint16_t>((255 - v) * (255 - v));
  return static_cast<std::uint16_t>(255 - ((q + 1 + (q >> 8)) >> 8));
}
// The high half of a 16 x 16-bit product.
constexpr std::uint16_t MultiplyHigh(std::uint16_t a, std::uint16_t b) {
  return static_cast<std::uint16_t>((static_cast<std::uint32_t>(a) * b) >> 16);
}
// After the blur: clamp(trunc(v * 0.9 + 25.5)), which is (9v + 255) / 10 for a byte,
// or v + (255 - v) / 10; that tenth is a 16-bit product shifted (WebAssembly has no
// high half of a product, which costs it nine instructions instead of one).
constexpr std::uint16_t WhitenFinish(std::uint16_t v) {
  return static_cast<std::uint16_t>(v + (static_cast<std::uint16_t>((255 - v) * 205) >> 11));
}
// A sum of nine bytes divided by 9.
constexpr std::uint16_t DivideBy9(std::uint16_t sum) { return MultiplyHigh(sum, 7282); }

constexpr bool RulesAreExact() {
  for (int v = 0; v < 256; ++v) {
    const auto byte = static_cast<std::uint16_t>(v);
    if (LiftTowardsWhite(byte) != 255 - ((255 - v) * (255 - v)) / 255) return false;
    if (WhitenFinish(byte) != std::clamp(static_cast<int>(v * 0.9 + 25.5), 0, 255)) return false;
  }
  for (int sum = 0; sum <= 9 * 255; ++sum) {
    if (DivideBy9(static_cast<std::uint16_t>(sum)) != sum / 9) return false;
  }
  return true;
}
static_assert(RulesAreExact());

// The bytes of a row the loops below leave to the plain loops after them. The native
// compilers turn those plain loops into vector code by themselves; the WebAssembly
// compiler does it poorly (it widens bytes with shuffles), so there the rules are
// also written out sixteen bytes at a time, with the same integer operations.
#ifdef __wasm_simd128__
constexpr int kVectorBytes = 16;

v128_t At(const void* at) { return wasm_v128_load(at); }
v128_t Low(v128_t bytes) { return wasm_u16x8_extend_low_u8x16(bytes); }
v128_t High(v128_t bytes) { return wasm_u16x8_extend_high_u8x16(bytes); }
v128_t Words(std::uint16_t value) { return wasm_i16x8_splat(static_cast<std::int16_t>(value)); }
// MultiplyHigh of each of eight 16-bit lanes.
v128_t MultiplyHigh(v128_t a, v128_t b) {
  return wasm_u16x8_narrow_i32x4(wasm_u32x4_shr(wasm_u32x4_extmul_low_u16x8(a, b), 16),
                                 wasm_u32x4_shr(wasm_u32x4_extmul_high_u16x8(a, b), 16));
}
// Sixteen lanes of at most 255 back to bytes.
v128_t Bytes(v128_t low, v128_t high) { return wasm_u8x16_narrow_i16x8(low, high); }
// Cells of the sums along the row, weights 1 `middle` 1, from bytes Bpp apart.
template <int Bpp>
int StoreRowSums(const BYTE* padded, std::uint16_t* cells, int count, int middleShift) {
  int i = 0;
  for (; i + kVectorBytes <= count; i += kVectorBytes) {
    const v128_t a = At(padded + i), b = At(padded + i + Bpp), c = At(padded + i + 2 * Bpp);
    wasm_v128_store(cells + i,
                    wasm_i16x8_add(wasm_i16x8_add(Low(a), wasm_i16x8_shl(Low(b), middleShift)), Low(c)));
    wasm_v128_store(cells + i + 8,
                    wasm_i16x8_add(wasm_i16x8_add(High(a), wasm_i16x8_shl(High(b), middleShift)), High(c)));
  }
  return i;
}
#endif

// Each filter keeps of every row a working row of cells (`Load`, from the row's bytes
// with its first and last pixel repeated on either side), and computes a row of
// output bytes from the working rows above, level with and below it (`Combine`). The
// bytes of a pixel are independent, so a row is a plain array of bytes whose left
// and right neighbours lie Bpp bytes to either side. Whiten and smooth keep each
// byte's sum with its left and right neighbours, so that the 3 x 3 sum is three
// cells; sharpen keeps the bytes themselves, with Bpp cells of the repeated edge
// pixels on either side.
template <int Bpp>
struct Whiten {
  using Cell = std::uint16_t;
  // The bytes lifted towards white, then weighted 1 2 1 along the row.
  static void Load(BYTE* padded, Cell* cells, int count) {
    int lifted = 0;
    int summed = 0;
#ifdef __wasm_simd128__
    for (; lifted + kVectorBytes <= count + 2 * Bpp; lifted += kVectorBytes) {
      const v128_t bytes = At(padded + lifted);
      const auto lift = [](v128_t v) {
        const v128_t below = wasm_i16x8_sub(Words(255), v);
        const v128_t q = wasm_i16x8_mul(below, below);
        const v128_t rounded =
            wasm_u16x8_shr(wasm_i16x8_add(wasm_i16x8_add(q, Words(1)), wasm_u16x8_shr(q, 8)), 8);
        return wasm_i16x8_sub(Words(255), rounded);
      };
      wasm_v128_store(padded + lifted, Bytes(lift(Low(bytes)), lift(High(bytes))));
    }
#endif
    for (int i = lifted; i < count + 2 * Bpp; ++i) padded[i] = static_cast<BYTE>(LiftTowardsWhite(padded[i]));
#ifdef __wasm_simd128__
    summed = StoreRowSums<Bpp>(padded, cells, count, 1);
#endif
    for (int i = summed; i < count; ++i)
      cells[i] = static_cast<Cell>(padded[i] + 2 * padded[i + Bpp] + padded[i + 2 * Bpp]);
  }
  // Weighted 1 2 1 across the rows, divided by 16, then finished.
  static void Combine(const Cell* up, const Cell* mid, const Cell* down, BYTE* out, int count) {
    int i = 0;
#ifdef __wasm_simd128__
    const auto finish = [](v128_t u, v128_t m, v128_t d) {
      const v128_t v = wasm_u16x8_shr(wasm_i16x8_add(wasm_i16x8_add(u, wasm_i16x8_shl(m, 1)), d), 4);
      return wasm_i16x8_add(v, wasm_u16x8_shr(wasm_i16x8_mul(wasm_i16x8_sub(Words(255), v), Words(205)), 11));
    };
    for (; i + kVectorBytes <= count; i += kVectorBytes) {
      wasm_v128_store(out + i, Bytes(finish(At(up + i), At(mid + i), At(down + i)),
                                     finish(At(up + i + 8), At(mid + i + 8), At(down + i + 8))));
    }
#endif
    for (; i < count; ++i) {
      const auto sum = static_cast<std::uint16_t>(up[i] + 2 * mid[i] + down[i]);
      out[i] = static_cast<BYTE>(WhitenFinish(static_cast<std::uint16_t>(sum >> 4)));
    }
  }
};

template <int Bpp>
struct Smooth {
  using Cell = std::uint16_t;
  static void Load(BYTE* padded, Cell* cells, int count) {
    int i = 0;
#ifdef __wasm_simd128__
    i = StoreRowSums<Bpp>(padded, cells, count, 0);
#endif
    for (; i < count; ++i) cells[i] = static_cast<Cell>(padded[i] + padded[i + Bpp] + padded[i + 2 * Bpp]);
  }
  static void Combine(const Cell* up, const Cell* mid, const Cell* down, BYTE* out, int count) {
    int i = 0;
#ifdef __wasm_simd128__
    const auto divide = [](v128_t u, v128_t m, v128_t d) {
      return MultiplyHigh(wasm_i16x8_add(wasm_i16x8_add(u, m), d), Words(7282));
    };
    for (; i + kVectorBytes <= count; i += kVectorBytes) {
      wasm_v128_store(out + i, Bytes(divide(At(up + i), At(mid + i), At(down + i)),
                                     divide(At(up + i + 8), At(mid + i + 8), At(down + i + 8))));
    }
#endif
    for (; i < count; ++i)
      out[i] = static_cast<BYTE>(DivideBy9(static_cast<std::uint16_t>(up[i] + mid[i] + down[i])));
  }
};

template <int Bpp>
struct Sharpen {
  using Cell = BYTE;
  static void Load(BYTE* padded, Cell* cells, int count) {
    std::memcpy(cells - Bpp, padded, static_cast<std::size_t>(count + 2 * Bpp));
  }
  // A negative numerator clamps to 0 whether it is divided truncating or shifted.
  static void Combine(const Cell* up, const Cell* mid, const Cell* down, BYTE* out, int count) {
    int i = 0;
#ifdef __wasm_simd128__
    // Bytes narrow with saturation, which clamps as the plain loop does.
    for (; i + kVectorBytes <= count; i += kVectorBytes) {
      const v128_t u = At(up + i), m = At(mid + i), d = At(down + i), l = At(mid + i - Bpp),
                   r = At(mid + i + Bpp);
      const auto half = [](v128_t (*widen)(v128_t), v128_t u8, v128_t m8, v128_t d8, v128_t l8, v128_t r8) {
        const v128_t sum = wasm_i16x8_sub(
            wasm_i16x8_sub(
                wasm_i16x8_sub(wasm_i16x8_sub(wasm_i16x8_mul(widen(m8), Words(36)), widen(u8)), widen(d8)),
                widen(l8)),
            widen(r8));
        return wasm_i16x8_shr(sum, 5);
      };
      wasm_v128_store(out + i, Bytes(half(Low, u, m, d, l, r), half(High, u, m, d, l, r)));
    }
#endif
    for (; i < count; ++i) {
      const auto v =
          static_cast<std::int16_t>((36 * mid[i] - up[i] - down[i] - mid[i - Bpp] - mid[i + Bpp]) >> 5);
      out[i] = static_cast<BYTE>(v < 0 ? 0 : v > 255 ? 255 : v);
    }
  }
};

// The working rows: for each part of the rows, three rows in turn, the rows just
// above and below the part, and a row of bytes with the edge pixels repeated that
// each is loaded from. Cells are at most 16 bits; every working row has room for
// Bpp of them before and after the row's own.
class WorkingRows {
 public:
  static constexpr int kAbove = 3;
  static constexpr int kBelow = 4;

  explicit WorkingRows(const PixelRows& rows)
      : parts_(RowParts(rows.height(), rows.width)),
        cellsPerRow_(static_cast<std::size_t>(rows.width + 2) *
                     static_cast<std::size_t>(rows.bytesPerPixel)) {
    const std::size_t whole =
        static_cast<std::size_t>(rows.width + 2) * static_cast<std::size_t>(rows.height() + 2) * 3;
    if (!WithinPixelLimit(whole)) return;
    memory_.reset(new (std::nothrow) std::uint16_t[parts_.size() * kRowsPerPart * cellsPerRow_]);
  }
  bool valid() const { return memory_ != nullptr; }
  const std::vector<RowPart>& parts() const { return parts_; }
  // Working row `slot` of a part (0..2 in turn, kAbove, kBelow), from its first
  // padding cell.
  template <typename Cell>
  Cell* Row(std::size_t part, int slot) const {
    return reinterpret_cast<Cell*>(memory_.get() +
                                   (part * kRowsPerPart + static_cast<std::size_t>(slot)) * cellsPerRow_);
  }
  BYTE* Padded(std::size_t part) const { return Row<BYTE>(part, kRowsPerPart - 1); }

 private:
  static constexpr std::size_t kRowsPerPart = 6;
  std::vector<RowPart> parts_;
  std::size_t cellsPerRow_;
  std::unique_ptr<std::uint16_t[]> memory_;
};

// Row `y` (clamped into the rows) as the filter keeps it, in working row `slot` of
// part `part`; returns where the row's own cells start.
template <int Bpp, typename Filter>
const typename Filter::Cell* LoadRow(const PixelRows& rows, int y, const WorkingRows& working,
                                     std::size_t part, int slot) {
  const BYTE* row = rows.in[static_cast<std::size_t>(std::clamp(y, 0, rows.height() - 1))];
  const int count = rows.rowBytes();
  BYTE* padded = working.Padded(part);
  std::memcpy(padded + Bpp, row, static_cast<std::size_t>(count));
  std::memcpy(padded, row, Bpp);
  std::memcpy(padded + Bpp + count, row + count - Bpp, Bpp);
  typename Filter::Cell* cells = working.Row<typename Filter::Cell>(part, slot) + Bpp;
  Filter::Load(padded, cells, count);
  return cells;
}

// One step over all the rows. A part loads the rows next to it before any part
// starts (another part may be rewriting them meanwhile), and each of its own rows
// before writing it: the row below is loaded before the row is written.
template <int Bpp, typename Filter>
void Step(PixelRows& rows, const WorkingRows& working) {
  using Cell = typename Filter::Cell;
  const std::vector<RowPart>& parts = working.parts();
  for (std::size_t p = 0; p < parts.size(); ++p) {
    LoadRow<Bpp, Filter>(rows, parts[p].first - 1, working, p, WorkingRows::kAbove);
    LoadRow<Bpp, Filter>(rows, parts[p].end, working, p, WorkingRows::kBelow);
  }
  RunParts(parts, [&](std::size_t p) {
    const RowPart& part = parts[p];
    const Cell* above = working.Row<Cell>(p, WorkingRows::kAbove) + Bpp;
    const Cell* here = LoadRow<Bpp, Filter>(rows, part.first, working, p, 0);
    int next = 1;
    for (int y = part.first; y < part.end; ++y) {
      const Cell* below = working.Row<Cell>(p, WorkingRows::kBelow) + Bpp;
      if (y + 1 < part.end) {
        below = LoadRow<Bpp, Filter>(rows, y + 1, working, p, next);
        next = (next + 1) % 3;
      }
      BYTE* out = rows.out[static_cast<std::size_t>(y)];
      Filter::Combine(above, here, below, out, rows.rowBytes());
      if constexpr (Bpp == 4) ClearFourthBytes(out, rows.width);
      above = here;
      here = below;
    }
  });
  rows.Written();
}

template <int Bpp>
void StepOf(NeighbourhoodFilter filter, PixelRows& rows, const WorkingRows& working) {
  switch (filter) {
    case NeighbourhoodFilter::Whiten:
      return Step<Bpp, Whiten<Bpp>>(rows, working);
    case NeighbourhoodFilter::Sharpen:
      return Step<Bpp, Sharpen<Bpp>>(rows, working);
    case NeighbourhoodFilter::Smooth:
      return Step<Bpp, Smooth<Bpp>>(rows, working);
  }
}

// The rows' pixels at one moment, to recognise when the filter brings them back.
class SavedPixels {
 public:
  explicit SavedPixels(const PixelRows& rows)
      : rows_(rows),
        rowBytes_(static_cast<std::size_t>(rows.rowBytes())),
        bytes_(AllocatePixels(rowBytes_ * static_cast<std::size_t>(rows.height()))) {}
  bool valid() const { return static_cast<bool>(bytes_); }
  void Save() {
    for (int y = 0; y < rows_.height(); ++y) std::memcpy(Row(y), In(y), rowBytes_);
  }
  bool Matches() const {
    for (int y = 0; y < rows_.height(); ++y) {
      if (std::memcmp(Row(y), In(y), rowBytes_) != 0) return false;
    }
    return true;
  }

 private:
  BYTE* Row(int y) const { return bytes_.get() + rowBytes_ * static_cast<std::size_t>(y); }
  const BYTE* In(int y) const { return rows_.in[static_cast<std::size_t>(y)]; }
  const PixelRows& rows_;
  std::size_t rowBytes_;
  platform::GraphicsBytes bytes_;
};

// Runs `step` `steps` times, or fewer with the same result: a step depends only on the
// rows' pixels, so once they repeat an earlier step's they go round the same cycle for
// ever (a step that changes nothing is a cycle of one). Repeats are found by Brent's
// method: one saved copy, compared byte for byte after every step and moved up
// whenever the distance reaches the next power of two; on a repeat the remaining steps
// skip whole cycles. The saved copy is only worth having from three steps on, and
// without memory for it every step runs.
template <typename RunStep>
void RunSteps(const PixelRows& rows, int steps, RunStep&& step) {
  if (steps < 1) return;
  if (steps <= 2) {
    for (int i = 0; i < steps; ++i) step();
    return;
  }
  SavedPixels saved(rows);
  if (!saved.valid()) {
    for (int i = 0; i < steps; ++i) step();
    return;
  }
  saved.Save();
  long power = 1;
  long distance = 0;
  for (int done = 0; done < steps;) {
    step();
    ++done;
    ++distance;
    if (done == steps) return;
    if (saved.Matches()) {
      const long rest = (steps - done) % distance;
      for (long i = 0; i < rest; ++i) step();
      return;
    }
    if (distance == power) {
      saved.Save();
      power *= 2;
      distance = 0;
    }
  }
}

}  // namespace

void RunNeighbourhoodFilter(PixelRows& rows, NeighbourhoodFilter filter, int steps,
                            const OutOfMemoryHandler& outOfMemory) {
  if (rows.empty()) return;
  const WorkingRows working(rows);
  if (!working.valid()) {
    if (outOfMemory) outOfMemory();
    return;
  }
  RunSteps(rows, steps, [&] {
    if (rows.bytesPerPixel == 4) {
      StepOf<4>(filter, rows, working);
    } else {
      StepOf<3>(filter, rows, working);
    }
  });
}
