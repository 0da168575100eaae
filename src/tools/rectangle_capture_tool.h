// The rectangle selection: a drag captures the rectangle as the person sees it. The
// capture stays outlined on the picture, where it came from turns white in the
// snapshot (what a move leaves behind), and the tool holds the capture until a press
// beside it starts a new rectangle. A rectangle that spans no pixels, or memory that
// cannot be had, captures nothing.
#pragma once

#include "tools/rubber_band.h"

class RectangleCaptureTool : public RubberBandDrag {
 public:
  explicit RectangleCaptureTool(CImageEditWnd& editor) : RubberBandDrag(editor) {}

  void Release(POINT point) override;
  int Cursor() const override;

 private:
  void Capture(POINT up);
};
