// The rubber band: the dotted grey rectangle drawn with not-xor, so that drawing it
// twice leaves no trace; and the drags that show it from the press to the pointer
// (the text box, the rectangle selection, the cut and the mosaic) and erase it at the
// release, before anything reads the picture.
#pragma once

#include "tools/interaction.h"

// Erases the band (left, top, oldRight, oldBottom), then draws (left, top, right,
// bottom), each only when asked to.
void DrawRubberBand(HDC dc, int left, int top, int right, int bottom, int oldRight, int oldBottom, bool draw,
                    bool erase);

class RubberBandDrag : public Interaction {
 public:
  void Press(POINT) override {}
  // The band from the press to the pointer replaces the band to the last point.
  std::optional<RECT> Move(POINT point) override;
  void Interrupt() override { EraseBand(); }

 protected:
  using Interaction::Interaction;
  // The band of the drag goes from the drawing layer, and from the screen.
  void EraseBand();
};
