#include "pixels/frame_tiling.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace {

// Positions are worked out wide: an offset from the host may be anywhere in int's
// range, and the image rectangle's sides less or plus it must not wrap around.
using Wide = std::int64_t;

class Placer {
 public:
  Placer(const FrameGeometry& pieces, const RECT& area) : pieces_(pieces), area_(area) {}

  // The piece whole at (x, y), cut to the area.
  void Place(int index, Wide x, Wide y) {
    const FramePieceGeometry& piece = pieces_[index];
    if (!piece.drawn) return;
    const Wide left = std::max<Wide>(x, area_.left);
    const Wide top = std::max<Wide>(y, area_.top);
    const Wide right = std::min<Wide>(x + piece.width, area_.right);
    const Wide bottom = std::min<Wide>(y + piece.height, area_.bottom);
    if (left >= right || top >= bottom) return;
    placements_.push_back(FramePlacement{index,
                                         RECT{static_cast<LONG>(left), static_cast<LONG>(top),
                                              static_cast<LONG>(right), static_cast<LONG>(bottom)},
                                         POINT{static_cast<LONG>(left - x), static_cast<LONG>(top - y)}});
  }

  // Tiles of the piece along one axis, from `first` while below `end`, one every
  // `step` (the piece's length on that axis); `across` is the edge's fixed coordinate.
  // The walk starts at the tile that holds the area's start.
  void Tile(int index, bool horizontal, Wide across, Wide first, Wide end) {
    const FramePieceGeometry& piece = pieces_[index];
    const Wide step = horizontal ? piece.width : piece.height;
    if (!piece.drawn || step <= 0) return;
    const Wide areaStart = horizontal ? area_.left : area_.top;
    const Wide areaEnd = horizontal ? area_.right : area_.bottom;
    const Wide skipped = areaStart > first ? (areaStart - first) / step : 0;
    for (Wide at = first + skipped * step; at < end && at < areaEnd; at += step) {
      if (horizontal) {
        Place(index, at, across);
      } else {
        Place(index, across, at);
      }
    }
  }

  std::vector<FramePlacement> Take() { return std::move(placements_); }

 private:
  const FrameGeometry& pieces_;
  const RECT area_;
  std::vector<FramePlacement> placements_;
};

}  // namespace

std::vector<FramePlacement> FramePlacements(const FrameGeometry& pieces, const RECT& image,
                                            const RECT& area) {
  const Wide l = image.left;
  const Wide t = image.top;
  const Wide r = image.right;
  const Wide b = image.bottom;
  const auto o = [&](int index) { return Wide{pieces[index].offset}; };
  const auto w = [&](int index) { return Wide{pieces[index].width}; };
  const auto h = [&](int index) { return Wide{pieces[index].height}; };

  Placer placer(pieces, area);
  placer.Tile(kRightEdge, false, r - o(kRightEdge), t + o(kTopRightCorner), b - o(kBottomRightCorner));
  placer.Tile(kTopEdge, true, t + o(kTopEdge) - h(kTopEdge), l + o(kTopLeftCorner), r - o(kTopRightCorner));
  placer.Tile(kLeftEdge, false, l + o(kLeftEdge) - w(kLeftEdge), t + o(kTopLeftCorner),
              b - o(kBottomLeftCorner));
  placer.Tile(kBottomEdge, true, b - o(kBottomEdge), l + o(kBottomLeftCorner), r - o(kBottomRightCorner));
  placer.Place(kTopRightCorner, r - o(kTopRightCorner), t + o(kTopRightCorner) - h(kTopRightCorner));
  placer.Place(kTopLeftCorner, l + o(kTopLeftCorner) - w(kTopLeftCorner),
               t + o(kTopLeftCorner) - h(kTopLeftCorner));
  placer.Place(kBottomLeftCorner, l + o(kBottomLeftCorner) - w(kBottomLeftCorner), b - o(kBottomLeftCorner));
  placer.Place(kBottomRightCorner, r - o(kBottomRightCorner), b - o(kBottomRightCorner));
  placer.Place(kFrameOverlay, 0, 0);
  return placer.Take();
}
