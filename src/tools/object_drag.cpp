#include "tools/object_drag.h"

#include <cstdint>

#include "editor/clamped_int.h"
#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"
#include "tools/drag_area.h"

namespace {

// The smallest width and height a resize leaves.
constexpr int kMinObjectSide = 16;

// Whether an object spanning [start, start + length) keeps some overlap with
// [low, high) after moving by a step that is not 0.
bool StepKeepsOverlap(std::int64_t start, int length, int step, LONG low, LONG high) {
  return step != 0 && start + step < high && start + step + length > low;
}

}  // namespace

void SelectInsertedObject(CImageEditWnd& editor, int slot) {
  InsertedObjects& objects = editor.m_objects;
  const int previous = objects.selected();
  if (previous == slot) return;
  objects.Select(slot);
  for (const int changed : {previous, slot}) {
    if (changed < 0) continue;
    const RECT area = objects.Object(changed).WindowRect();
    editor.RedrawWindow(&area);
  }
}

bool ObjectDrag::Takes(POINT window) const { return editor_.m_objects.HitTest(window) >= 0; }

void ObjectDrag::Press(POINT window) {
  const int slot = editor_.m_objects.HitTest(window);
  resizing_ = editor_.m_objects.Object(slot).GripContains(window);
  editor_.m_objects.StartDrag(slot, window);
  SelectInsertedObject(editor_, slot);
  ShowCursorOf(resizing_ ? kFourWayArrowsCursor : kClosedHandMoveCursor);
}

// The image rectangle is a surface rectangle compared as it is with the object's
// window position: with the picture scrolled, the limits lie where the picture would
// be unscrolled.
RECT ObjectDrag::Move(POINT window) {
  InsertedObjects& objects = editor_.m_objects;
  const int slot = objects.dragged();
  if (slot < 0) return RECT{};
  CInsertedObject& object = objects.Object(slot);
  const POINT last = objects.dragPoint();
  const int dx = window.x - last.x;
  const int dy = window.y - last.y;
  const RECT& image = editor_.m_view.imageRect();
  const bool alongX = StepKeepsOverlap(object.x, object.width, dx, image.left, image.right);
  const bool alongY = StepKeepsOverlap(object.y, object.height, dy, image.top, image.bottom);
  objects.SetDragPoint(POINT{alongX ? window.x : last.x, alongY ? window.y : last.y});
  if (!alongX && !alongY) return RECT{};

  const RECT before = object.WindowRect();
  if (resizing_) {
    // The grip follows the whole step, also along an axis whose step was refused.
    const int width = ClampedInt(std::int64_t{object.width} + dx);
    const int height = ClampedInt(std::int64_t{object.height} + dy);
    if (width < kMinObjectSide || height < kMinObjectSide || !object.ScaleFromSource(width, height))
      return RECT{};
    object.RebuildSelectedPicture();
  } else {
    if (alongX) object.x += dx;
    if (alongY) object.y += dy;
  }
  return BoundingRect(before, object.WindowRect());
}

void ObjectDrag::Release() {
  if (editor_.m_objects.dragged() >= 0) {
    ShowCursorOf(resizing_ ? kFourWayArrowsCursor : kOpenHandMoveCursor);
    editor_.m_objects.EndDrag();
    editor_.CommitHistoryLevel(nullptr, 0, 0);
  }
  resizing_ = false;
  editor_.RedrawWindow();
}
