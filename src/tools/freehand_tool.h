// Freehand strokes with the drawing pen: the pen, the brush (the pen of the negated
// size, so square-ended) and the eraser (a pen in the drawing layer's key colour).
#pragma once

#include "tools/interaction.h"

class FreehandTool : public Interaction {
 public:
  enum class Kind { Pen, Brush, Eraser };
  FreehandTool(CImageEditWnd& editor, Kind kind) : Interaction(editor), kind_(kind) {}

  // A dot: a line one pixel long with the pen.
  void Press(POINT point) override;
  // The stroke goes on from where the layer's pen is to the pointer.
  std::optional<RECT> Move(POINT point) override;
  void Release(POINT point) override;
  int Cursor() const override;
  // The pen and the brush are made again in the new colour; the eraser keeps the key
  // colour.
  void ApplyColor() override;
  bool ResumesAfterColorPick() const override { return true; }

 private:
  Kind kind_;
};
