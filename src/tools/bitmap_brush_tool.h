// The bitmap brush: stamps of the brush's picture, recoloured to the current colour,
// with its key colour left out; a square as wide as the tool, its corner half the
// width up and to the left of the pointer. A drag stamps again only once the pointer
// has left the last stamp.
#pragma once

#include "tools/interaction.h"

class BitmapBrushTool : public Interaction {
 public:
  explicit BitmapBrushTool(CImageEditWnd& editor) : Interaction(editor) {}

  void Press(POINT point) override;
  std::optional<RECT> Move(POINT point) override;
  void Release(POINT point) override;
  int Cursor() const override;
  void ApplyColor() override;
  bool ResumesAfterColorPick() const override { return true; }

  // The bitmap brush stamped with its key colour left out; nothing without a brush.
  void StampBitmapBrush(HDC dc, int left, int top, int width, int height);

 private:
  void StampAt(POINT pointer);
};
