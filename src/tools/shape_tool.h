// The shape tool's line, rectangle and ellipse, hollow or filled, drawn with the
// drawing pen and brush from the press to the pointer. Each step of the drag wipes
// the previous preview by restoring the picture from before the press.
#pragma once

#include "tools/interaction.h"

class ShapeTool : public Interaction {
 public:
  explicit ShapeTool(CImageEditWnd& editor) : Interaction(editor) {}

  // A line starts as a dot, one pixel long, as the pen's does.
  void Press(POINT point) override;
  std::optional<RECT> Move(POINT point) override;
  void Release(POINT point) override;
  int Cursor() const override;
  // The pen and the fill are made again in the new colour.
  void ApplyColor() override;
  bool ResumesAfterColorPick() const override { return true; }
};
