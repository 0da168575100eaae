// Dragging an inserted object: a press on its body moves it, a press on its resize
// grip resizes it from the picture it was inserted with. An object never leaves the
// picture altogether: a step that would leave it no overlap with the image rectangle
// on an axis is refused on that axis. Nor does it shrink below 16 x 16: such a step
// is refused as a whole. The release records a history level, also after a plain
// click, which only selects the object.
#pragma once

#include "tools/window_drag.h"

class ObjectDrag : public WindowDrag {
 public:
  explicit ObjectDrag(CImageEditWnd& editor) : WindowDrag(editor) {}

  // A press on a live object's body.
  bool Takes(POINT window) const override;
  // The front-most object there is dragged, and selected.
  void Press(POINT window) override;
  // Nothing once the object has gone (deleted, or the history gave back a state
  // without this drag).
  RECT Move(POINT window) override;
  void Release() override;

 private:
  bool resizing_ = false;
};

// Selects the live `slot` (-1 only deselects) and repaints the objects whose frame
// came or went.
void SelectInsertedObject(CImageEditWnd& editor, int slot);
