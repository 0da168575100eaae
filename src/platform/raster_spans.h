// Coverage: the pixels one drawing call touches, as horizontal spans clipped to the
// rectangle the DC may write. Figures add spans freely (overlapping is fine); painting
// merges them first, so a raster operation such as R2_NOTXORPEN reaches each pixel of a
// figure exactly once, as GDI fills a region. Memory follows the figure's visible rows,
// never the surface.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/raster.h"

namespace platform::raster {

// Pixels x0 .. x1-1 of row y, device coordinates.
struct Span {
  int y;
  int x0;
  int x1;
};

class Coverage {
 public:
  explicit Coverage(const RECT& clip) : clip_(clip) {}

  // Adds [x0, x1) on row y; the part outside the clip rectangle is dropped.
  void Add(std::int64_t y, std::int64_t x0, std::int64_t x1);
  // Adds the box [left, right) x [top, bottom).
  void AddBox(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom);
  // Rows of the clip that [top, bottom) reaches; empty when it misses the clip.
  std::int64_t FirstRow(std::int64_t top) const { return top > clip_.top ? top : clip_.top; }
  std::int64_t EndRow(std::int64_t bottom) const { return bottom < clip_.bottom ? bottom : clip_.bottom; }

  // Sorted by row and x, overlaps and neighbours joined: each pixel once.
  const std::vector<Span>& Merged();
  // Removes every pixel of `other` from this coverage.
  void Subtract(Coverage& other);

 private:
  RECT clip_;
  std::vector<Span> spans_;
  bool merged_ = true;
};

// dst = rop(pixel, dst) over every span; `rop` is a ternary index (Rop2Index for pens).
void PaintSpans(Raster& raster, const std::vector<Span>& spans, std::uint32_t pixel, std::uint8_t rop);
void PaintPixel(Raster& raster, int x, int y, std::uint32_t pixel, std::uint8_t rop);

}  // namespace platform::raster
