// The free-form selection: it shows its cursor and captures nothing. A drag follows
// the frame of every drag (capture, a history level, the snapshot at the release),
// and its release erases the band of a drag as the rectangle tools' does; having never
// drawn one, it only repaints.
#pragma once

#include "tools/rubber_band.h"

class IrregularSelectionTool : public RubberBandDrag {
 public:
  explicit IrregularSelectionTool(CImageEditWnd& editor) : RubberBandDrag(editor) {}

  std::optional<RECT> Move(POINT) override { return std::nullopt; }
  void Release(POINT point) override;
  int Cursor() const override;
};
