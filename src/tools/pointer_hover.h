// What the pointer is over while no button is held, from which tool mode 0 chooses its
// cursor: the selection box, an inserted object's body or its resize grip. The hover
// changes only on moves without a button, so a drag keeps the cursor it started with.
#pragma once

#include "editor/selection_box.h"
#include "platform/platform.h"

struct PointerHover {
  // Over the box, the other flags keep what they were; elsewhere no object is hit
  // until objects carry their rectangles.
  void Update(POINT window, const SelectionBox& box);
  // The hand that says what a drag would do there: move the box or an object, resize
  // an object at its grip, or pan a picture that scrolls; else the window's own
  // cursor (kWindowClassCursor).
  int Cursor(bool scrolls) const;

  bool overBox = false;
  bool overBody = false;
  bool overGrip = false;
};
