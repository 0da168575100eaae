// Panning a picture larger than the window: the picture follows the pointer, through
// the scroll bars (so the objects go along and the bars show where the view is), and
// stops at the ends of what there is to scroll.
#pragma once

#include "tools/window_drag.h"

class ViewPan : public WindowDrag {
 public:
  explicit ViewPan(CImageEditWnd& editor) : WindowDrag(editor) {}

  // A press anywhere while either scroll bar is shown.
  bool Takes(POINT window) const override;
  void Press(POINT window) override;
  // The scroll handlers repaint what they scrolled.
  RECT Move(POINT window) override;
  void Release() override;

 private:
  // The pointer at the pan's last step.
  POINT last_{0, 0};
};
