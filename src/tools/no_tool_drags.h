// What the left button does with no tool chosen. A press starts the first drag that
// takes it: the selection box's, then the front-most object's under the pointer, then
// a pan of a picture that scrolls; a press on no object also deselects the selected
// one. At most one of the drags runs, from its press to the release.
#pragma once

#include "tools/object_drag.h"
#include "tools/selection_box_drag.h"
#include "tools/view_pan.h"

class NoToolDrags {
 public:
  explicit NoToolDrags(CImageEditWnd& editor)
      : editor_(editor), box_(editor), object_(editor), pan_(editor) {}
  NoToolDrags(const NoToolDrags&) = delete;
  NoToolDrags& operator=(const NoToolDrags&) = delete;

  // True when a drag started, for which the editor holds the mouse. While a drag runs
  // a press is no new one (its release never arrived): it is ignored.
  bool Press(POINT window);
  bool Active() const { return active_ != nullptr; }
  // The step of the drag that runs, and the repaint of what it changed.
  void Move(POINT window);
  void Release();

 private:
  CImageEditWnd& editor_;
  SelectionBoxDrag box_;
  ObjectDrag object_;
  ViewPan pan_;
  WindowDrag* active_ = nullptr;
};
