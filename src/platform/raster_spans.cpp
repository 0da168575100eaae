#include "platform/raster_spans.h"

#include <algorithm>

namespace platform::raster {

void Coverage::Add(std::int64_t y, std::int64_t x0, std::int64_t x1) {
  if (y < clip_.top || y >= clip_.bottom) return;
  x0 = std::max<std::int64_t>(x0, clip_.left);
  x1 = std::min<std::int64_t>(x1, clip_.right);
  if (x0 >= x1) return;
  spans_.push_back(Span{static_cast<int>(y), static_cast<int>(x0), static_cast<int>(x1)});
  merged_ = false;
}

void Coverage::AddBox(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom) {
  for (std::int64_t y = FirstRow(top); y < EndRow(bottom); ++y) Add(y, left, right);
}

const std::vector<Span>& Coverage::Merged() {
  if (merged_ || spans_.empty()) return spans_;
  // Figures add many short spans row after row (a wide outline adds its pen nib at every
  // pixel), so the rows are bucketed first and only each row's few spans sorted.
  const auto [low, high] = std::minmax_element(spans_.begin(), spans_.end(),
                                               [](const Span& a, const Span& b) { return a.y < b.y; });
  const int firstRow = low->y;
  std::vector<std::size_t> starts(static_cast<std::size_t>(high->y - firstRow) + 2, 0);
  for (const Span& span : spans_) ++starts[static_cast<std::size_t>(span.y - firstRow) + 1];
  for (std::size_t i = 1; i < starts.size(); ++i) starts[i] += starts[i - 1];
  std::vector<Span> byRow(spans_.size());
  std::vector<std::size_t> next(starts.begin(), starts.end() - 1);
  for (const Span& span : spans_) byRow[next[static_cast<std::size_t>(span.y - firstRow)]++] = span;
  for (std::size_t row = 0; row + 1 < starts.size(); ++row) {
    std::sort(byRow.begin() + static_cast<std::ptrdiff_t>(starts[row]),
              byRow.begin() + static_cast<std::ptrdiff_t>(starts[row + 1]),
              [](const Span& a, const Span& b) { return a.x0 < b.x0; });
  }
  spans_.swap(byRow);
  std::size_t kept = 0;
  for (const Span& span : spans_) {
    if (kept > 0 && spans_[kept - 1].y == span.y && span.x0 <= spans_[kept - 1].x1) {
      spans_[kept - 1].x1 = std::max(spans_[kept - 1].x1, span.x1);
    } else {
      spans_[kept++] = span;
    }
  }
  spans_.resize(kept);
  merged_ = true;
  return spans_;
}

void Coverage::Subtract(Coverage& other) {
  const std::vector<Span>& cut = other.Merged();
  Merged();
  std::vector<Span> result;
  auto hole = cut.begin();
  for (Span span : spans_) {
    while (hole != cut.end() && (hole->y < span.y || (hole->y == span.y && hole->x1 <= span.x0))) ++hole;
    for (auto h = hole; h != cut.end() && h->y == span.y && h->x0 < span.x1; ++h) {
      if (h->x0 > span.x0) result.push_back(Span{span.y, span.x0, h->x0});
      span.x0 = std::max(span.x0, h->x1);
    }
    if (span.x0 < span.x1) result.push_back(span);
  }
  spans_.swap(result);
}

void PaintSpans(Raster& raster, const std::vector<Span>& spans, std::uint32_t pixel, std::uint8_t rop) {
  // A band made the raster's own for nothing would cost a copy and its sharing.
  if (RopKeepsDestination(rop, pixel)) return;
  for (const Span& span : spans)
    ApplyRop(rop, nullptr, pixel, raster.MutableRow(span.y) + span.x0, span.x1 - span.x0);
}

void PaintPixel(Raster& raster, int x, int y, std::uint32_t pixel, std::uint8_t rop) {
  if (RopKeepsDestination(rop, pixel)) return;
  ApplyRop(rop, nullptr, pixel, raster.MutableRow(y) + x, 1);
}

}  // namespace platform::raster
