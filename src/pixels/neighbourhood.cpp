#include "pixels/neighbourhood.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include "pixels/pixel_buffer.h"
#include "pixels/row_split.h"

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
// After the blur: clamp(trunc(v * 0.9 + 25.5)), which is (9v + 255) / 10 for a byte.
constexpr std::uint16_t WhitenFinish(std::uint16_t v) {
  return MultiplyHigh(static_cast<std::uint16_t>(9 * v + 255), 6554);
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

// Each rule computes one row of output bytes from the working rows above (up), level
// with (mid) and below (down) it, each pointing at the copy of the row's first byte,
// so that a byte's left and right neighbours lie Bpp bytes to either side. The bytes
// of a pixel are independent, so the rows are plain byte arrays.
using RowRule = void (*)(const BYTE* up, const BYTE* mid, const BYTE* down, BYTE* out, int count);

template <int Bpp>
void WhitenRow(const BYTE* up, const BYTE* mid, const BYTE* down, BYTE* out, int count) {
  for (int i = 0; i < count; ++i) {
    const auto blurred =
        static_cast<std::uint16_t>((up[i - Bpp] + 2 * up[i] + up[i + Bpp] + 2 * mid[i - Bpp] + 4 * mid[i] +
                                    2 * mid[i + Bpp] + down[i - Bpp] + 2 * down[i] + down[i + Bpp]) >>
                                   4);
    out[i] = static_cast<BYTE>(WhitenFinish(blurred));
  }
}

// A negative numerator clamps to 0 whether it is divided truncating or shifted.
template <int Bpp>
void SharpenRow(const BYTE* up, const BYTE* mid, const BYTE* down, BYTE* out, int count) {
  for (int i = 0; i < count; ++i) {
    const auto v =
        static_cast<std::int16_t>((36 * mid[i] - up[i] - down[i] - mid[i - Bpp] - mid[i + Bpp]) >> 5);
    out[i] = static_cast<BYTE>(v < 0 ? 0 : v > 255 ? 255 : v);
  }
}

template <int Bpp>
void SmoothRow(const BYTE* up, const BYTE* mid, const BYTE* down, BYTE* out, int count) {
  for (int i = 0; i < count; ++i) {
    const auto sum = static_cast<std::uint16_t>(up[i - Bpp] + up[i] + up[i + Bpp] + mid[i - Bpp] + mid[i] +
                                                mid[i + Bpp] + down[i - Bpp] + down[i] + down[i + Bpp]);
    out[i] = static_cast<BYTE>(DivideBy9(sum));
  }
}

template <int Bpp>
RowRule RuleFor(NeighbourhoodFilter filter) {
  switch (filter) {
    case NeighbourhoodFilter::Whiten:
      return WhitenRow<Bpp>;
    case NeighbourhoodFilter::Sharpen:
      return SharpenRow<Bpp>;
    case NeighbourhoodFilter::Smooth:
      break;
  }
  return SmoothRow<Bpp>;
}

// The fourth byte of a 32-bit pixel stays 0 whatever a rule made of it.
void ClearFourthBytes(BYTE* row, int pixels) {
  for (int x = 0; x < pixels; ++x) {
    std::uint32_t p;
    std::memcpy(&p, row + 4 * x, 4);
    p &= 0x00FFFFFF;
    std::memcpy(row + 4 * x, &p, 4);
  }
}

// The working rows: for each part of the rows, three rows in turn and the rows just
// above and below the part, each with its first and last pixel repeated on either
// side.
class WorkingRows {
 public:
  static constexpr int kAbove = 3;
  static constexpr int kBelow = 4;

  explicit WorkingRows(const PixelRows& rows)
      : parts_(RowParts(rows.height(), rows.width)),
        rowBytes_(static_cast<std::size_t>(rows.width + 2) * static_cast<std::size_t>(rows.bytesPerPixel)) {
    const std::size_t whole =
        static_cast<std::size_t>(rows.width + 2) * static_cast<std::size_t>(rows.height() + 2) * 3;
    if (WithinPixelLimit(whole)) memory_ = AllocatePixels(parts_.size() * kRowsPerPart * rowBytes_);
  }
  bool valid() const { return memory_ != nullptr; }
  const std::vector<RowPart>& parts() const { return parts_; }
  BYTE* Row(std::size_t part, int slot) const {
    return memory_.get() + (part * kRowsPerPart + static_cast<std::size_t>(slot)) * rowBytes_;
  }

 private:
  static constexpr std::size_t kRowsPerPart = 5;
  std::vector<RowPart> parts_;
  std::size_t rowBytes_;
  std::unique_ptr<BYTE[]> memory_;
};

// Row `y` (clamped into the rows) into working row `padded`, lifted for whiten.
template <int Bpp>
BYTE* LoadRow(const PixelRows& rows, int y, BYTE* padded, bool lift) {
  const BYTE* row = rows.in[static_cast<std::size_t>(std::clamp(y, 0, rows.height() - 1))];
  const int count = rows.rowBytes();
  BYTE* inner = padded + Bpp;
  if (lift) {
    for (int i = 0; i < count; ++i) inner[i] = static_cast<BYTE>(LiftTowardsWhite(row[i]));
  } else {
    std::memcpy(inner, row, static_cast<std::size_t>(count));
  }
  std::memcpy(padded, inner, Bpp);
  std::memcpy(inner + count, inner + count - Bpp, Bpp);
  return padded;
}

// One step over all the rows. A part reads the rows next to it before any part starts
// (another part may be rewriting them meanwhile), and each of its own rows before
// writing it: the row below is loaded before the row is written.
template <int Bpp>
void Step(PixelRows& rows, const WorkingRows& working, RowRule rule, bool lift) {
  const std::vector<RowPart>& parts = working.parts();
  for (std::size_t p = 0; p < parts.size(); ++p) {
    LoadRow<Bpp>(rows, parts[p].first - 1, working.Row(p, WorkingRows::kAbove), lift);
    LoadRow<Bpp>(rows, parts[p].end, working.Row(p, WorkingRows::kBelow), lift);
  }
  RunParts(parts, [&](std::size_t p) {
    const RowPart& part = parts[p];
    const BYTE* above = working.Row(p, WorkingRows::kAbove);
    const BYTE* here = LoadRow<Bpp>(rows, part.first, working.Row(p, 0), lift);
    int next = 1;
    for (int y = part.first; y < part.end; ++y) {
      const BYTE* below = working.Row(p, WorkingRows::kBelow);
      if (y + 1 < part.end) {
        below = LoadRow<Bpp>(rows, y + 1, working.Row(p, next), lift);
        next = (next + 1) % 3;
      }
      BYTE* out = rows.out[static_cast<std::size_t>(y)];
      rule(above + Bpp, here + Bpp, below + Bpp, out, rows.rowBytes());
      if constexpr (Bpp == 4) ClearFourthBytes(out, rows.width);
      above = here;
      here = below;
    }
  });
  rows.Written();
}

// The rows' pixels at one moment, to recognise when the filter brings them back.
class SavedPixels {
 public:
  explicit SavedPixels(const PixelRows& rows)
      : rows_(rows),
        rowBytes_(static_cast<std::size_t>(rows.rowBytes())),
        bytes_(AllocatePixels(rowBytes_ * static_cast<std::size_t>(rows.height()))) {}
  bool valid() const { return bytes_ != nullptr; }
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
  std::unique_ptr<BYTE[]> bytes_;
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
  const bool lift = filter == NeighbourhoodFilter::Whiten;
  RunSteps(rows, steps, [&] {
    if (rows.bytesPerPixel == 4) {
      Step<4>(rows, working, RuleFor<4>(filter), lift);
    } else {
      Step<3>(rows, working, RuleFor<3>(filter), lift);
    }
  });
}
