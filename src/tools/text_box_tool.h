// The text tool: a drag (or a click) opens the text box over what it covered, at
// least 30 x 15, with the keyboard focus; a click that only closed an open box opens
// no new one.
#pragma once

#include "tools/rubber_band.h"

class TextBoxTool : public RubberBandDrag {
 public:
  explicit TextBoxTool(CImageEditWnd& editor) : RubberBandDrag(editor) {}

  void Release(POINT point) override;
  int Cursor() const override;

 private:
  void OpenTextBox(POINT down, POINT up);
};
