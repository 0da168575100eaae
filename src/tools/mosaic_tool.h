// The mosaic: the dragged rectangle of the picture as the person sees it, pixelated in
// cells of 8 x 8 anchored at its top-left corner, onto the drawing layer.
#pragma once

#include "tools/rubber_band.h"

class MosaicTool : public RubberBandDrag {
 public:
  explicit MosaicTool(CImageEditWnd& editor) : RubberBandDrag(editor) {}

  void Release(POINT point) override;
  int Cursor() const override;

 private:
  void Pixelate(POINT up);
};
