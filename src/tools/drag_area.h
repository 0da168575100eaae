// The parts of the surfaces a drag touches, for repainting only those. Areas are
// worked in 64 bits, since a pen's width is whatever the host set (up to 2^31), and
// cut to GDI's device space, beyond which nothing is drawn anyway; their sides then
// still fit an int.
#pragma once

#include "platform/platform.h"

// The rectangle a drag from `a` to `b` spans, whichever way it went.
RECT SpannedRect(POINT a, POINT b);
// The pixels from `a` to `b` (both included) and `margin` around them: what a stroke
// or spray may have painted there.
RECT PaintedArea(POINT a, POINT b, long long margin);
// Where a tool of that width works around the pointer: the airbrush's disc is centred
// and the bitmap brush's stamp has its corner half the width up and to the left.
inline POINT ToolCorner(POINT pointer, int width) {
  return POINT{pointer.x - width / 2, pointer.y - width / 2};
}
// (left, top, right, bottom) cut to the device space.
RECT ClampedRect(long long left, long long top, long long right, long long bottom);
// The smallest rectangle holding both: what a drag that moved something from `a` to
// `b` repaints.
RECT BoundingRect(const RECT& a, const RECT& b);
