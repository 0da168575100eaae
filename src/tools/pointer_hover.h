// What the pointer is over while no button is held, from which tool mode 0 chooses its
// cursor: the selection box, an inserted object's body or its resize grip. The hover
// changes only on moves without a button, so a drag keeps the cursor it started with.
#pragma once

#include "editor/inserted_objects.h"
#include "editor/selection_box.h"
#include "platform/platform.h"

struct PointerHover {
  // The box comes first: over it, the other flags keep what they were. Elsewhere the
  // front-most object under the pointer decides between its body and its grip.
  void Update(POINT window, const SelectionBox& box, const InsertedObjects& objects);
  // The hand that says what a drag would do there: move the box or an object, resize
  // an object at its grip, or pan a picture that scrolls; else the window's own
  // cursor (kWindowClassCursor).
  int Cursor(bool scrolls) const;

  bool overBox = false;
  bool overBody = false;
  bool overGrip = false;
};
