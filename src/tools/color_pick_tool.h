// The colour pick: the press reads the colour the person sees under the pointer; the
// release reports it to the host and returns to the tool the pick interrupted. It
// changes nothing, so it records no history level.
#pragma once

#include "tools/interaction.h"

class ColorPickTool : public Interaction {
 public:
  explicit ColorPickTool(CImageEditWnd& editor) : Interaction(editor) {}

  bool PressRecordsHistory(POINT) const override { return false; }
  void Press(POINT point) override;
  std::optional<RECT> Move(POINT) override { return std::nullopt; }
  void Release(POINT point) override;
  int Cursor() const override;

 private:
  COLORREF picked_ = 0;
};
