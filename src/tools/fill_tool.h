// Flood fill with the fill brush. The colour the person sees under the pointer
// decides what is filled, but only strokes are: where the drawing layer has no stroke
// of that colour, nothing is.
#pragma once

#include "tools/interaction.h"

class FillTool : public Interaction {
 public:
  explicit FillTool(CImageEditWnd& editor) : Interaction(editor) {}

  void Press(POINT point) override;
  std::optional<RECT> Move(POINT) override { return std::nullopt; }
  void Release(POINT point) override;
  int Cursor() const override;
  // The fill brush is made again in the new colour.
  void ApplyColor() override;
  bool ResumesAfterColorPick() const override { return true; }
};
