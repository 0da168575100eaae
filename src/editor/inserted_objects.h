// The inserted objects of the editor: five slots, how many are live, their stacking
// order (the z-order list names the live slots, front first) and which object is
// dragged or selected. A history level keeps a copy of the same record.
#pragma once

#include <span>

#include "editor/inserted_object.h"

inline constexpr int kMaxInsertedObjects = 5;

struct InsertedObjects {
  // Copies the live objects, their count, the z-order and the drag and selection
  // state from `other`: what a history level records and gives back. Slots at or
  // above the count keep what they hold; they are not in use.
  void CopyFrom(const InsertedObjects& other);
  // The live slots, front first.
  std::span<const int> FrontToBack() const;

  CInsertedObject slots[kMaxInsertedObjects];
  int count = 0;
  int dragged = -1;
  int dragX = -1;
  int dragY = -1;
  int selected = -1;
  int zOrder[kMaxInsertedObjects + 1] = {0, 0, 0, 0, 0, 0};
  // Where the mouse is while dragging; not recorded in the history.
  bool overBody = false;
  bool resizing = false;
  bool overGrip = false;
};
