// The inserted objects of the editor: five slots, how many are live, their stacking
// order (the z-order list names each live slot exactly once, front first, and no free
// one), and which object is dragged or selected (at most one object carries the
// selected flag, and it is the selected slot). A history level keeps a deep copy of
// the same record. The count, the list and the flags must agree, so they change only
// through the operations below; an object's position, size and pictures are its own.
#pragma once

#include <span>

#include "editor/inserted_object.h"
#include "platform/platform.h"

inline constexpr int kMaxInsertedObjects = 5;

// Where the shortcut menu moves the selected object in the stacking order.
enum class ZOrderMove { Topmost, Above, Below, Bottommost };

class InsertedObjects {
 public:
  // Takes every slot of `other` as a deep copy, with the count, the z-order and the
  // drag and selection state: what a history level records and gives back. Free slots
  // are copied too, so that a live slot behind a freed one is never lost. The
  // insertion settings are not part of it.
  void CopyFrom(const InsertedObjects& other);

  int count() const { return count_; }
  // The live slots, front first.
  std::span<const int> FrontToBack() const;
  // The selected slot, -1 for none.
  int selected() const { return selected_; }
  const CInsertedObject& Object(int slot) const { return objects_[slot]; }
  CInsertedObject& Object(int slot) { return objects_[slot]; }
  // The lowest free slot; kMaxInsertedObjects when all are live.
  int FirstFreeSlot() const;

  // Makes the free `slot`, already filled, a live object of that kind in front of the
  // others.
  void AddInFront(int slot, ObjectKind kind);
  // The front-most live object whose body holds the window point; -1 for none.
  int HitTest(POINT window) const;
  // Selects the live `slot`, deselecting the one selected before; -1 only deselects.
  void Select(int slot);
  // Frees the selected slot and takes it out of the z-order, ending a drag of it.
  // False when no object is selected.
  bool DeleteSelected();
  // Moves the selected object in the z-order; a move past either end changes nothing.
  void MoveSelected(ZOrderMove move);
  // Moves every live object by (dx, dy), stopping at the limits of int.
  void ShiftAll(int dx, int dy);

  // The object under a drag of the mouse, -1 for none, and the window point of the
  // drag's last accepted step. They are part of what the history records, so a level
  // given back mid-drag decides which object the drag goes on with, if any.
  int dragged() const { return dragged_; }
  POINT dragPoint() const { return dragPoint_; }
  // The drag of the live `slot` starts at `at`.
  void StartDrag(int slot, POINT at);
  void SetDragPoint(POINT at) { dragPoint_ = at; }
  void EndDrag() { StartDrag(-1, POINT{-1, -1}); }

  // What SetTransparency stores (only while the drawing layer exists) for the objects
  // inserted after it: the key colour of icons and of balloons with a picture, and the
  // transparency of balloons (1 to 99 blends them with the picture). Choosing a
  // transparent text background also sets the transparency to 100. Not part of a
  // history level.
  COLORREF storedTransparentColor = 0;
  int storedTransparency = 0;

 private:
  // Where the selected slot stands in the z-order list.
  int SelectedPosition() const;

  CInsertedObject objects_[kMaxInsertedObjects];
  int count_ = 0;
  // The object drag under way (slot and last point), -1 when none.
  int dragged_ = -1;
  POINT dragPoint_{-1, -1};
  int selected_ = -1;
  int zOrder_[kMaxInsertedObjects + 1] = {0, 0, 0, 0, 0, 0};
};
