// Dragging the selection box. Its centre stays strictly inside the picture on an axis
// where the whole picture is shown, and inside the window on an axis that scrolls, so
// the box can never be lost from sight; a step that would take the centre out is
// refused on that axis.
#pragma once

#include "tools/window_drag.h"

class SelectionBoxDrag : public WindowDrag {
 public:
  explicit SelectionBoxDrag(CImageEditWnd& editor) : WindowDrag(editor) {}

  // A press inside the box.
  bool Takes(POINT window) const override;
  void Press(POINT window) override;
  RECT Move(POINT window) override;
  void Release() override;

 private:
  // The pointer at the box's last step, on each axis the step moved along.
  POINT last_{0, 0};
};
