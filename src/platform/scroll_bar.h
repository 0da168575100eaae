// One standard scroll bar apart from input: where its parts lie and how it looks.
// A bar has an arrow button at each end, the track between them and, while the range
// is larger than a page, a thumb whose length shows the page and whose place shows
// the position.
#pragma once

#include "platform/types.h"
#include "platform/window_tree.h"

namespace platform::scroll {

// What lies under a point of a bar; "back" is up or left, "forward" down or right.
enum class Part { None, BackArrow, ForwardArrow, TrackBack, TrackForward, Thumb };

struct Parts {
  RECT backArrow{};
  RECT forwardArrow{};
  RECT track{};  // between the arrows, under the thumb too
  RECT thumb{};  // empty when the bar cannot scroll or the track has no room for it
};

// Whether the range is larger than one page, so the bar can scroll at all.
bool CanScroll(const window::ScrollBarState& state);

// The parts of a bar occupying `bar`, with the thumb at `pos` (the position itself,
// or the one being tracked while the thumb is dragged).
Parts Layout(const RECT& bar, bool vertical, const window::ScrollBarState& state, int pos);

Part PartAt(const Parts& parts, bool vertical, POINT point);

// The position whose thumb starts `thumbStart` pixels after the track's start: the
// inverse of the thumb placement, clamped to the positions a whole page allows.
int PositionAt(const Parts& parts, bool vertical, const window::ScrollBarState& state, int thumbStart);

// The bar rectangle of a window's standard bar (SB_HORZ or SB_VERT) and the corner
// square between two bars, in the window's coordinates (its client origin).
RECT BarRect(const window::Window& window, int bar);
RECT CornerRect(const window::Window& window);

// Draws a bar laid out as `parts` into `bar` of `dc`; `pressed` names an arrow held
// down (or Part::None), drawn sunk in.
void Draw(HDC dc, const RECT& bar, bool vertical, const Parts& parts, Part pressed);
void DrawCorner(HDC dc, const RECT& corner);

}  // namespace platform::scroll
