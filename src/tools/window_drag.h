// A drag of the left button with no tool chosen: of the selection box, of an inserted
// object, or of the view. Unlike a tool's, its points are window points: the box and
// the objects keep window coordinates, and a pan follows the pointer across the window
// while the picture moves under it. The press may land anywhere in the window, and
// while the drag lasts the editor holds the mouse, kept inside the window.
#pragma once

#include "platform/platform.h"

class CImageEditWnd;

class WindowDrag {
 public:
  virtual ~WindowDrag() = default;

  // Whether a press at that point starts this drag.
  virtual bool Takes(POINT window) const = 0;
  virtual void Press(POINT window) = 0;
  // One step of the drag to `window`: the part of the window it changed, for the
  // caller to repaint; empty when nothing changed, or what changed is shown already.
  virtual RECT Move(POINT window) = 0;
  virtual void Release() = 0;

 protected:
  explicit WindowDrag(CImageEditWnd& editor) : editor_(editor) {}
  // Shows the editor's cursor of that resource id; one that did not load leaves the
  // cursor as it is.
  void ShowCursorOf(int resourceId) const;

  CImageEditWnd& editor_;
};
