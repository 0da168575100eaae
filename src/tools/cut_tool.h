// The cut: the dragged rectangle of the picture as the person sees it, stretched over
// the whole image on the drawing layer, so that the chosen part covers it enlarged.
#pragma once

#include "tools/rubber_band.h"

class CutTool : public RubberBandDrag {
 public:
  explicit CutTool(CImageEditWnd& editor) : RubberBandDrag(editor) {}

  void Release(POINT point) override;
  int Cursor() const override;
};
