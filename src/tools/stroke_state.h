// The stroke under way, shared by every interaction: whether the button went down on
// the picture, where it did and where the drag was last, and the auto-scroll timer
// that keeps a drag at the window's edge scrolling.
#pragma once

#include "platform/platform.h"

inline constexpr UINT_PTR kAutoScrollTimerId = 2;
inline constexpr UINT kAutoScrollIntervalMs = 50;

struct StrokeState {
  bool buttonDown = false;
  POINT downPoint{0, 0};
  POINT lastPoint{0, 0};
  UINT_PTR autoScrollTimerId = 0;  // non-zero while it runs
  POINT autoScrollPoint{0, 0};     // the window point of the move that armed it
  // Whether this release closed a text box that was open: a click that only closed
  // the box opens no new one.
  bool releaseClosedText = false;
};
